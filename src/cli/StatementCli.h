#pragma once

#include <QStringList>

namespace yunqi {

// yunqi-statement: the statements computed without windows, for batch runs.
// Returns the process exit status: 0 rows, 3 no fee items or no rows,
// 2 bad arguments, 1 database or other failure.
int RunStatementCli(const QStringList& args);

}  // namespace yunqi
