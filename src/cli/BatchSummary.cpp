#include "cli/BatchSummary.h"

#include "cli/GridCsv.h"

namespace yunqi {

QString BatchSummary(const std::vector<BatchJob>& jobs) {
    QString summary = QStringLiteral("dept,report,status,rows,seconds,file\n");
    for (const BatchJob& job : jobs) {
        const bool ok = job.status == BatchJob::Status::Ok;
        summary += CsvField(job.dept) + QLatin1Char(',') + job.report + QLatin1Char(',') +
                   StatusText(job.status) + QLatin1Char(',') + QString::number(ok ? job.rows : 0) +
                   QLatin1Char(',') + QString::number(job.seconds, 'f', 3) + QLatin1Char(',') +
                   (ok ? CsvField(job.relativeFile) : QString()) + QLatin1Char('\n');
    }
    return summary;
}

}  // namespace yunqi
