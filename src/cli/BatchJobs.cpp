#include "cli/BatchJobs.h"

#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QProcess>
#include <csignal>
#include <deque>
#include <memory>

#include "cli/BatchMismatches.h"
#include "cli/GridCsv.h"
#include "cli/os/Companions.h"
#include "cli/os/Interrupts.h"

namespace yunqi {

namespace {

// The companion's own word on its end, else how it ended.
QString FailureMessage(const QByteArray& err, int code, QProcess::ExitStatus how) {
    const QString said = QString::fromUtf8(err).trimmed();
    if (!said.isEmpty()) return said;
    return how == QProcess::CrashExit ? QStringLiteral("the companion ended by signal %1").arg(code)
                                      : QStringLiteral("exit status %1").arg(code);
}

// A signal, or the companion's share of the batch's time limit.
bool EndedByInterrupt(int code, QProcess::ExitStatus how) {
    if (how == QProcess::NormalExit) return code == kExitTimeLimit;
#ifdef SIGHUP
    if (code == SIGHUP) return true;
#endif
    return code == SIGINT || code == SIGTERM;
}

}  // namespace

bool RunBatchJobs(std::vector<BatchJob>& jobs, int parallel, const QString& program,
                  const std::function<void(BatchJob&, int done)>& finished, InterruptWatch& watch,
                  const TimeLimit& limit) {
    QEventLoop loop;
    // Statements that failed before the run (their folder) count as done.
    std::deque<std::size_t> waiting;
    int running = 0, done = 0;
    for (std::size_t i = 0; i < jobs.size(); ++i) {
        if (jobs[i].status == BatchJob::Status::Pending)
            waiting.push_back(i);
        else
            ++done;
    }
    std::vector<std::unique_ptr<QProcess>> processes(jobs.size());
    std::vector<bool> ended(jobs.size(), false);
    std::function<void()> startMore;

    // Run from the event loop, never from within a start that failed.
    const auto next = [&] {
        if (!watch.Requested()) startMore();
        if (running == 0 && (watch.Requested() || waiting.empty())) loop.quit();
    };
    const auto end = [&](std::size_t i) {
        ended[i] = true;
        --running;
        processes[i]->disconnect(&loop);
        processes[i].release()->deleteLater();
        QMetaObject::invokeMethod(&loop, next, Qt::QueuedConnection);
    };
    const auto complete = [&](std::size_t i, int code, QProcess::ExitStatus how,
                              const QElapsedTimer& clock) {
        BatchJob& job = jobs[i];
        QProcess& p = *processes[i];
        job.seconds = clock.nsecsElapsed() / 1e9;
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
        } else if (!(EndedByInterrupt(code, how) && watch.Requested())) {
            // A Ctrl+C reaches the whole process group: the companions it
            // ended were interrupted, not failed.
            job.status = BatchJob::Status::Failed;
            job.message = FailureMessage(err, code, how);
        }
        if (!watch.Requested()) finished(job, ++done);
        end(i);
    };
    // A companion that can't start while others run waits for one of them to
    // end, and fewer run from then on; with none running its statement fails.
    const auto notStarted = [&](std::size_t i) {
        if (running > 1) {
            parallel = running - 1;
            waiting.push_front(i);
            end(i);
            return;
        }
        BatchJob& job = jobs[i];
        job.status = BatchJob::Status::Failed;
        job.message = QStringLiteral("cannot start the companion: ") + processes[i]->errorString();
        if (!watch.Requested()) finished(job, ++done);
        end(i);
    };

    startMore = [&] {
        while (!watch.Requested() && running < parallel && !waiting.empty()) {
            const std::size_t i = waiting.front();
            waiting.pop_front();
            ended[i] = false;
            processes[i] = std::make_unique<QProcess>();
            QProcess* process = processes[i].get();
            auto clock = std::make_shared<QElapsedTimer>();
            clock->start();
            ++running;
            QObject::connect(process, &QProcess::finished, &loop,
                             [&, i, clock](int code, QProcess::ExitStatus how) {
                                 if (!ended[i]) complete(i, code, how, *clock);
                             });
            QObject::connect(process, &QProcess::errorOccurred, &loop,
                             [&, i](QProcess::ProcessError error) {
                                 if (error == QProcess::FailedToStart && !ended[i]) notStarted(i);
                             });
            TieToThisProcess(*process);
            QStringList args = jobs[i].args;
            if (const int left = limit.SecondsLeft())
                args << QStringLiteral("--timeout") << QString::number(left);
            process->start(program, args);
        }
    };

    watch.OnInterrupt([&] {
        for (auto& p : processes)
            if (p && p->state() != QProcess::NotRunning) p->terminate();
        if (running == 0) loop.quit();
    });
    QMetaObject::invokeMethod(&loop, next, Qt::QueuedConnection);
    loop.exec();
    watch.OnInterrupt(nullptr);
    return !watch.Requested();
}

}  // namespace yunqi
