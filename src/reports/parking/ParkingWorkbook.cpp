#include "reports/parking/ParkingWorkbook.h"

#include "core/ValueRules.h"
#include "frame/WorkbookParts.h"
#include "reports/parking/ParkingStatement.h"

namespace yunqi {

void WriteParkingSheet(const ParkingStatement& statement, SheetModel& sheet,
                       ExportFrame::ExportSteps& steps, const WorkbookContext& in) {
    using ValueRules::Format0_00;
    using WorkbookParts::kLightBlue;
    const DetailRows& rows = statement.Rows();
    const int c = in.grid1.Cols();
    const int n = statement.FeeColumnCount();
    const int u = rows.UpperBound();

    WorkbookParts::WriteTitleBlock(sheet, c, in);
    WorkbookParts::CopyGridHeader(sheet, in.grid1);
    for (int col = 1; col <= 3; ++col) sheet.RangeOf(4, col, 5, col).SetMergeCells(true);
    WorkbookParts::MergeFeeBands(sheet, statement.FeeItems(), 3);
    sheet.RangeOf(4, c, 5, c).SetMergeCells(true);
    sheet.RangeOf(4, 1, 5, c).SetInteriorColor(kLightBlue);

    steps.HeaderWritten();

    for (int r = 1; r <= u; ++r) {
        steps.Row(r);
        const int s = r + 5;
        auto number = sheet.Cells(s, 1);
        number.SetValue(double(r));
        number.SetHorizontalAlignment(SheetModel::kAlignCenter);
        if (statement.IsSummaryRow(r)) {
            auto label = sheet.Cells(s, 2);
            label.SetValue(rows.TicketNo(r));
            label.SetHorizontalAlignment(SheetModel::kAlignCenter);
            auto method = sheet.Cells(s, c - 1);
            method.SetValue(rows.PayMethod(r));
            method.SetHorizontalAlignment(SheetModel::kAlignRight);
            auto total = sheet.Cells(s, c);
            total.SetValue(rows.RowTotal(r));
            total.SetHorizontalAlignment(SheetModel::kAlignRight);
            sheet.RangeOf(s, 1, s, c).SetInteriorColor(kLightBlue);
        } else {
            const int col = rows.TicketKind(r) == ParkingStatement::kPaper ? 2 : 3;
            auto range = sheet.Cells(s, col);
            // The apostrophe keeps the numbers as text.
            range.SetValue(QLatin1Char('\'') + rows.TicketNo(r));
            range.SetHorizontalAlignment(SheetModel::kAlignCenter);
            for (int j = 1; j <= n; ++j)
                sheet.Cells(s, j + 3).SetValue(Format0_00(rows.FeeAmount(r, j)));
            sheet.Cells(s, c).SetValue(Format0_00(rows.RowTotal(r)));
        }
    }

    auto money = sheet.RangeOf(6, 4, u + 5, c);
    money.SetNumberFormat(QStringLiteral("#0.00"));
    money.SetHorizontalAlignment(SheetModel::kAlignRight);
    // The signature row takes the body's font but no borders.
    WorkbookParts::FinishTable(sheet, u + 5, c, u + 6);
    WorkbookParts::WriteSignatureLine(sheet, u + 6,
                                      {{1, QStringLiteral("收款人:")},
                                       {2, QStringLiteral("经理:"), SheetModel::kAlignCenter},
                                       {3, QStringLiteral("缴款人:"), SheetModel::kAlignLeft},
                                       {5, QStringLiteral("总仓管理员:"), SheetModel::kAlignLeft}});
    steps.FooterWritten();
}

}  // namespace yunqi
