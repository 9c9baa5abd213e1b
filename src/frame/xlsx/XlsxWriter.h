#pragma once

#include <QString>

#include "frame/SheetModel.h"

namespace yunqi {

// Writes the sheet as an .xlsx workbook in one pass, row by row, formats
// shared between cells of one style. A read-only file, a folder or a missing
// folder is refused before anything is written. The workbook is written
// beside the target under a temporary name, read back with
// CheckWorkbookFile, and renamed over the target only then; a device or FIFO
// is written in place (see OutputFile). A failure leaves an existing file as
// it was and no partial file. Throws RuntimeError (75 with the path and the
// reason; 76 for a missing folder).
void WriteXlsx(const SheetModel& sheet, const QString& path);

// Reads back the archive at file: every part inflated against its recorded
// length and checksum, every XML part ending with the end tag of its root,
// the workbook, content types and a worksheet present. Throws RuntimeError
// 75 naming path (the target the file stands for) and the first bad part.
void CheckWorkbookFile(const QString& file, const QString& path);

}  // namespace yunqi
