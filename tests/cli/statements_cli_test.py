"""The statements end to end on a demo ledger, checked against the ledger
itself. The invoice statement: every ticket of the window is on it, each
row's 合计 is the sum of its money columns, and the 其中 block adds up to the
total once every payment method is listed. The reconciliation: the rows add
up as the check says, the invoice columns agree with the ledger, one
statement a month."""
import csv
import io
import os
import shutil
import sqlite3
import subprocess
import sys
import tempfile
import unittest

BIN = sys.argv[1] if len(sys.argv) > 1 else "build/bin"
TOOL = os.path.join(BIN, "yunqi-statement")
DIR = tempfile.mkdtemp()
DB = os.path.join(DIR, "demo.sqlite")


def run(*args):
    return subprocess.run([TOOL, *args], capture_output=True, text=True)


def setUpModule():
    made = run("make-demo-db", DB, "--tickets", "3000", "--seed", "5")
    assert made.returncode == 0, made.stderr


def tearDownModule():
    shutil.rmtree(DIR)


class InvoiceOnDemoLedger(unittest.TestCase):
    db, dir = DB, DIR

    def statement(self, db, *extra):
        r = run("invoice", "--database", db, "--dept", "01", "--from", "2024-01-01",
                "--to", "2024-12-31", "--csv", "-", *extra)
        self.assertEqual(r.returncode, 0, r.stderr)
        return list(csv.reader(io.StringIO(r.stdout)))

    def test_every_ticket_and_sums(self):
        rows = self.statement(self.db)
        head0, body = rows[0], rows[2:]
        cols = len(head0)
        self.assertTrue(all(len(r) == cols for r in rows))
        self.assertEqual([r[0] for r in body], [str(i) for i in range(1, len(body) + 1)])

        total_at = next(i for i, r in enumerate(body) if r[1] == "合  计")
        tickets, total = body[:total_at], body[total_at]
        n = cols - 9
        for r in tickets:
            fees = [float(x) for x in r[6:6 + n]]
            self.assertAlmostEqual(sum(fees), float(r[6 + n]), places=2, msg=r)
        for j in range(6, 7 + n):
            self.assertAlmostEqual(sum(float(r[j]) for r in tickets), float(total[j]), places=1)

        con = sqlite3.connect(self.db)
        expected = {no for (no,) in con.execute(
            "select distinct t.票据编号 from 票据 t join 票据入库单 k on k.入库单编号=t.入库单编号 "
            "join 票据类型 y on y.票据类型代号=k.票据类型编号 where y.定额=0 and t.开票部门编号='01' "
            "and exists (select 1 from 票据开票数据 d where d.票据编号=t.票据编号 and d.入库单编号=t.入库单编号) "
            "and (substr(t.开票日期,1,10) between '2024-01-01' and '2024-12-31' or "
            "(substr(t.收款日期,1,10) between '2024-01-01' and '2024-12-31' "
            "and substr(t.开票日期,1,10) < substr(t.收款日期,1,10)))")}
        shown = {next(x for x in r[2:6] if x) for r in tickets}
        self.assertEqual(shown, expected)

    def test_breakdown_adds_up_when_every_method_is_listed(self):
        listed = os.path.join(self.dir, "listed.sqlite")
        shutil.copy(self.db, listed)
        con = sqlite3.connect(listed)
        con.execute("insert into 收款方式列表 select distinct 收款方式 from 票据 "
                    "where 收款方式 not in (select 收款方式 from 收款方式列表)")
        con.commit()
        con.close()
        body = self.statement(listed)[2:]
        total_at = next(i for i, r in enumerate(body) if r[1] == "合  计")
        cols = len(body[0])
        of = body[total_at + 1:]
        self.assertEqual(of[0][1], "其中")
        self.assertAlmostEqual(sum(float(r[cols - 3]) for r in of),
                               float(body[total_at][cols - 3]), places=1)


class ReconciliationOnDemoLedger(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.db, cls.log = DB, os.path.join(DIR, "sql.log")
        r = run("reconciliation", "--database", cls.db, "--dept", "01", "--year", "2024",
                "--months", "01-12", "--csv", "-", "--sql-log", cls.log)
        assert r.returncode == 0, r.stderr
        cls.rows = list(csv.reader(io.StringIO(r.stdout)))

    def test_rows_add_up(self):
        head0, body = self.rows[0], self.rows[2:]
        c = len(head0)
        n = c - 13
        self.assertTrue(all(len(r) == c for r in self.rows))
        self.assertEqual([r[0] for r in body], [str(i) for i in range(1, len(body) + 1)])
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
        total = body[-1]
        self.assertEqual(total[1:3], ["合计", ""])
        for k in range(3, n + 11):
            self.assertAlmostEqual(num(total[k]), sum(num(r[k]) for r in subtotals), places=2)
        self.assertEqual(total[n + 11], "")

    def test_invoice_columns_agree_with_the_ledger(self):
        con = sqlite3.connect(self.db)
        sums = dict(con.execute(
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
        with open(self.log, encoding="utf-8") as f:
            lines = f.read().splitlines()
        self.assertEqual(len(lines), 3 + 3 * 12)
        self.assertEqual(sum(l.startswith("Select Distinct CASE") for l in lines), 12)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
