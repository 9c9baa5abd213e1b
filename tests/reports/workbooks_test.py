"""Each report's workbook on a demo ledger, read back by an independent reader
against the statement's CSV: the title merged over the table, the header texts
and fill, money as numbers in the money format, the closing rows' fills, the
signature or note line under the table. The bytes are held by the golden
fixtures; this is what another program makes of them."""
import csv
import io
import os
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

import openpyxl
from openpyxl.cell.cell import MergedCell
from openpyxl.utils import get_column_letter

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "support"))
import programs  # noqa: E402
from programs import TOOL  # noqa: E402

# Blue-green-red numbers of the program, as the file's red-green-blue.
BLUE, ORANGE = "C0C0FF", "FFE0C0"
MONEY = re.compile(r"^-?\d+\.\d\d$")
WINDOW = ["--from", "2024-01-01", "--to", "2024-06-30"]
MONTHS = ["--year", "2024", "--months", "01-03"]


def fill(cell):
    return cell.fill.fgColor.rgb[-6:] if cell.fill.fill_type == "solid" else None


class Workbooks(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.dir = tempfile.mkdtemp()
        cls.db = os.path.join(cls.dir, "d.sqlite")
        subprocess.run([TOOL, "make-demo-db", cls.db, "--tickets", "1500"], check=True,
                       capture_output=True)

    @classmethod
    def tearDownClass(cls):
        shutil.rmtree(cls.dir)

    def test_each_report_reads_back_as_its_statement(self):
        reports = programs.statements()
        # Both kinds of line were read: the usage's form has not drifted.
        self.assertEqual(set(reports.values()), {"--from", "--year"})
        for report, kind in reports.items():
            conditions = WINDOW if kind == "--from" else MONTHS
            with self.subTest(report):
                xlsx = os.path.join(self.dir, report + ".xlsx")
                out = subprocess.run([TOOL, report, "--database", self.db, "--dept", "01",
                                      *conditions, "--csv", "-", "--xlsx", xlsx], check=True,
                                     capture_output=True, text=True).stdout
                self.check(list(csv.reader(io.StringIO(out))), openpyxl.load_workbook(xlsx).active)

    def check(self, grid, ws):
        c = len(grid[0])
        self.assertIn(f"A1:{get_column_letter(c)}1", {str(m) for m in ws.merged_cells.ranges})
        self.assertTrue(ws["A1"].value)
        for g in (0, 1):
            for k in range(c):
                cell = ws.cell(g + 4, k + 1)
                if not isinstance(cell, MergedCell):
                    self.assertEqual(fill(cell), BLUE, cell.coordinate)
                    if cell.value is not None:
                        self.assertEqual(cell.value, grid[g][k], cell.coordinate)
        # Rows from the total on (the 其中 rows of a ticket statement) are blue,
        # a month's 小计 orange, others not filled.
        total = None
        for g in range(2, len(grid)):
            row = grid[g]
            if row[1] in ("合计", "合  计"):
                total = BLUE
            closing = ORANGE if row[2] == "小计" else total
            for k in range(3, c):
                if MONEY.match(row[k]):
                    cell = ws.cell(g + 4, k + 1)
                    self.assertAlmostEqual(cell.value, float(row[k]), places=2, msg=cell.coordinate)
                    self.assertEqual(cell.number_format, "#0.00", cell.coordinate)
                    self.assertEqual(fill(cell), closing, cell.coordinate)
        self.assertEqual(total, BLUE)
        under = [ws.cell(len(grid) + 4, k).value for k in range(1, c + 1)]
        self.assertTrue("收款人:" in under or under[1].startswith(" 核对结果"), under)
        self.assertEqual(ws.max_row, len(grid) + 4)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
