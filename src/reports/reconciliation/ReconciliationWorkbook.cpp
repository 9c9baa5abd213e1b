#include "reports/reconciliation/ReconciliationWorkbook.h"

#include "core/ValueRules.h"
#include "frame/WorkbookParts.h"

namespace yunqi {

void WriteReconciliationSheet(SheetModel& sheet, ExportFrame::ExportSteps& steps,
                              const WorkbookContext& in) {
    using ValueRules::Val;
    const FlexGrid& grid = in.statementGrid;
    const int rows = grid.Rows();
    const int c = grid.Cols();
    const int n = c - 13;

    const StatementConditions& conditions = in.conditions;
    WorkbookParts::WriteTitleBlock(sheet, c, in,
                                   QStringLiteral(" 核对年月 : ") + conditions.Year +
                                       QStringLiteral(" 年 ") + conditions.FromMonth +
                                       QStringLiteral(" 月 至 ") + conditions.ToMonth +
                                       QStringLiteral(" 月"));
    WorkbookParts::CopyGridHeader(sheet, grid);

    sheet.RangeOf(4, 1, 5, 1).SetMergeCells(true);
    sheet.RangeOf(4, 2, 5, 2).SetMergeCells(true);
    sheet.RangeOf(4, 3, 5, 3).SetMergeCells(true);
    // One merge over both invoice headings: only the first of them shows.
    sheet.RangeOf(4, 4, 4, 7).SetMergeCells(true);
    sheet.RangeOf(4, 9, 4, n + 9).SetMergeCells(true);
    sheet.RangeOf(4, c, 5, c).SetMergeCells(true);
    sheet.RangeOf(4, 1, 5, c).SetInteriorColor(WorkbookParts::kLightBlue);
    // The money band's format and the table's fonts and borders, taken by each row as it completes.
    auto money = sheet.Finally(6, 4, rows + 4, c - 1);
    money.SetNumberFormat(QStringLiteral("#0.00"));
    money.SetHorizontalAlignment(SheetModel::kAlignRight);
    // The borders stop above the note line; its font is the table's.
    WorkbookParts::FinishTable(sheet, rows + 3, c);
    auto note = sheet.Finally(rows + 4, 1, rows + 4, c);
    note.SetFontName(QStringLiteral("微软雅黑"));
    note.SetFontSize(9);

    for (int r = 2; r < rows; ++r) {
        steps.Row(r - 1);
        sheet.CompleteRowsThrough(r + 3);
        const bool closing = grid.TextMatrix(r, 1) == QStringLiteral("合计") ||
                             grid.TextMatrix(r, 2) == QStringLiteral("小计");
        // The last grid column, 备注, is never written.
        for (int col = 1; col < c; ++col) {
            auto cell = sheet.Cells(r + 4, col);
            const QString& text = grid.TextMatrix(r, col - 1);
            if (col <= 3) {
                cell.SetValue(text);
                cell.SetHorizontalAlignment(SheetModel::kAlignCenter);
                continue;
            }
            if (text.isEmpty()) {
                cell.SetValue(QString());
                continue;
            }
            // The text read as a number and formatted again: "-0.00" lands as 0.
            cell.SetValue(Val(ValueRules::Format0_00(Val(text))) + 0.0);
            if (closing) cell.SetInteriorColor(grid.CellBackColorAt(r, col - 1));
        }
    }

    // A fixed line: it states the rule, the 差额 column shows the outcome.
    sheet.Cells(rows + 4, 2)
        .SetValue(QStringLiteral(" 核对结果: 相符 ( 专用发票 + 普通发票 + 收据 = 财务交账 - "
                                 "当月收预开票 + 当月未收预开票 )"));
}

}  // namespace yunqi
