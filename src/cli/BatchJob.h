#pragma once

#include <QList>
#include <QString>
#include <QStringList>

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

}  // namespace yunqi
