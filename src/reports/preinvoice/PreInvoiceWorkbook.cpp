#include "frame/WorkbookParts.h"
#include "reports/preinvoice/PreInvoiceStatement.h"

namespace yunqi {

void PreInvoiceStatement::WriteSheet(SheetModel& sheet, ExportFrame::ExportSteps& steps,
                                     const WorkbookContext& in) const {
    using WorkbookParts::kLightBlue;
    const DetailRows& rows = rows_;
    const int c = in.statementGrid.Cols();
    const int n = feeColumnCount_;
    const int u = rows.UpperBound();

    WorkbookParts::WriteTicketHeader(sheet, in, plan_, feeItems_);
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
        WorkbookParts::WriteTicketRow(sheet, s, rows, r, 2, c);
    }

    WorkbookParts::WriteSignatureLine(sheet, u + 6,
                                      {{2, QStringLiteral("收款人:")},
                                       {7, QStringLiteral("经理:")},
                                       {13, QStringLiteral("缴款人:")}});
    steps.FooterWritten();
}

}  // namespace yunqi
