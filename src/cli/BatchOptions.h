#pragma once

#include <QDate>
#include <QString>
#include <QStringList>
#include <optional>

#include "cli/CommandLine.h"

namespace yunqi {

// The options of yunqi-statement batch.
struct BatchOptions {
    QString database;
    QDate month;  // its first day
    QString out;
    QStringList depts;
    QStringList reports;
    QStringList ratios;  // as typed, passed on to each statement
    bool csv = false;
    int jobs = 0;     // default: the number of processors
    int timeout = 0;  // seconds for the whole batch; 0: no limit
    bool force = false;
    bool quiet = false;
};

const CommandSpec& BatchSpec();

// The options, or nothing with the problem set (see ParseArgs; besides, a
// --ratio twice for one item).
std::optional<BatchOptions> ParseBatchOptions(const QStringList& args, QString& problem);

// "no department with code X in the list" for the first --dept the
// department list lacks; empty when every one is listed.
QString UnlistedDepartment(const BatchOptions& options, const QStringList& entries);

}  // namespace yunqi
