#include "cli/BatchMismatches.h"

#include <QSet>

#include "cli/GridCsv.h"

namespace yunqi {

QList<QStringList> MismatchesOf(const QByteArray& csv) {
    QList<QStringList> found;
    qsizetype pos = 0;
    QStringList top, bottom, row;
    if (!ReadCsvRecord(csv, pos, &top) || !ReadCsvRecord(csv, pos, &bottom)) return found;
    int column = -1;
    for (int c = 0; c < top.size() && c < bottom.size(); ++c)
        if (top[c] == QStringLiteral("核对结果") && bottom[c] == QStringLiteral("差额")) column = c;
    if (column < 3) return found;
    while (ReadCsvRecord(csv, pos, &row)) {
        if (row.size() <= column || row[column].isEmpty()) continue;
        bool number = false;
        const double difference = row[column].toDouble(&number);
        if (number && difference == 0) continue;
        found << QStringList{row[1], row[2], row[column]};
    }
    return found;
}

QString MismatchesCsv(const std::vector<BatchJob>& jobs) {
    QString text = QStringLiteral("dept,month,rate,difference\n");
    for (const BatchJob& job : jobs)
        for (const QStringList& m : job.mismatches)
            text += CsvField(job.dept) + QLatin1Char(',') + CsvField(m[0]) + QLatin1Char(',') +
                    CsvField(m[1]) + QLatin1Char(',') + CsvField(m[2]) + QLatin1Char('\n');
    return text;
}

int DepartmentsNotReconciled(const std::vector<BatchJob>& jobs) {
    QSet<QString> depts;
    for (const BatchJob& job : jobs)
        if (!job.mismatches.isEmpty()) depts.insert(job.dept);
    return int(depts.size());
}

}  // namespace yunqi
