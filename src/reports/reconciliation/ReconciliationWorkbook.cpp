#include "reports/reconciliation/ReconciliationWorkbook.h"

#include "core/ValueRules.h"
#include "frame/Conditions.h"
#include "frame/WorkbookLayout.h"

namespace yunqi {

namespace {

constexpr int kLightBlue = 0xFFC0C0;

}  // namespace

void WriteReconciliationSheet(SheetModel& sheet, ExportFrame::ExportSteps& steps,
                              const WorkbookContext& in) {
    using ValueRules::Val;
    const FlexGrid& grid = in.grid1;
    const int rows = grid.Rows();
    const int c = grid.Cols();
    const int n = c - 13;

    const StatementConditions& k = in.conditions;
    WorkbookLayout::TitleBlock(
        sheet, c, in.title,
        QStringLiteral(" 统计部门 : ") + Conditions::EntryBeforeBracket(in.entry),
        QStringLiteral(" 核对年月 : ") + k.Year + QStringLiteral(" 年 ") + k.FromMonth +
            QStringLiteral(" 月 至 ") + k.ToMonth + QStringLiteral(" 月"));
    WorkbookLayout::GridHeader(sheet, grid);

    sheet.RangeOf(4, 1, 5, 1).SetMergeCells(true);
    sheet.RangeOf(4, 2, 5, 2).SetMergeCells(true);
    sheet.RangeOf(4, 3, 5, 3).SetMergeCells(true);
    // One merge over both invoice headings: only the first of them shows.
    sheet.RangeOf(4, 4, 4, 7).SetMergeCells(true);
    sheet.RangeOf(4, 9, 4, n + 9).SetMergeCells(true);
    sheet.RangeOf(4, c, 5, c).SetMergeCells(true);
    sheet.RangeOf(4, 1, 5, c).SetInteriorColor(kLightBlue);

    for (int r = 2; r < rows; ++r) {
        steps.Row(r - 1);
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

    WorkbookLayout::Finish(sheet, c, {6, 4, rows + 4, c - 1}, rows + 4, rows + 3);

    // A fixed line: it states the rule, the 差额 column shows the outcome.
    sheet.Cells(rows + 4, 2)
        .SetValue(QStringLiteral(" 核对结果: 相符 ( 专用发票 + 普通发票 + 收据 = 财务交账 - "
                                 "当月收预开票 + 当月未收预开票 )"));
}

}  // namespace yunqi
