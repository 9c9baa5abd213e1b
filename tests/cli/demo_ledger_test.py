"""The demo ledger numbered as an office numbers its tickets: each stock-in
note a contiguous range of one type's running number, unique in the type,
given to one department; a household's tickets paid together; every kind of
ticket kept. Every statement of every department has rows over 2024, and the
largest department's year of parking stays under the 32,767-batch limit."""
import csv
import os
import shutil
import sqlite3
import subprocess
import sys
import tempfile
import unittest

BIN = sys.argv[1] if len(sys.argv) > 1 else "build/bin"
TOOL = os.path.join(BIN, "yunqi-statement")
YEAR = {"invoice": ["--from", "2024-01-01", "--to", "2024-12-31"],
        "preinvoice": ["--from", "2024-01-01", "--to", "2024-12-31"],
        "parking": ["--from", "2024-01-01", "--to", "2024-12-31"],
        "reconciliation": ["--year", "2024", "--months", "01-12"]}
TICKETS = ("Select p.*, s.票据类型编号 As 类型, t.票据类型 As 类型名 From 票据 p "
           "Join 票据入库单 s Using (入库单编号) Join 票据类型 t On t.票据类型代号 = s.票据类型编号")
KINDS = {
    "voided": "作废日期 Is Not Null",
    "invoiced ahead, paid later": "预开 = 1 And 收款日期 > 开票日期",
    "invoiced ahead, not paid": "预开 = 1 And 收款日期 Is Null",
    "red-letter": "金额 < 0",
    "replacing another": "被换票票据编号 Is Not Null",
    "receipt": "类型名 = '收据'",
    "electronic, with its order": "类型名 Like '%电子%' And 交易订单号 Is Not Null",
}


def run(*args):
    return subprocess.run([TOOL, *args], capture_output=True, text=True)


class DemoLedger(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.dir = tempfile.mkdtemp()
        cls.ledgers = {}
        for tickets in (20000, 200000):
            path = os.path.join(cls.dir, "%d.sqlite" % tickets)
            made = run("make-demo-db", path, "--tickets", str(tickets))
            assert made.returncode == 0, made.stderr
            cls.ledgers[tickets] = path
        cls.db = sqlite3.connect(cls.ledgers[200000])

    @classmethod
    def tearDownClass(cls):
        cls.db.close()
        shutil.rmtree(cls.dir)

    def sql(self, text):
        return self.db.execute(text).fetchall()

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

    def test_every_statement_of_every_department_has_rows_over_2024(self):
        depts = [d for (d,) in self.sql("Select 职能部门编号 From 职能部门new "
                                        "Where 终止日期 Is Null")]
        self.assertEqual(len(depts), 4)
        for dept in depts:
            for report, period in YEAR.items():
                with self.subTest(dept=dept, report=report):
                    r = run(report, "--database", self.ledgers[20000], "--dept", dept, *period,
                            "--csv", "-")
                    self.assertEqual(r.returncode, 0, r.stderr)
                    self.assertGreater(r.stdout.count("\n"), 2)

    def test_the_largest_departments_parking_year_fits_under_the_limit(self):
        csv_path = os.path.join(self.dir, "parking.csv")
        r = run("parking", "--database", self.ledgers[200000], "--dept", "01", *YEAR["parking"],
                "--csv", csv_path)
        self.assertEqual(r.returncode, 0, r.stderr)
        with open(csv_path, encoding="utf-8") as f:
            rows = len(list(csv.reader(f))) - 2
        self.assertLess(rows, 32767)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
