"""The demo ledger and the statements on it, end to end: the ledger numbered
and filled as an office's, statements checked against it, the progress line on
a terminal, and the batch's mismatches read back from the reconciliations.
"""
import csv
import io
import os
import pty
import shutil
import sqlite3
import subprocess
import sys
import tempfile
import unittest

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "support"))
from programs import TOOL, read, run, statements  # noqa: E402

DIR = tempfile.mkdtemp()
LEDGER = {n: os.path.join(DIR, "%d.sqlite" % n) for n in (20000, 200000)}
DB = LEDGER[20000]

TICKETS = ("Select p.*, s.票据类型编号 As 类型, t.票据类型 As 类型名 From 票据 p "
           "Join 票据入库单 s Using (入库单编号) Join 票据类型 t On t.票据类型代号 = s.票据类型编号")
# Voided, red-letter and replacing tickets: DemoDatabase_test.
KINDS = {
    "invoiced ahead, paid later": "预开 = 1 And 收款日期 > 开票日期",
    "invoiced ahead, not paid": "预开 = 1 And 收款日期 Is Null",
    "receipt": "类型名 = '收据'",
    "electronic, with its order": "类型名 Like '%电子%' And 交易订单号 Is Not Null",
}


def setUpModule():
    for tickets, path in LEDGER.items():
        made = run("make-demo-db", path, "--tickets", str(tickets))
        assert made.returncode == 0, made.stderr


def tearDownModule():
    shutil.rmtree(DIR)


def statement(report, db, period, *extra):
    """Department 01's statement as CSV rows, asserted to succeed."""
    r = run(report, "--database", db, "--dept", "01", *period, "--csv", "-", *extra)
    assert r.returncode == 0, r.stderr
    return list(csv.reader(io.StringIO(r.stdout)))


YEAR = ["--from", "2024-01-01", "--to", "2024-12-31"]
MONTHS = ["--year", "2024", "--months", "01-12"]


class DemoLedger(unittest.TestCase):
    def sql(self, text):
        return sqlite3.connect(LEDGER[200000]).execute(text).fetchall()

    def test_books_of_contiguous_numbers_unique_in_their_type(self):
        self.assertEqual(self.sql("Select count(*) - count(distinct 类型 || 票据编号) From (%s)"
                                  % TICKETS), [(0,)])
        notes = self.sql("Select 类型, min(0 + 票据编号), max(0 + 票据编号), count(*), "
                         "count(distinct 开票部门编号) From (%s) Group by 入库单编号 "
                         "Order by 类型, 2" % TICKETS)
        self.assertGreater(len(notes), 100)
        for (kind, low, high, count, depts), before in zip(notes, [None] + notes):
            self.assertEqual((high - low + 1, depts), (count, 1))
            if before and before[0] == kind:
                self.assertGreater(low, before[2])

    def test_households_pay_together_and_every_kind_is_kept(self):
        together = self.sql("Select count(*) From (Select 1 From 票据 Where 收款日期 Is Not Null "
                            "Group by 入库单编号, 收款日期 Having count(*) > 1)")[0][0]
        self.assertGreater(together, 1000)
        for kind, where in KINDS.items():
            self.assertGreater(self.sql("Select count(*) From (%s) Where %s" % (TICKETS, where))
                               [0][0], 0, kind)
        self.assertEqual(self.sql("Select count(distinct 收款方式) From 票据"), [(7,)])
        self.assertEqual(self.sql("Select count(distinct 收费类别) From 票据开票数据 Join setupsfxm "
                                  "On dh = 收费项目代号 Where 收费类别 Like '%停车%'"), [(3,)])

    def test_the_largest_departments_parking_year_fits_under_the_limit(self):
        self.assertLess(len(statement("parking", LEDGER[200000], YEAR)) - 2, 32767)


