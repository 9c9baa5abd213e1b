"""yunqi-statement invoice end to end on a demo ledger, checked against the
ledger itself: every ticket of the window is on the statement, each row's
合计 is the sum of its money columns, and the 其中 block adds up to the total
once every payment method is listed."""
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


def run(*args):
    return subprocess.run([TOOL, *args], capture_output=True, text=True)


class InvoiceCommandOnDemoLedger(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.dir = tempfile.mkdtemp()
        cls.db = os.path.join(cls.dir, "demo.sqlite")
        made = run("make-demo-db", cls.db, "--tickets", "3000", "--seed", "5")
        assert made.returncode == 0, made.stderr

    @classmethod
    def tearDownClass(cls):
        shutil.rmtree(cls.dir)

    def statement(self, db, *extra):
        r = run("invoice", "--database", db, "--dept", "01", "--from", "2024-01-01",
                "--to", "2024-12-31", "--csv", "-", *extra)
        self.assertEqual(r.returncode, 0, r.stderr)
        return list(csv.reader(io.StringIO(r.stdout)))

    def test_every_ticket_and_sums(self):
        rows = self.statement(self.db)
        head0, head1, body = rows[0], rows[1], rows[2:]
        cols = len(head0)
        self.assertTrue(all(len(r) == cols for r in rows))
        self.assertEqual(head0[:6], ["序", "开票日期", "增值税发票", "增值税发票", "增值税发票", "收据"])
        self.assertEqual(head1[-3:], ["合计", "收款方式", "付款人"])
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


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
