#pragma once

#include "frame/ExportSteps.h"
#include "frame/SheetModel.h"
#include "frame/WorkbookContext.h"

namespace yunqi {

class ParkingStatement;

// The whole parking statement on one sheet: title block, the grid's two
// header rows, every record with the summary rows coloured, the signature
// line.
void WriteParkingSheet(const ParkingStatement& statement, SheetModel& sheet,
                       ExportFrame::ExportSteps& steps, const WorkbookContext& context);

}  // namespace yunqi
