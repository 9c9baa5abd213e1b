#pragma once

#include <QStringList>
#include <functional>
#include <memory>

#include "cli/StatementCommand.h"
#include "db/DatabaseSession.h"
#include "frame/FlexGrid.h"
#include "frame/PagedStatement.h"
#include "frame/ReportDefinition.h"

namespace yunqi {

// Runs one statement with the arguments after the command name; returns the
// exit status (0 rows, 3 no fee items or no rows, 2 bad arguments, 1 failure).
int RunPagedStatement(const ReportDefinition& report, const QStringList& args,
                      const SessionOpener& openSession);

}  // namespace yunqi
