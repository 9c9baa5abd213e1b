#pragma once

#include "frame/ExportSteps.h"
#include "frame/SheetModel.h"
#include "frame/WorkbookContext.h"

namespace yunqi {

// The reconciliation as its grid stands, on one sheet: title block, the two
// header rows, the body with the colours of its closing rows, the note line.
// Reads nothing but the grid and the window's texts.
void WriteReconciliationSheet(SheetModel& sheet, ExportFrame::ExportSteps& steps,
                              const WorkbookContext& context);

}  // namespace yunqi
