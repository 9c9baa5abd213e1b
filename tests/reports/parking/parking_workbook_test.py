"""The parking workbook of one parking item read back with an independent
reader: title block, header merges and fill, batch rows by kind, the summary
rows with the method beside the total, borders, fonts, signature row."""
import csv
import io
import os
import sqlite3
import sys
import unittest

import openpyxl

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "support"))
from workbooks import WorkbookTest, demo_ledger, filled  # noqa: E402


class ParkingWorkbook(WorkbookTest):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        db = demo_ledger(cls.dir, 3000)
        # One parking item left: 007 地下停车费, tax rate 0.05.
        with sqlite3.connect(db) as con:
            con.execute("UPDATE setupsfxm SET 收费类别 = '服务收入' WHERE dh IN ('008', '009')")
        cls.xlsx = os.path.join(cls.dir, "out.xlsx")
        out = cls.statement("parking", "--database", db, "--dept", "01", "--from",
                            "2024-01-01", "--to", "2024-06-30", "--ratio", "007=62.5/37.5",
                            "--csv", "-", "--xlsx", cls.xlsx)
        cls.grid = list(csv.reader(io.StringIO(out)))
        cls.ws = openpyxl.load_workbook(cls.xlsx).active
        cls.u = len(cls.grid) - 2

    def merged(self):
        return {str(r) for r in self.ws.merged_cells.ranges}

    def rows_labelled(self, label):
        return [r for r in range(6, self.u + 6) if self.ws.cell(r, 2).value == label]

    def test_title_block_and_header(self):
        ws = self.ws
        self.assertEqual(len(self.grid[0]), 7)
        self.assertEqual(ws.max_column, 7)
        self.assertEqual(ws["A1"].value, "【云栖苑】停车费明细表")
        self.assertEqual(ws["A2"].value, " 统计部门 : 01 云栖苑")
        self.assertEqual(ws["A3"].value, " 开票日期 : 2024-01-01 至 2024-06-30")
        self.assertTrue({"A1:G1", "A2:D2", "A3:D3", "A4:A5", "B4:B5", "C4:C5", "D4:F4",
                         "G4:G5"} <= self.merged())
        self.assertEqual([ws.cell(4, k).value for k in (1, 2, 3, 4, 7)],
                         ["序", "发票号", "电子发票号", "地下停车费", "合计"])
        self.assertEqual([ws.cell(5, k).value for k in (4, 5, 6)],
                         ["开发商62.5%", "物业37.5%", "税额5%"])
        self.assertTrue(all(filled(ws.cell(r, k)) for r in (4, 5) for k in range(1, 8)))
        pixels = int(2500 / 110 * 7 + 0.5) + 5
        self.assertAlmostEqual(ws.column_dimensions["B"].width, int(pixels / 7 * 256) / 256,
                               places=3)

    def test_batch_rows_by_kind(self):
        ws = self.ws
        body = range(6, self.u + 6)
        paper = next(r for r in body if isinstance(ws.cell(r, 2).value, str)
                     and ws.cell(r, 2).value[0].isdigit())
        electronic = next(r for r in body if ws.cell(r, 3).value)
        self.assertIsNone(ws.cell(paper, 3).value)
        self.assertIsNone(ws.cell(electronic, 2).value)
        for r in (paper, electronic):
            self.assertEqual(ws.cell(r, 1).value, r - 5)
            for k in range(4, 8):
                self.assertIsInstance(ws.cell(r, k).value, (int, float), (r, k))
                self.assertEqual(ws.cell(r, k).number_format, "#0.00")
                self.assertEqual(ws.cell(r, k).alignment.horizontal, "right")
            self.assertAlmostEqual(ws.cell(r, 7).value, float(self.grid[r - 4][6]), places=2)
            self.assertFalse(filled(ws.cell(r, 1)))
        # A range of numbers stays text, leading zeros and all.
        self.assertTrue(ws.cell(paper, 2).value.startswith("0"))

    def test_summary_rows(self):
        ws = self.ws
        [total] = self.rows_labelled("合计")
        self.assertEqual([ws.cell(total, k).value for k in (4, 5, 6)], [None, None, None])
        self.assertAlmostEqual(ws.cell(total, 7).value, float(self.grid[total - 4][6]), places=2)
        self.assertTrue(all(filled(ws.cell(total, k)) for k in range(1, 8)))
        [of] = self.rows_labelled("其中")
        self.assertEqual(of, total + 1)
        for r in range(of, self.u + 6):
            self.assertIsInstance(ws.cell(r, 6).value, str)
            self.assertEqual(ws.cell(r, 6).alignment.horizontal, "right")
            self.assertIsInstance(ws.cell(r, 7).value, (int, float))
            self.assertEqual([ws.cell(r, k).value for k in (4, 5)], [None, None])
            self.assertTrue(filled(ws.cell(r, 7)))
        self.assertEqual(self.u + 5, ws.max_row - 1)

    def test_borders_fonts_signature(self):
        ws, u = self.ws, self.u
        for r in (4, 6, u + 5):
            for k in (1, 4, 7):
                self.assertEqual(ws.cell(r, k).border.left.style, "thin", (r, k))
        self.assertEqual(ws["A1"].font.name, "微软雅黑")
        self.assertTrue(ws["A1"].font.b)
        sign = u + 6
        self.assertEqual([ws.cell(sign, k).value for k in (1, 2, 3, 5)],
                         ["收款人:", "经理:", "缴款人:", "总仓管理员:"])
        self.assertEqual([ws.cell(sign, k).alignment.horizontal for k in (2, 3, 5)],
                         ["center", "left", "left"])
        for r in (2, 6, sign):
            self.assertEqual(ws.cell(r, 1).font.name, "微软雅黑")
            self.assertEqual(ws.cell(r, 1).font.sz, 9)
        self.assertIsNone(ws.cell(sign, 1).border.left.style)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
