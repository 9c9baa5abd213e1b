#include "core/ValueRules.h"
#include "frame/WorkbookParts.h"
#include "reports/parking/ParkingStatement.h"

namespace yunqi {

void ParkingStatement::WriteSheet(SheetModel& sheet, ExportFrame::ExportSteps& steps,
                                  const WorkbookContext& in) const {
    const DetailRows& rows = rows_;
    WorkbookParts::WriteTicketHeader(sheet, in, plan_, feeItems_);
    const int c = in.statementGrid.Cols();

    const int n = feeColumnCount_;
    const int u = rows.UpperBound();
    // The money band's format and the table's fonts and borders, taken by each row as it completes.
    auto money = sheet.Finally(6, 4, u + 5, c);
    money.SetNumberFormat(QStringLiteral("#0.00"));
    money.SetHorizontalAlignment(SheetModel::kAlignRight);
    // The signature row takes the body's font but no borders.
    WorkbookParts::FinishTable(sheet, u + 5, c, u + 6);

    steps.HeaderWritten();
    for (int r = 1; r <= u; ++r) {
        const int s = WorkbookParts::StartRecordRow(sheet, steps, r);
        if (IsSummaryRow(r)) {
            auto label = sheet.Cells(s, 2);
            label.SetValue(rows.TicketNo(r));
            label.SetHorizontalAlignment(SheetModel::kAlignCenter);
            auto method = sheet.Cells(s, c - 1);
            method.SetValue(rows.PayMethod(r));
            method.SetHorizontalAlignment(SheetModel::kAlignRight);
            auto total = sheet.Cells(s, c);
            total.SetValue(rows.RowTotal(r));
            total.SetHorizontalAlignment(SheetModel::kAlignRight);
            sheet.RangeOf(s, 1, s, c).SetInteriorColor(WorkbookParts::kLightBlue);
            continue;
        }
        auto range = sheet.Cells(s, rows.TicketKind(r) == kPaper ? 2 : 3);
        // The apostrophe keeps the numbers as text.
        range.SetValue(QLatin1Char('\'') + rows.TicketNo(r));
        range.SetHorizontalAlignment(SheetModel::kAlignCenter);
        for (int j = 1; j <= n; ++j)
            sheet.Cells(s, j + 3).SetValue(ValueRules::Format0_00(rows.FeeAmount(r, j)));
        sheet.Cells(s, c).SetValue(ValueRules::Format0_00(rows.RowTotal(r)));
    }

    WorkbookParts::WriteSignatureLine(sheet, u + 6,
                                      {{1, QStringLiteral("收款人:")},
                                       {2, QStringLiteral("经理:"), SheetModel::kAlignCenter},
                                       {3, QStringLiteral("缴款人:"), SheetModel::kAlignLeft},
                                       {5, QStringLiteral("总仓管理员:"), SheetModel::kAlignLeft}});
    steps.FooterWritten();
}

}  // namespace yunqi
