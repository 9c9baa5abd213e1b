#include "reports/invoice/InvoiceWorkbook.h"

#include "core/ValueRules.h"
#include "frame/WorkbookParts.h"
#include "reports/invoice/InvoiceStatement.h"

namespace yunqi {

namespace {

using WorkbookParts::kLightBlue;
const QString kTotal = QStringLiteral("合  计");
const QString kOf = QStringLiteral("其中");

}  // namespace

void WriteInvoiceSheet(const InvoiceStatement& statement, SheetModel& sheet,
                       ExportFrame::ExportSteps& steps, const WorkbookContext& in) {
    using ValueRules::Format0_00;
    const FlexGrid& grid = in.statementGrid;
    const DetailRows& rows = statement.Rows();
    const int c = grid.Cols();
    const int n = statement.FeeColumnCount();
    const int u = rows.UpperBound();

    WorkbookParts::WriteTicketHeader(sheet, in, statement.HeaderPlan(), statement.FeeItems());
    // The money band's format and the table's fonts and borders, taken by each row as it completes.
    auto money = sheet.Finally(6, 7, u + 5, n + 7);
    money.SetNumberFormat(QStringLiteral("#0.00"));
    money.SetHorizontalAlignment(SheetModel::kAlignRight);
    WorkbookParts::FinishTable(sheet, u + 5, c);
    steps.HeaderWritten();

    for (int r = 1; r <= u; ++r) {
        const int s = WorkbookParts::StartRecordRow(sheet, steps, r);
        const QString& date = rows.DateText(r);
        auto second = sheet.Cells(s, 2);
        if (!date.isEmpty() && date != kOf) {
            second.SetValue(date);
            second.SetNumberFormat(QStringLiteral("yyyy-mm-dd"));
            second.SetHorizontalAlignment(SheetModel::kAlignCenter);
            const QString* numbers[] = {&rows.SpecialNo(r), &rows.OrdinaryNo(r),
                                        &rows.ElectronicNo(r), &rows.ReceiptNo(r)};
            for (int j = 0; j < 4; ++j) {
                auto cell = sheet.Cells(s, 3 + j);
                cell.SetValue(QLatin1Char('\'') + *numbers[j]);
                cell.SetHorizontalAlignment(SheetModel::kAlignCenter);
            }
            for (int j = 1; j <= n; ++j)
                sheet.Cells(s, j + 6).SetValue(Format0_00(rows.FeeAmount(r, j)));
            sheet.Cells(s, c - 2).SetValue(Format0_00(rows.RowTotal(r)));
            sheet.Cells(s, c - 1).SetValue(rows.PayMethod(r));
            sheet.Cells(s, c).SetValue(rows.PayerText(r));
            sheet.SetRowWrapText(s, true);
            if (date == kTotal) sheet.RangeOf(s, 1, s, c).SetInteriorColor(kLightBlue);
        } else {
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
