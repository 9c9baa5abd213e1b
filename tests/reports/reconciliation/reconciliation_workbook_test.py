"""The reconciliation workbook read back with an independent reader: the
header merges (one over both invoice headings), the closing rows coloured
cell by cell as the grid coloured them, the empty 备注 column, the note line
under the table without a border."""
import csv
import io
import os
import shutil
import subprocess
import sys
import tempfile
import unittest

import openpyxl
from openpyxl.utils import get_column_letter as letter

BIN = sys.argv[1] if len(sys.argv) > 1 else "build/bin"
TOOL = os.path.join(BIN, "yunqi-statement")
# Blue-green-red numbers of the grid, as the file's red-green-blue.
ORANGE = "FFE0C0"  # 0xC0E0FF
BLUE = "C0C0FF"  # 0xFFC0C0


def fill(cell):
    if cell.fill.fill_type != "solid":
        return None
    return cell.fill.fgColor.rgb[-6:]


class ReconciliationWorkbook(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.dir = tempfile.mkdtemp()
        db = os.path.join(cls.dir, "d.sqlite")
        subprocess.run([TOOL, "make-demo-db", db, "--tickets", "1500"], check=True,
                       capture_output=True)
        cls.xlsx = os.path.join(cls.dir, "out.xlsx")
        r = subprocess.run([TOOL, "reconciliation", "--database", db, "--dept", "01", "--year",
                            "2024", "--months", "01-03", "--csv", "-", "--xlsx", cls.xlsx],
                           check=True, capture_output=True, text=True)
        cls.grid = list(csv.reader(io.StringIO(r.stdout)))
        cls.ws = openpyxl.load_workbook(cls.xlsx).active
        cls.c = len(cls.grid[0])
        cls.rows = len(cls.grid)  # R: the grid's rows, the two header rows included

    @classmethod
    def tearDownClass(cls):
        shutil.rmtree(cls.dir)

    def test_title_block_and_header_merges(self):
        ws, c = self.ws, self.c
        n, last = c - 13, letter(c)
        self.assertEqual({str(m) for m in ws.merged_cells.ranges},
                         {f"A1:{last}1", "A2:D2", "A3:D3", "A4:A5", "B4:B5", "C4:C5", "D4:G4",
                          f"I4:{letter(n + 9)}4", f"{last}4:{last}5"})
        self.assertEqual(ws["A1"].value, "2024年度【云栖苑】票据核对表")
        self.assertTrue(ws["A1"].font.b)
        self.assertEqual(ws["A2"].value, " 统计部门 : 01 云栖苑")
        self.assertEqual(ws["A3"].value, " 核对年月 : 2024 年 01 月 至 03 月")
        # The merge over D4:G4 keeps the first heading only.
        self.assertEqual(ws["D4"].value, "增值税专用发票")
        self.assertNotIn("增值税普通发票", [ws.cell(4, k).value for k in range(1, c + 1)])
        self.assertEqual([ws.cell(4, k).value for k in (8, 9)], ["收据", "财务交账"])
        self.assertEqual([ws.cell(4, k).value for k in range(n + 10, c + 1)],
                         ["当月收预开票", "当月未收预开", "核对结果", "备注"])
        self.assertEqual([ws.cell(5, k).value for k in range(4, n + 13)], self.grid[1][3:n + 12])
        for r in (4, 5):
            for k in range(1, c + 1):
                cell = ws.cell(r, k)
                if not isinstance(cell, openpyxl.cell.cell.MergedCell):
                    self.assertEqual(fill(cell), BLUE, (r, k))

    def test_body_and_colours_as_the_grid(self):
        ws, c = self.ws, self.c
        kinds = set()
        for g in range(2, self.rows):
            row, s = self.grid[g], g + 4
            self.assertEqual([ws.cell(s, k).value for k in (1, 2)], [float(row[0]), float(row[1])]
                             if row[1] != "合计" else [float(row[0]), "合计"])
            closing = "小计" if row[2] == "小计" else "合计" if row[1] == "合计" else None
            kinds.add(closing)
            for k in range(4, c):
                cell, text = ws.cell(s, k), row[k - 1]
                if text == "":
                    self.assertIsNone(cell.value, (s, k))
                    self.assertIsNone(fill(cell), (s, k))
                    continue
                self.assertAlmostEqual(cell.value, float(text), places=2)
                self.assertEqual(cell.number_format, "#0.00")
                expected = {"小计": ORANGE, "合计": BLUE}.get(closing)
                self.assertEqual(fill(cell), expected, (s, k))
            self.assertIsNone(ws.cell(s, c).value)
        self.assertEqual(kinds, {None, "小计", "合计"})

    def test_note_line_under_the_table(self):
        ws, c, r = self.ws, self.c, self.rows
        for k in (1, c):
            self.assertEqual(ws.cell(r + 3, k).border.bottom.style, "thin")
        self.assertEqual(ws.cell(r + 4, 2).value, " 核对结果: 相符 ( 专用发票 + 普通发票 + 收据 = "
                                                  "财务交账 - 当月收预开票 + 当月未收预开票 )")
        self.assertIsNone(ws.cell(r + 4, 2).border.left.style)
        self.assertEqual(ws.cell(r + 4, 2).font.sz, 9)
        self.assertEqual(ws.max_row, r + 4)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
