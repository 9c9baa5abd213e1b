"""What the workbook read-back tests share: the companion, the fill of the
header bands and totals, and a demo ledger to run it on."""
import os
import shutil
import subprocess
import sys
import tempfile
import unittest

import openpyxl

BIN = sys.argv[1] if len(sys.argv) > 1 else "build/bin"
TOOL = os.path.join(BIN, "yunqi-statement")
BLUE = "C0C0FF"  # 16761024, blue-green-red FF C0 C0, as red-green-blue


def filled(cell):
    # The reader gives the covered cells of a merge no style of their own.
    if isinstance(cell, openpyxl.cell.cell.MergedCell):
        return True
    return cell.fill.fill_type == "solid" and cell.fill.fgColor.rgb.endswith(BLUE)


def demo_ledger(directory, tickets):
    """A demo ledger of that many tickets in directory; its path."""
    db = os.path.join(directory, "d.sqlite")
    subprocess.run([TOOL, "make-demo-db", db, "--tickets", str(tickets)], check=True,
                   capture_output=True)
    return db


class WorkbookTest(unittest.TestCase):
    """A temporary folder for the class's ledger and workbook."""

    @classmethod
    def setUpClass(cls):
        cls.dir = tempfile.mkdtemp()

    @classmethod
    def tearDownClass(cls):
        shutil.rmtree(cls.dir)

    @classmethod
    def statement(cls, *args):
        """yunqi-statement with args; what it wrote to its standard output."""
        return subprocess.run([TOOL, *args], check=True, capture_output=True, text=True).stdout
