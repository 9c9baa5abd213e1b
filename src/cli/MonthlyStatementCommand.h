#pragma once

#include "cli/StatementCommand.h"
#include "frame/ReportDefinition.h"

namespace yunqi {

// The work of a statement of a year and months (a YearMonths report);
// returns the exit status (0 rows, 3 no fee items or no rows, 2 bad
// arguments).
int RunMonthlyStatement(const ReportDefinition& report, const StatementWork& work);

}  // namespace yunqi
