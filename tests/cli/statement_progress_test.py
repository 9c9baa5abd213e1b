"""A single statement tells its step on one line of a terminal's standard
error, redrawn in place and cleared before a message and at the end; nothing
under --quiet, nothing when standard error is no terminal."""
import csv
import os
import pty
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

BIN = sys.argv[1] if len(sys.argv) > 1 else "build/bin"
TOOL = os.path.join(BIN, "yunqi-statement")
REDRAW = "\r\x1b[K"


def on_terminal(args, terminal=True):
    """Exit status and standard error of a run whose standard error is a terminal."""
    if not terminal:
        r = subprocess.run([TOOL, *args], capture_output=True, text=True)
        return r.returncode, r.stderr
    leader, follower = pty.openpty()
    p = subprocess.Popen([TOOL, *args], stdout=subprocess.DEVNULL, stderr=follower)
    os.close(follower)
    err = b""
    while True:
        try:
            chunk = os.read(leader, 65536)
        except OSError:  # the last writer has gone
            break
        if not chunk:
            break
        err += chunk
    os.close(leader)
    return p.wait(), err.decode().replace("\r\n", "\n")


class StatementProgress(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.dir = tempfile.mkdtemp()
        cls.db = os.path.join(cls.dir, "demo.sqlite")
        made = subprocess.run([TOOL, "make-demo-db", cls.db, "--tickets", "3000"],
                              capture_output=True)
        assert made.returncode == 0, made.stderr

    @classmethod
    def tearDownClass(cls):
        shutil.rmtree(cls.dir)

    def statement(self, report, period, *extra, terminal=True):
        out = os.path.join(self.dir, "s")
        return on_terminal([report, "--database", self.db, "--dept", "01", *period,
                            "--xlsx", out + ".xlsx", "--csv", out + ".csv", *extra], terminal)

    def test_the_steps_on_one_redrawn_line(self):
        for report, period, label in [
                ("invoice", ["--from", "2024-01-01", "--to", "2024-12-31"], "01 增值税开票明细表"),
                ("reconciliation", ["--year", "2024", "--months", "01-12"],
                 "01 增值税开票票据核对表")]:
            with self.subTest(report):
                status, err = self.statement(report, period)
                self.assertEqual(status, 0)
                with open(os.path.join(self.dir, "s.csv"), encoding="utf-8") as f:
                    rows = len(list(csv.reader(f))) - 2
                steps = err.split(REDRAW)
                self.assertEqual(steps[0], "")
                self.assertEqual(steps[-1], "")  # the line is cleared at the end
                self.assertTrue(all(s.startswith(label + ": ") for s in steps[1:-1]), steps)
                said = [s[len(label) + 2:] for s in steps[1:-1]]
                self.assertEqual(said[:2], ["extracting fee items", "computing"])
                self.assertEqual(said[-1], "writing the CSV")
                last = re.fullmatch(r"writing the workbook, ([\d,]+) of ([\d,]+) rows", said[-2])
                self.assertTrue(last, said)
                self.assertEqual(last.group(1), last.group(2))
                self.assertEqual(int(last.group(2).replace(",", "")), rows)

    def test_quiet_or_no_terminal_shows_nothing_and_a_message_starts_a_clean_line(self):
        window = ["--from", "2024-01-01", "--to", "2024-12-31"]
        self.assertEqual(self.statement("parking", window, "--quiet"), (0, ""))
        self.assertEqual(self.statement("parking", window, terminal=False), (0, ""))
        status, err = self.statement("invoice", ["--from", "2016-01-01", "--to", "2016-12-31"])
        self.assertEqual(status, 3)
        message = "yunqi-statement: 没有满足条件的开票数据,请重新设置条件!\n"
        self.assertTrue(err.endswith(REDRAW + message), err)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
