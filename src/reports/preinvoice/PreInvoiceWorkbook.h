#pragma once

#include "frame/ExportSteps.h"
#include "frame/SheetModel.h"
#include "frame/WorkbookContext.h"

namespace yunqi {

class PreInvoiceStatement;

// The whole pre-invoice statement on one sheet: title block, the grid's two
// header rows, every record with the total row coloured at the end, the
// signature line.
void WritePreInvoiceSheet(const PreInvoiceStatement& statement, SheetModel& sheet,
                          ExportFrame::ExportSteps& steps, const WorkbookContext& context);

}  // namespace yunqi