class InvoiceOnDemoLedger(unittest.TestCase):
    def test_every_ticket_and_sums_and_the_breakdown_once_every_method_is_listed(self):
        listed = os.path.join(DIR, "listed.sqlite")
        shutil.copy(DB, listed)
        with sqlite3.connect(listed) as con:
            con.execute("insert into 收款方式列表 select distinct 收款方式 from 票据 "
                        "where 收款方式 not in (select 收款方式 from 收款方式列表)")
        expected = {no for (no,) in sqlite3.connect(DB).execute(
            "select distinct t.票据编号 from 票据 t join 票据入库单 k on k.入库单编号=t.入库单编号 "
            "join 票据类型 y on y.票据类型代号=k.票据类型编号 where y.定额=0 and t.开票部门编号='01' "
            "and exists (select 1 from 票据开票数据 d where d.票据编号=t.票据编号 and d.入库单编号=t.入库单编号) "
            "and (substr(t.开票日期,1,10) between '2024-01-01' and '2024-12-31' or "
            "(substr(t.收款日期,1,10) between '2024-01-01' and '2024-12-31' "
            "and substr(t.开票日期,1,10) < substr(t.收款日期,1,10)))")}
        for db in (DB, listed):
            with self.subTest(db):
                rows = statement("invoice", db, YEAR)
                cols, body = len(rows[0]), rows[2:]
                total_at = next(i for i, r in enumerate(body) if r[1] == "合  计")
                tickets, total, n = body[:total_at], body[total_at], cols - 9
                self.assertEqual({next(x for x in r[2:6] if x) for r in tickets}, expected)
                for r in tickets:
                    self.assertAlmostEqual(sum(float(x) for x in r[6:6 + n]), float(r[6 + n]),
                                           places=2, msg=r)
                for j in range(6, 7 + n):
                    self.assertAlmostEqual(sum(float(r[j]) for r in tickets), float(total[j]),
                                           places=1)
        of = body[total_at + 1:]  # on the listed ledger
        self.assertEqual(of[0][1], "其中")
        self.assertAlmostEqual(sum(float(r[cols - 3]) for r in of), float(total[cols - 3]),
                               places=1)


