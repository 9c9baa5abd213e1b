#include "core/ValueRules.h"
#include "frame/WorkbookParts.h"
#include "reports/invoice/InvoiceStatement.h"

namespace yunqi {

namespace {

using WorkbookParts::kLightBlue;
const QString kTotal = QStringLiteral("合  计");
const QString kOf = QStringLiteral("其中");

}  // namespace

void InvoiceStatement::WriteSheet(SheetModel& sheet, ExportFrame::ExportSteps& steps,
                                  const WorkbookContext& in) const {
    using ValueRules::Format0_00;
    const FlexGrid& grid = in.statementGrid;
    const DetailRows& rows = rows_;
    const int c = grid.Cols();
    const int n = feeColumnCount_;
    const int u = rows.UpperBound();

    WorkbookParts::WriteTicketHeader(sheet, in, plan_, feeItems_);
    // The money band's format and the table's fonts and borders, taken by each row as it completes.
    auto money = sheet.Finally(6, 7, u + 5, n + 7);
    money.SetNumberFormat(QStringLiteral("#0.00"));
    money.SetHorizontalAlignment(SheetModel::kAlignRight);
    WorkbookParts::FinishTable(sheet, u + 5, c);
    steps.HeaderWritten();

    for (int r = 1; r <= u; ++r) {
        const int s = WorkbookParts::StartRecordRow(sheet, steps, r);
        const QString& date = rows.DateText(r);
        if (!date.isEmpty() && date != kOf) {
            WorkbookParts::WriteTicketRow(sheet, s, rows, r, 4, c);
            if (date == kTotal) sheet.RangeOf(s, 1, s, c).SetInteriorColor(kLightBlue);
        } else {
            auto second = sheet.Cells(s, 2);
            second.SetValue(date);
            second.SetHorizontalAlignment(SheetModel::kAlignCenter);
            sheet.Cells(s, c - 2).SetValue(Format0_00(rows.RowTotal(r)));
            sheet.Cells(s, c - 1).SetValue(rows.PayMethod(r));
            sheet.RangeOf(s, 1, s, c).SetInteriorColor(kLightBlue);
        }
    }

    WorkbookParts::WriteSignatureLine(sheet, u + 6,
                                      {{2, QStringLiteral("收款人:")},
                                       {7, QStringLiteral("经理:")},
                                       {13, QStringLiteral("缴款人:")}});
    steps.FooterWritten();
}

}  // namespace yunqi
