#pragma once

#include <QString>

#include "frame/SheetModel.h"

namespace yunqi {

// Writes the sheet as an .xlsx workbook in one pass, row by row, formats
// shared between cells of one style. The file is written beside the target
// under a temporary name and renamed when complete: a failure leaves an
// existing file as it was and no partial file. Throws RuntimeError.
void WriteXlsx(const SheetModel& sheet, const QString& path);

}  // namespace yunqi