class ReconciliationOnDemoLedger(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.log = os.path.join(DIR, "sql.log")
        cls.rows = statement("reconciliation", DB, MONTHS, "--sql-log", cls.log)

    def test_rows_add_up(self):
        n, body = len(self.rows[0]) - 13, self.rows[2:]
        num = lambda t: float(t) if t else 0.0
        month, subtotals = [], []
        for r in body[:-1]:
            if r[2] == "小计":
                for k in range(3, n + 9):
                    self.assertAlmostEqual(num(r[k]), sum(num(m[k]) for m in month), places=2)
                d = sum(num(r[k]) for k in range(3, 8)) - num(r[n + 8]) + num(r[n + 9]) - num(r[n + 10])
                self.assertAlmostEqual(num(r[n + 11]), d, places=2)
                subtotals.append(r)
                month = []
            else:
                self.assertEqual(r[7], "0.00")
                self.assertAlmostEqual(num(r[n + 8]), sum(num(r[k]) for k in range(8, n + 8)), places=2)
                month.append(r)
        self.assertEqual(len(subtotals), 12)
        for k in range(3, n + 11):  # the total's labels and empty 差额: the golden CSV
            self.assertAlmostEqual(num(body[-1][k]), sum(num(r[k]) for r in subtotals), places=2)

    def test_invoice_columns_agree_with_the_ledger(self):
        sums = dict(sqlite3.connect(DB).execute(
            "Select strftime('%Y%m', p.开票日期), round(sum(d.税额), 2) From 票据开票数据 d "
            "Join 票据 p On p.票据编号 = d.票据编号 And p.入库单编号 = d.入库单编号 "
            "Join 票据入库单 s On s.入库单编号 = p.入库单编号 "
            "Join 税控盘收费项目设置 t On t.DH = d.收费项目代号 And t.管理处 = 'GY01' "
            "Where s.票据类型编号 = '01' And p.作废日期 Is Null And p.开票部门编号 = '01' "
            "And t.税率 Is Not Null And p.开票日期 Like '2024%' Group by 1").fetchall())
        got = {r[1]: float(r[4]) for r in self.rows[2:] if r[2] == "小计"}
        self.assertTrue(set(sums) <= set(got))
        for m in got:
            self.assertAlmostEqual(got[m], sums.get(m) or 0.0, places=2, msg=m)

    def test_one_statement_a_month_and_two_sums(self):
        lines = open(self.log, encoding="utf-8").read().splitlines()
        self.assertEqual(len(lines), 3 + 3 * 12)
        self.assertEqual(sum(l.startswith("Select Distinct CASE") for l in lines), 12)


REDRAW = "\r\x1b[K"


def on_terminal(args, terminal=True):
    """Exit status and standard error of a run whose standard error is a terminal."""
    if not terminal:
        r = run(*args)
        return r.returncode, r.stderr
    leader, follower = pty.openpty()
    p = subprocess.Popen([TOOL, *args], stdout=subprocess.DEVNULL, stderr=follower)
    os.close(follower)
    err = b""
    try:
        while chunk := os.read(leader, 65536):
            err += chunk
    except OSError:  # the last writer has gone
        pass
    os.close(leader)
    return p.wait(), err.decode().replace("\r\n", "\n")


class StatementProgress(unittest.TestCase):
    def statement(self, report, period, *extra, terminal=True):
        out = os.path.join(DIR, "s")
        return on_terminal([report, "--database", DB, "--dept", "01", *period,
                            "--xlsx", out + ".xlsx", "--csv", out + ".csv", *extra], terminal)

    def test_the_steps_on_one_redrawn_line(self):
        for report, period, label in [("invoice", YEAR, "01 增值税开票明细表"),
                                      ("reconciliation", MONTHS, "01 增值税开票票据核对表")]:
            with self.subTest(report):
                status, err = self.statement(report, period)
                self.assertEqual(status, 0)
                rows = len(read(os.path.join(DIR, "s.csv"))) - 2
                steps = err.split(REDRAW)
                self.assertEqual((steps[0], steps[-1]), ("", ""))  # cleared at the end
                self.assertTrue(all(s.startswith(label + ": ") for s in steps[1:-1]), steps)
                said = [s[len(label) + 2:] for s in steps[1:-1]]
                self.assertEqual(said[:2] + said[-2:], [
                    "extracting fee items", "computing",
                    "writing the workbook, {0:,} of {0:,} rows".format(rows), "writing the CSV"])

    def test_quiet_or_no_terminal_shows_nothing_and_a_message_starts_a_clean_line(self):
        self.assertEqual(self.statement("parking", YEAR, "--quiet"), (0, ""))
        self.assertEqual(self.statement("parking", YEAR, terminal=False), (0, ""))
        status, err = self.statement("invoice", ["--from", "2016-01-01", "--to", "2016-12-31"])
        self.assertEqual(status, 3)
        self.assertTrue(err.endswith(REDRAW + "yunqi-statement: 没有满足条件的开票数据,请重新设置条件!\n"), err)


class Mismatches(unittest.TestCase):
    def batch(self, month, *extra):
        out = os.path.join(DIR, "out")
        r = run("batch", "--database", DB, "--month", month, "--out", out, "--csv", *extra)
        self.assertEqual(r.returncode, 0, r.stderr)
        return out, r.stderr

    def expected(self, out):
        """The rows with a difference, read back from the reconciliation CSVs."""
        rows, rounding = [], 0
        for dept in [d for d, rep, *_ in read(os.path.join(out, "summary.csv"))[1:]
                     if rep == "reconciliation"]:
            grid = read(os.path.join(out, dept, "reconciliation.csv"))
            col = list(zip(grid[0], grid[1])).index(("核对结果", "差额"))
            for r in grid[2:]:
                if r[col] and float(r[col]) != 0:
                    rows.append([dept, r[1], r[2], r[col]])
                rounding += r[col] == "-0.00"
        return rows, rounding

    def test_the_rows_whose_difference_is_not_zero_and_how_many_departments(self):
        # The demo's one misfiled receipt (02, March 2024) shows from March on; --quiet tells
        # only of departments that disagree.
        said = "yunqi-statement: batch: 1 department does not reconcile\n"
        for month, disagreeing, quiet in [("2024-03", [["02", "202403", "小计"]], said),
                                          ("2024-02", [], "")]:
            with self.subTest(month):
                self.assertEqual(self.batch(month, "--quiet")[1], quiet)
                out, err = self.batch(month)
                if month == "2024-03":  # every statement of the four departments has rows
                    summary = read(os.path.join(out, "summary.csv"))[1:]
                    self.assertEqual((len(summary), {s[2] for s in summary}),
                                     (4 * len(statements()), {"ok"}))
                rows, rounding = self.expected(out)
                self.assertEqual([r[:3] for r in rows], disagreeing)
                self.assertEqual(read(os.path.join(out, "mismatches.csv")),
                                 [["dept", "month", "rate", "difference"]] + rows)
                self.assertGreater(rounding, 0)  # "-0.00" stands in the grids and agrees
                self.assertEqual(err.splitlines()[-1], "yunqi-statement: batch: " + (
                    "1 department does not reconcile" if rows
                    else "0 departments do not reconcile"))

if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
