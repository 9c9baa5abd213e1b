#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <vector>

#include "core/OutputFile.h"
#include "frame/FlexGrid.h"
#include "frame/PagedStatement.h"

namespace yunqi {

// The CSV form of the companion: RFC 4180 quoting (only fields holding a
// comma, a double quote, CR or LF), "\n" line ends, UTF-8 without a mark.
QString CsvField(const QString& text);
// Reads one record from pos on (a quoted field may hold line ends) into
// fields, when given; false at the end of the text.
bool ReadCsvRecord(const QByteArray& csv, qsizetype& pos, QStringList* fields);
// The records of a CSV text.
int CsvRecords(const QByteArray& csv);
// The grid's rows from firstRow on, as one text.
QString GridCsv(const FlexGrid& grid, int firstRow = 0);

// CSV lines streamed to an output as they come.
class CsvStream {
  public:
    CsvStream(const QString& path, Dash dash);
    void AddRow(const std::vector<QString>& fields);
    // Every line written, the output made final.
    void Commit();

  private:
    void Flush();
    OutputFile out_;
    QByteArray pending_;
};

// The grid's rows from firstRow on.
void WriteGridCsv(CsvStream& csv, const FlexGrid& grid, int firstRow = 0);
// The statement as one page of the grid would hold it: statementGrid's two header
// rows, then every record.
void WriteStatementCsv(CsvStream& csv, const PagedStatement& statement,
                       const FlexGrid& statementGrid, const TextMeasure& measure);

}  // namespace yunqi
