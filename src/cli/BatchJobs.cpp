#include "cli/BatchJobs.h"

#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QProcess>
#include <memory>

#include "cli/BatchMismatches.h"
#include "cli/os/Interrupts.h"

namespace yunqi {

QString StatusText(BatchJob::Status s) {
    switch (s) {
        case BatchJob::Status::Ok:
            return QStringLiteral("ok");
        case BatchJob::Status::Empty:
            return QStringLiteral("empty");
        default:
            return QStringLiteral("failed");
    }
}

int CsvRecords(const QByteArray& csv) {
    int records = 0;
    bool quoted = false, inRecord = false;
    for (const char ch : csv) {
        if (ch == '"') quoted = !quoted;
        if (ch == '\n' && !quoted) {
            ++records;
            inRecord = false;
        } else {
            inRecord = true;
        }
    }
    return records + (inRecord ? 1 : 0);
}

bool RunBatchJobs(std::vector<BatchJob>& jobs, int parallel, const QString& program,
                  const std::function<void(const BatchJob&, int done)>& finished) {
    QEventLoop loop;
    bool interrupted = false;
    std::size_t next = 0;
    int running = 0, done = 0;
    std::vector<std::unique_ptr<QProcess>> processes(jobs.size());

    std::function<void()> startMore = [&] {
        while (!interrupted && running < parallel && next < jobs.size()) {
            const std::size_t i = next++;
            BatchJob& job = jobs[i];
            auto process = std::make_unique<QProcess>();
            auto clock = std::make_shared<QElapsedTimer>();
            clock->start();
            auto complete = [&, i, clock](int code, QProcess::ExitStatus how) {
                BatchJob& job = jobs[i];
                QProcess& p = *processes[i];
                job.seconds = clock->nsecsElapsed() / 1e9;
                QByteArray csv = p.readAllStandardOutput();
                const QByteArray err = p.readAllStandardError();
                if (how == QProcess::NormalExit && code == 0) {
                    if (!job.csvPath.isEmpty()) {
                        QFile f(job.csvPath);
                        csv = f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
                    }
                    job.status = BatchJob::Status::Ok;
                    job.rows = CsvRecords(csv) - 2;  // the two header rows
                    job.mismatches = MismatchesOf(csv);
                } else if (how == QProcess::NormalExit && code == 3) {
                    job.status = BatchJob::Status::Empty;
                } else {
                    job.status = BatchJob::Status::Failed;
                    job.message = QString::fromUtf8(err).trimmed();
                    if (job.message.isEmpty())
                        job.message = how == QProcess::CrashExit
                                          ? QStringLiteral("the companion ended abnormally")
                                          : QStringLiteral("exit status %1").arg(code);
                }
                --running;
                if (!interrupted) finished(job, ++done);
                startMore();
                if (running == 0 && (interrupted || next == jobs.size())) loop.quit();
            };
            QObject::connect(process.get(), &QProcess::finished, &loop, complete);
            QObject::connect(process.get(), &QProcess::errorOccurred, &loop,
                             [complete](QProcess::ProcessError error) {
                                 if (error == QProcess::FailedToStart)
                                     complete(-1, QProcess::CrashExit);
                             });
            process->start(program, job.args);
            processes[i] = std::move(process);
            ++running;
        }
    };

    InterruptWatch watch([&] {
        interrupted = true;
        for (auto& p : processes)
            if (p && p->state() != QProcess::NotRunning) p->terminate();
        if (running == 0) loop.quit();
    });

    startMore();
    if (running > 0) loop.exec();
    return !interrupted;
}

}  // namespace yunqi
