"""The pre-invoice workbook of one ticket read back with an independent reader:
the ticket in row 6, "合  计" in row 7 coloured over every column, the
signature line in row 8."""
import os
import sqlite3
import sys
import unittest

import openpyxl

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "support"))
from workbooks import WorkbookTest, demo_ledger, filled  # noqa: E402


class PreInvoiceWorkbookOfOneTicket(WorkbookTest):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        db = demo_ledger(cls.dir, 0)
        with sqlite3.connect(db) as con:
            con.execute("INSERT INTO 票据入库单 VALUES ('T1','02')")
            con.execute(
                "INSERT INTO 票据 (票据编号, 入库单编号, 开票日期, 金额, 收款方式, 付款人, 地址, "
                "开票部门编号, 预开) VALUES ('00042','T1','2024-03-10 09:00:00',106,'现金','甲',"
                "'1号楼','01',1)")
            con.execute("INSERT INTO 票据开票数据 VALUES ('T1','00042','001',106,6)")
        cls.xlsx = os.path.join(cls.dir, "p.xlsx")
        cls.statement("preinvoice", "--database", db, "--dept", "01", "--from",
                      "2024-03-01", "--to", "2024-03-31", "--xlsx", cls.xlsx)
        cls.ws = openpyxl.load_workbook(cls.xlsx).active

    def test_rows_of_one_ticket(self):
        ws = self.ws
        c = 9  # 7 columns and one ordinary item
        self.assertEqual(ws["A1"].value, "【云栖苑】增值税预开票明细表")
        # Covered cells of a merge read as None.
        self.assertEqual([ws.cell(4, k).value for k in range(1, c + 1)],
                         ["序", "开票日期", "增值税发票", None, "物业服务费", None, "合计",
                          "收款方式", "付款人"])
        self.assertEqual([ws.cell(5, k).value for k in range(1, c + 1)],
                         [None, None, "专用发票", "普通发票", "金额", "税额6%", None, None, None])
        merged = {str(r) for r in ws.merged_cells.ranges}
        self.assertTrue({"A4:A5", "B4:B5", "C4:D4", "E4:F4", "G4:G5", "H4:H5", "I4:I5"} <= merged)
        row6 = [ws.cell(6, k).value for k in range(1, c + 1)]
        self.assertEqual(row6[0], 1)
        self.assertEqual(row6[2:], [None, "00042", 100, 6, 106, "预开", "甲 1号楼"])
        self.assertEqual(ws["B6"].number_format, "yyyy-mm-dd")
        self.assertEqual(ws["E6"].number_format, "#0.00")
        self.assertFalse(filled(ws["A6"]))
        self.assertEqual(ws["B7"].value, "合  计")
        self.assertEqual(ws["G7"].value, 106)
        self.assertTrue(all(filled(ws.cell(7, k)) for k in range(1, c + 1)))
        self.assertEqual([ws["B8"].value, ws["G8"].value, ws["M8"].value],
                         ["收款人:", "经理:", "缴款人:"])
        self.assertEqual(ws["A7"].border.left.style, "thin")
        self.assertIsNone(ws["A8"].border.left.style)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
