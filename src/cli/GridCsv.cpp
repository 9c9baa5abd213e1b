#include "cli/GridCsv.h"

namespace yunqi {

QString CsvField(const QString& text) {
    if (!text.contains(QLatin1Char(',')) && !text.contains(QLatin1Char('"')) &&
        !text.contains(QLatin1Char('\r')) && !text.contains(QLatin1Char('\n')))
        return text;
    QString quoted = text;
    quoted.replace(QLatin1Char('"'), QStringLiteral("\"\""));
    return QLatin1Char('"') + quoted + QLatin1Char('"');
}

QString GridCsv(const FlexGrid& grid, int firstRow) {
    QString out;
    for (int r = firstRow; r < grid.Rows(); ++r) {
        for (int c = 0; c < grid.Cols(); ++c) {
            if (c > 0) out += QLatin1Char(',');
            out += CsvField(grid.TextMatrix(r, c));
        }
        out += QLatin1Char('\n');
    }
    return out;
}

}  // namespace yunqi
