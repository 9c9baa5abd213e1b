#include "cli/GridCsv.h"

namespace yunqi {

namespace {

constexpr qsizetype kFlushAt = 1 << 16;

void AppendLine(QString& out, const std::vector<QString>& fields) {
    for (std::size_t c = 0; c < fields.size(); ++c) {
        if (c > 0) out += QLatin1Char(',');
        out += CsvField(fields[c]);
    }
    out += QLatin1Char('\n');
}

std::vector<QString> GridRowTexts(const FlexGrid& grid, int r) {
    std::vector<QString> fields(grid.Cols());
    for (int c = 0; c < grid.Cols(); ++c) fields[c] = grid.TextMatrix(r, c);
    return fields;
}

}  // namespace

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
    for (int r = firstRow; r < grid.Rows(); ++r) AppendLine(out, GridRowTexts(grid, r));
    return out;
}

CsvStream::CsvStream(const QString& path, Dash dash) : out_(path, dash) {}

void CsvStream::AddRow(const std::vector<QString>& fields) {
    QString line;
    AppendLine(line, fields);
    pending_ += line.toUtf8();
    if (pending_.size() >= kFlushAt) Flush();
}

void CsvStream::Flush() {
    out_.Write(pending_);
    pending_.clear();
}

void CsvStream::Commit() {
    Flush();
    out_.Commit();
}

void WriteGridCsv(CsvStream& csv, const FlexGrid& grid, int firstRow) {
    for (int r = firstRow; r < grid.Rows(); ++r) csv.AddRow(GridRowTexts(grid, r));
}

void WriteStatementCsv(CsvStream& csv, const PagedStatement& statement,
                       const FlexGrid& statementGrid, const TextMeasure& measure) {
    for (int r = 0; r < 2; ++r) csv.AddRow(GridRowTexts(statementGrid, r));
    TextRow row(statementGrid);
    for (int r = 1; r <= statement.UpperBound(); ++r) {
        row.Clear();
        row.SetText(0, QString::number(r));
        statement.WriteRow(row, r, measure);
        csv.AddRow(row.Texts());
    }
}

// Reads RFC 4180 as CsvField writes it; without fields, only passes over the
// record.
bool ReadCsvRecord(const QByteArray& csv, qsizetype& pos, QStringList* fields) {
    if (fields) fields->clear();
    if (pos >= csv.size()) return false;
    QByteArray field;
    const auto keep = [&](char ch) {
        if (fields) field += ch;
    };
    const auto end = [&] {
        if (fields) *fields << QString::fromUtf8(field);
        field.clear();
    };
    bool quoted = false;
    for (; pos < csv.size(); ++pos) {
        const char ch = csv[pos];
        if (quoted) {
            if (ch != '"')
                keep(ch);
            else if (pos + 1 < csv.size() && csv[pos + 1] == '"')
                keep(csv[++pos]);
            else
                quoted = false;
        } else if (ch == '"') {
            quoted = true;
        } else if (ch == ',') {
            end();
        } else if (ch == '\n') {
            ++pos;
            break;
        } else {
            keep(ch);
        }
    }
    end();
    return true;
}

int CsvRecords(const QByteArray& csv) {
    int records = 0;
    for (qsizetype pos = 0; ReadCsvRecord(csv, pos, nullptr);) ++records;
    return records;
}

}  // namespace yunqi
