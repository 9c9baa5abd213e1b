"""The invoice workbook read back with an independent reader: title block,
header merges and fill, text numbers with leading zeros, money as numbers,
the total and 其中 rows, borders, signature line, fonts."""
import csv
import io
import os
import sys
import unittest

import openpyxl

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "support"))
from workbooks import WorkbookTest, demo_ledger, filled  # noqa: E402


class InvoiceWorkbook(WorkbookTest):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        db = demo_ledger(cls.dir, 600)
        cls.xlsx = os.path.join(cls.dir, "out.xlsx")
        out = cls.statement("invoice", "--database", db, "--dept", "01", "--from",
                            "2024-01-01", "--to", "2024-06-30", "--csv", "-", "--xlsx",
                            cls.xlsx)
        cls.grid = list(csv.reader(io.StringIO(out)))
        cls.ws = openpyxl.load_workbook(cls.xlsx).active
        cls.c = len(cls.grid[0])
        cls.u = len(cls.grid) - 2

    def merged(self):
        return {str(r) for r in self.ws.merged_cells.ranges}

    def test_title_block_and_header(self):
        ws, c = self.ws, self.c
        last = openpyxl.utils.get_column_letter(c)
        self.assertIn(f"A1:{last}1", self.merged())
        self.assertEqual(ws["A1"].value, "【云栖苑】增值税开票明细表")
        self.assertEqual(ws["A1"].alignment.horizontal, "center")
        self.assertEqual(ws["A1"].font.name, "微软雅黑")
        self.assertTrue(ws["A1"].font.b)
        self.assertEqual(ws["A2"].value, " 统计部门 : 01 云栖苑")
        self.assertEqual(ws["A3"].value, " 开票日期 : 2024-01-01 至 2024-06-30")
        self.assertTrue({"A2:D2", "A3:D3", "A4:A5", "B4:B5", "C4:E4", "F4:F5",
                         f"{last}4:{last}5"} <= self.merged())
        # Row 4 keeps the top-left text of each merge; row 5 the second header row.
        self.assertEqual([ws.cell(4, k).value for k in (1, 2, 3, 6)], ["序", "开票日期", "增值税发票", "收据"])
        self.assertEqual([ws.cell(5, k).value for k in range(3, 6)], ["专用发票", "普通发票", "电子发票"])
        self.assertEqual([ws.cell(5, k).value for k in range(7, c - 2)], self.grid[1][6:c - 3])
        self.assertTrue(all(filled(ws.cell(r, k)) for r in (4, 5) for k in range(1, c + 1)))
        # The file holds the width with the cell padding, as the spreadsheet saves it.
        pixels = int(2000 / 110 * 7 + 0.5) + 5
        self.assertAlmostEqual(ws.column_dimensions["F"].width, int(pixels / 7 * 256) / 256, places=3)

    def test_rows(self):
        ws, c, u = self.ws, self.c, self.u
        ticket = next(r for r in range(6, u + 6) if ws.cell(r, 2).is_date)
        self.assertEqual(ws.cell(ticket, 2).number_format, "yyyy-mm-dd")
        numbers = [ws.cell(ticket, k).value for k in range(3, 7)]
        no = next(v for v in numbers if v)
        self.assertIsInstance(no, str)
        self.assertTrue(no.startswith("0"))
        fee = ws.cell(ticket, 7)
        self.assertIsInstance(fee.value, (int, float))
        self.assertEqual(fee.number_format, "#0.00")
        self.assertEqual(fee.alignment.horizontal, "right")
        self.assertTrue(ws.cell(ticket, 2).alignment.wrap_text)

        total = next(r for r in range(6, u + 6) if ws.cell(r, 2).value == "合  计")
        self.assertEqual(ws.cell(total, 1).value, total - 5)
        self.assertTrue(all(filled(ws.cell(total, k)) for k in range(1, c + 1)))
        self.assertAlmostEqual(ws.cell(total, c - 2).value, float(self.grid[total - 4][c - 3]), places=2)

        of = total + 1
        self.assertEqual(ws.cell(of, 2).value, "其中")
        written = [k for k in range(1, c + 1) if ws.cell(of, k).value not in (None, "")]
        self.assertEqual(written, [1, 2, c - 2, c - 1])
        self.assertTrue(all(filled(ws.cell(of, k)) for k in range(1, c + 1)))

    def test_borders_fonts_signature(self):
        ws, c, u = self.ws, self.c, self.u
        for r in (4, 6, u + 5):
            for k in (1, c // 2, c):
                self.assertEqual(ws.cell(r, k).border.left.style, "thin", (r, k))
        for r in (2, 6, u + 5):
            self.assertEqual(ws.cell(r, 1).font.name, "微软雅黑")
            self.assertEqual(ws.cell(r, 1).font.sz, 9)
        sign = u + 6
        self.assertEqual([ws.cell(sign, k).value for k in (2, 7, 13)], ["收款人:", "经理:", "缴款人:"])
        self.assertIsNone(ws.cell(sign, 2).border.left.style)
        self.assertNotEqual(ws.cell(sign, 2).font.name, "微软雅黑")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
