#include "reports/preinvoice/PreInvoiceWorkbook.h"

#include "core/ValueRules.h"
#include "frame/WorkbookParts.h"
#include "reports/preinvoice/PreInvoiceStatement.h"

namespace yunqi {

void WritePreInvoiceSheet(const PreInvoiceStatement& statement, SheetModel& sheet,
                          ExportFrame::ExportSteps& steps, const WorkbookContext& in) {
    using ValueRules::Format0_00;
    using WorkbookParts::kLightBlue;
    const DetailRows& rows = statement.Rows();
    const int c = in.statementGrid.Cols();
    const int n = statement.FeeColumnCount();
    const int u = rows.UpperBound();

    WorkbookParts::WriteTicketHeader(sheet, in, statement.HeaderPlan(), statement.FeeItems());
    // The money band's format and the table's fonts and borders, taken by each row as it completes.
    auto money = sheet.Finally(6, 5, u + 5, n + 5);
    money.SetNumberFormat(QStringLiteral("#0.00"));
    money.SetHorizontalAlignment(SheetModel::kAlignRight);
    WorkbookParts::FinishTable(sheet, u + 5, c);
    // The total row is coloured only once the table stands.
    sheet.Finally(u + 5, 1, u + 5, c).SetInteriorColor(kLightBlue);
    steps.HeaderWritten();

    for (int r = 1; r <= u; ++r) {
        const int s = WorkbookParts::StartRecordRow(sheet, steps, r);
        auto date = sheet.Cells(s, 2);
        date.SetValue(rows.DateText(r));
        date.SetNumberFormat(QStringLiteral("yyyy-mm-dd"));
        date.SetHorizontalAlignment(SheetModel::kAlignCenter);
        const QString* numbers[] = {&rows.SpecialNo(r), &rows.OrdinaryNo(r)};
        for (int j = 0; j < 2; ++j) {
            auto cell = sheet.Cells(s, 3 + j);
            cell.SetValue(QLatin1Char('\'') + *numbers[j]);
            cell.SetHorizontalAlignment(SheetModel::kAlignCenter);
        }
        for (int j = 1; j <= n; ++j)
            sheet.Cells(s, j + 4).SetValue(Format0_00(rows.FeeAmount(r, j)));
        sheet.Cells(s, c - 2).SetValue(Format0_00(rows.RowTotal(r)));
        sheet.Cells(s, c - 1).SetValue(rows.PayMethod(r));
        sheet.Cells(s, c).SetValue(rows.PayerText(r));
        sheet.SetRowWrapText(s, true);
    }

    WorkbookParts::WriteSignatureLine(sheet, u + 6,
                                      {{2, QStringLiteral("收款人:")},
                                       {7, QStringLiteral("经理:")},
                                       {13, QStringLiteral("缴款人:")}});
    steps.FooterWritten();
}

}  // namespace yunqi
