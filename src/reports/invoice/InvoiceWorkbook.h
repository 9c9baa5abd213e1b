#pragma once

#include <QDate>
#include <QString>

#include "frame/ExportSteps.h"
#include "frame/FlexGrid.h"
#include "frame/SheetModel.h"
#include "reports/invoice/InvoiceStatement.h"

// What the workbook takes from the window besides the statement.
struct InvoiceWorkbookInput {
    const InvoiceStatement& statement;
    const FlexGrid& grid1;  // MSFlexGrid1 with the header of the run
    QString title;          // Label1(0)
    QString entry;          // the selected List1 entry
    QDate from;
    QDate to;
};

// The whole statement, all pages, on one sheet: title block, the grid's two
// header rows, every record, the signature line.
void WriteInvoiceSheet(SheetModel& sheet, ExportFrame::ExportSteps& steps,
                       const InvoiceWorkbookInput& input);
