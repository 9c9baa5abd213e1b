#pragma once

#include <QString>
#include <QStringList>

#include "db/DatabaseSession.h"

namespace yunqi {

// What the statement benchmarks share.
namespace BenchSupport {

// The demo ledger of that many tickets in the temporary folder, made once.
QString DemoLedger(int tickets);
// The department with the most tickets.
QString LargestDepartment(DatabaseSession& session);
// Wall time of the sqlite3 shell running the texts as the engine receives them.
double ShellMs(const QString& db, const QStringList& sql, const QString& scriptPath);
// The process's resident set now and at its peak, in MiB (Linux).
double ResidentMiB();
double PeakResidentMiB();

}  // namespace BenchSupport

}  // namespace yunqi
