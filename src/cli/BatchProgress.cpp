#include "cli/BatchProgress.h"

#include <QLocale>
#include <QTextStream>
#include <cstdio>

#include "cli/os/Console.h"

namespace yunqi {

void BatchSay(const QString& text) {
    QTextStream(stderr) << "yunqi-statement: batch: " << text << "\n";
}

BatchProgress::BatchProgress(int total, bool quiet)
    : total_(total), quiet_(quiet), terminal_(IsTerminal(stderr)) {}

void BatchProgress::Finished(const BatchJob& job, int done) {
    if (job.status == BatchJob::Status::Failed)
        BatchSay(job.dept + QLatin1Char(' ') + job.report + QStringLiteral(": ") + job.message);
    if (quiet_) return;
    static const QLocale grouping(QLocale::English);
    const QString line =
        QStringLiteral("[%1/%2] %3 ").arg(done).arg(total_).arg(job.label) +
        (job.status == BatchJob::Status::Ok ? grouping.toString(job.rows) + QStringLiteral(" rows")
                                            : StatusText(job.status));
    QTextStream err(stderr);
    if (terminal_)
        err << "\r\033[K" << line << (done == total_ ? "\n" : "") << Qt::flush;
    else
        err << line << "\n" << Qt::flush;
}

void BatchProgress::Interrupted(const QString& why) {
    // A redrawn line is ended first.
    if (terminal_ && !quiet_) QTextStream(stderr) << "\n";
    BatchSay(why);
}

}  // namespace yunqi
