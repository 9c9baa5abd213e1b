"""A batch over the demo ledger names where the books do not reconcile:
mismatches.csv holds exactly the rows of the reconciliation CSVs whose 差额
is not zero, in department-list order, and standard error ends with how many
departments they are."""
import csv
import io
import os
import shutil
import subprocess
import sys
import tempfile
import unittest

BIN = sys.argv[1] if len(sys.argv) > 1 else "build/bin"
TOOL = os.path.join(BIN, "yunqi-statement")


def run(*args):
    return subprocess.run([TOOL, *args], capture_output=True, text=True)


def read(path):
    with open(path, encoding="utf-8") as f:
        return list(csv.reader(f))


class Mismatches(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.dir = tempfile.mkdtemp()
        cls.db = os.path.join(cls.dir, "demo.sqlite")
        made = run("make-demo-db", cls.db)
        assert made.returncode == 0, made.stderr

    @classmethod
    def tearDownClass(cls):
        shutil.rmtree(cls.dir)

    def batch(self, month, *extra):
        out = os.path.join(self.dir, "out")
        r = run("batch", "--database", self.db, "--month", month, "--out", out, "--csv", *extra)
        self.assertEqual(r.returncode, 0, r.stderr)
        return out, r.stderr

    def expected(self, out):
        """The rows with a difference, read back from the reconciliation CSVs."""
        rows, rounding = [], 0
        for dept, report, *_ in read(os.path.join(out, "summary.csv"))[1:]:
            if report != "reconciliation":
                continue
            grid = read(os.path.join(out, dept, "reconciliation.csv"))
            col = list(zip(grid[0], grid[1])).index(("核对结果", "差额"))
            for r in grid[2:]:
                if r[col] and float(r[col]) != 0:
                    rows.append([dept, r[1], r[2], r[col]])
                rounding += r[col] == "-0.00"
        return rows, rounding

    def test_the_rows_whose_difference_is_not_zero_and_how_many_departments(self):
        # The demo's one misfiled receipt (02, March 2024) shows from March on.
        for month, disagreeing in [("2024-03", [["02", "202403", "小计"]]), ("2024-02", [])]:
            with self.subTest(month):
                out, err = self.batch(month)
                rows, rounding = self.expected(out)
                self.assertEqual([r[:3] for r in rows], disagreeing)
                self.assertEqual(read(os.path.join(out, "mismatches.csv")),
                                 [["dept", "month", "rate", "difference"]] + rows)
                self.assertGreater(rounding, 0)  # "-0.00" stands in the grids and agrees
                self.assertEqual(err.splitlines()[-1], "yunqi-statement: batch: " + (
                    "1 department does not reconcile" if rows
                    else "0 departments do not reconcile"))

    def test_quiet_tells_only_of_departments_that_disagree(self):
        self.assertEqual(self.batch("2024-02", "--quiet")[1], "")
        self.assertEqual(self.batch("2024-03", "--quiet")[1],
                         "yunqi-statement: batch: 1 department does not reconcile\n")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
