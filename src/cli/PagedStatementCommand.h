#pragma once

#include <QStringList>
#include <functional>
#include <memory>

#include "frame/FlexGrid.h"
#include "frame/PagedStatement.h"
#include "frame/ReportDefinition.h"
#include "db/DatabaseSession.h"

namespace yunqi {


// The database the companion works on: the file of --database, else the
// settings of the desktop program. Throws RuntimeError.
using SessionOpener = std::function<std::unique_ptr<DatabaseSession>(const QString& database)>;

// Runs one statement with the arguments after the command name; returns the
// exit status (0 rows, 3 no fee items or no rows, 2 bad arguments, 1 failure).
int RunPagedStatement(const ReportDefinition& report, const QStringList& args,
                      const SessionOpener& openSession);

}  // namespace yunqi
