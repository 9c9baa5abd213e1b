#pragma once

#include <QString>
#include <QStringList>
#include <functional>
#include <memory>

#include "cli/CommandOutputs.h"
#include "cli/GridCsv.h"
#include "cli/StatementOptions.h"
#include "cli/StatementProgress.h"
#include "db/DatabaseSession.h"
#include "frame/FlexGrid.h"
#include "frame/ReportDefinition.h"
#include "frame/xlsx/ExportFrame.h"

namespace yunqi {

// The database the companion works on: the file of --database, else the
// settings of the desktop program. Throws RuntimeError.
using SessionOpener = std::function<std::unique_ptr<DatabaseSession>(const QString& database)>;

// Exit statuses of the statement commands.
constexpr int kStatementRows = 0, kStatementNothing = 3, kStatementBadArguments = 2,
              kStatementFailure = 1;

// One line on standard error, after the program's name (a progress line
// cleared first).
void SayOnStderr(const QString& text);

// What the statement commands share around their work: the options of the
// report's shape (usage on a problem, exit 2), outputs that clash with the
// ledger or each other (exit 2), outputs checked before any work, the SQL
// log kept also when the run fails, and every run-time error told once
// (exit 1), a progress line on a terminal. run does the work and returns the
// exit status.
using StatementRun = std::function<int(const StatementOptions& options, SqlLogWriter& log,
                                       StatementProgress& progress)>;
int RunStatementCommand(const ReportDefinition& report, const QStringList& args,
                        const StatementRun& run);

// The session of a run with its texts going to the log.
std::unique_ptr<DatabaseSession> OpenLoggedSession(const SessionOpener& openSession,
                                                   const QString& database, SqlLogWriter& log);
// A database fault is told as itself (exit 1), also where a routine's error
// trap showed it and went on with what it had; so is a failed log write.
void ThrowFaults(const Trapped& trapped, const SqlLogWriter& log);
// The first List1 entry of the department code, as a click on it would
// choose it; empty when the list has none. A failed read of the list throws.
QString EntryOfDepartment(DatabaseSession& session, const QString& dept);

// The outputs of a run, each streamed as it is composed: the workbook first
// (the likelier to fail, and a failure then leaves the CSV target, standard
// output too, untouched), then the CSV. check runs once the sheet is
// composed, before the workbook is made final. progress counts the workbook's
// records, of which there are records.
using CsvWriter = std::function<void(CsvStream& csv)>;
void WriteStatementOutputs(const StatementOptions& options, StatementProgress& progress,
                           int records, const CsvWriter& writeCsv,
                           const ExportFrame::SheetWriter& writeSheet,
                           const std::function<void()>& check);

}  // namespace yunqi
