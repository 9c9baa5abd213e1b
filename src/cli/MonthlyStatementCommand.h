#pragma once

#include <QStringList>

#include "cli/StatementCommand.h"
#include "frame/ReportDefinition.h"

namespace yunqi {

// Runs a statement of a year and months (a YearMonths report) with
// the arguments after the command name; returns the exit status (0 rows,
// 3 no fee items or no rows, 2 bad arguments, 1 failure).
int RunMonthlyStatement(const ReportDefinition& report, const QStringList& args,
                        const SessionOpener& openSession);

}  // namespace yunqi
