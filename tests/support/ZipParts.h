#pragma once

#include <QByteArray>
#include <QString>
#include <map>

namespace yunqi {

// The parts of a zip archive (a workbook), inflated and checked against their
// checksums: name -> bytes. Read here rather than by the program's own reader,
// so that a fault there can't hide one in the archive. Empty, with problem
// set, when the file is no readable archive.
std::map<QString, QByteArray> ReadZipParts(const QString& path, QString* problem = nullptr);

}  // namespace yunqi
