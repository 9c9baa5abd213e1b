#pragma once

#include <QString>

namespace yunqi {

// Reads back the archive at file: every part inflated against its recorded
// length and checksum, every XML part ending with the end tag of its root,
// the workbook, content types and a worksheet present. Throws RuntimeError
// 75 naming path (the target the file stands for) and the first bad part.
void CheckWorkbookFile(const QString& file, const QString& path);

}  // namespace yunqi
