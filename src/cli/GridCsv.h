#pragma once

#include <QString>

#include "frame/FlexGrid.h"

namespace yunqi {

// The grid as CSV: every row, every column, RFC 4180 quoting (only fields
// holding a comma, a double quote, CR or LF), "\n" line ends.
QString GridCsv(const FlexGrid& grid, int firstRow = 0);
QString CsvField(const QString& text);

}  // namespace yunqi
