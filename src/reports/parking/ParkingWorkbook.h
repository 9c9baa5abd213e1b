#pragma once

#include "frame/ExportSteps.h"
#include "frame/SheetModel.h"
#include "frame/WorkbookContext.h"

namespace yunqi {

class ParkingStatement;

// The whole statement, all pages, on one sheet: title block, the grid's two
// header rows, every record, the signature line.
void WriteParkingSheet(const ParkingStatement& statement, SheetModel& sheet,
                       ExportFrame::ExportSteps& steps, const WorkbookContext& context);

}  // namespace yunqi
