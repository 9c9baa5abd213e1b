#pragma once

#include <QString>
#include <QStringList>
#include <functional>
#include <vector>

#include "cli/TimeLimit.h"
#include "cli/os/Interrupts.h"

namespace yunqi {

// One statement of a batch: the companion run as a process of its own, so
// that its files are exactly what the single command writes, through the same
// safe-write path, on a database session of its own.
struct BatchJob {
    QString dept;          // department code
    QString label;         // "02 云栖苑 停车费明细表", for the progress line
    QString report;        // command name
    QString relativeFile;  // the workbook, relative to the output folder
    QStringList args;      // the companion's arguments
    QString csvPath;       // where the CSV goes ("" for standard output)

    // Filled in by the run.
    enum class Status { Pending, Ok, Empty, Failed } status = Status::Pending;
    int rows = 0;
    double seconds = 0;
    QString message;  // what the companion said on failure
    // Month, rate and difference of each row whose books do not agree (see
    // MismatchesOf).
    QList<QStringList> mismatches;
};

// "ok", "empty" or "failed", as the summary and the progress say it.
QString StatusText(BatchJob::Status status);

// Runs the pending jobs, at most `parallel` at a time, and reports each finished one.
// A companion that cannot start is run when another has ended, with fewer at
// a time, or fails its statement when none is running. Returns false when
// interrupted (the watch's request): the running companions are stopped, and
// they remove their temporary files themselves; one that the same request
// ended is not a failed statement. Each companion gets what is left of the
// batch's time limit as its own, so that it ends by itself also where the
// batch cannot end it.
bool RunBatchJobs(std::vector<BatchJob>& jobs, int parallel, const QString& program,
                  const std::function<void(BatchJob&, int done)>& finished, InterruptWatch& watch,
                  const TimeLimit& limit);

// Body records of a CSV text (RFC 4180: a quoted field may hold line ends).
int CsvRecords(const QByteArray& csv);

}  // namespace yunqi
