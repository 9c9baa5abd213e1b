#include "frame/WorkbookLayout.h"

namespace yunqi {

namespace WorkbookLayout {

void TitleBlock(SheetModel& sheet, int cols, const QString& title, const QString& deptLine,
                const QString& periodLine) {
    auto head = sheet.RangeOf(1, 1, 1, cols);
    head.SetMergeCells(true);
    head.SetHorizontalAlignment(SheetModel::kAlignCenter);
    sheet.Cells(1, 1).SetValue(title);
    int row = 2;
    for (const QString* line : {&deptLine, &periodLine}) {
        auto range = sheet.RangeOf(row, 1, row, 4);
        range.SetMergeCells(true);
        range.SetHorizontalAlignment(SheetModel::kAlignLeft);
        sheet.Cells(row++, 1).SetValue(*line);
    }
}

void GridHeader(SheetModel& sheet, const FlexGrid& grid) {
    const int cols = grid.Cols();
    sheet.RangeOf(4, 1, 5, cols).SetHorizontalAlignment(SheetModel::kAlignCenter);
    for (int headerRow = 0; headerRow <= 1; ++headerRow)
        for (int g = 0; g < cols; ++g) {
            sheet.SetColumnWidth(g + 1, grid.ColWidth(g) / 110.0);
            sheet.Cells(4 + headerRow, g + 1).SetValue(grid.TextMatrix(headerRow, g));
        }
}

void Finish(SheetModel& sheet, int cols, const SheetModel::Area& money, int lastRow,
            int lastTableRow) {
    auto numbers = sheet.RangeOf(money.top, money.left, money.bottom, money.right);
    numbers.SetNumberFormat(QStringLiteral("#0.00"));
    numbers.SetHorizontalAlignment(SheetModel::kAlignRight);
    auto head = sheet.RangeOf(1, 1, 1, cols);
    head.SetFontName(QStringLiteral("微软雅黑"));
    head.SetFontBold(true);
    auto body = sheet.RangeOf(2, 1, lastRow, cols);
    body.SetFontName(QStringLiteral("微软雅黑"));
    body.SetFontSize(9);
    sheet.RangeOf(4, 1, lastTableRow, cols).SetBordersLineStyle(1);
}

}  // namespace WorkbookLayout

}  // namespace yunqi
