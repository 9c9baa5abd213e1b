#pragma once

#include <QString>
#include <QStringList>

namespace yunqi {

// yunqi-statement: the statements computed without windows, for batch runs.
// Returns the process exit status: 0 rows, 3 no fee items or no rows,
// 2 bad arguments, 1 database or other failure. "--help" (alone or after a
// command) and "--version" print on standard output and exit 0.
int RunStatementCli(const QStringList& args);

// The usage of one command, or of every command for an empty name.
QString StatementUsage(const QString& command = QString());

}  // namespace yunqi
