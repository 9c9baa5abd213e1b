#include "reports/invoice/widgets/InvoiceWindow.h"

#include "reports/invoice/InvoiceTexts.h"
#include "reports/invoice/InvoiceWorkbook.h"

frm票据开票明细表New::frm票据开票明细表New(DatabaseSession& session, QWidget* parent)
    : ReportWindow(
          InvoiceTexts(), std::make_unique<InvoiceStatement>(session),
          [](SheetModel& sheet, ExportFrame::ExportSteps& steps, const ReportWindow& w) {
              WriteInvoiceSheet(sheet, steps,
                                {static_cast<const InvoiceStatement&>(w.Statement()), w.Grid1(),
                                 w.TitleText(), w.SelectedEntry(), w.FromDate(), w.ToDate()});
          },
          session, parent) {
    setObjectName(QStringLiteral("frm票据开票明细表New"));
}
