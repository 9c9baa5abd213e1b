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

// What a statement's work starts from, once the options are read and the
// department is found in the list.
struct StatementWork {
    const StatementOptions& options;
    DatabaseSession& session;  // its texts go to the log
    QString entry;             // the department's List1 entry, as a click on it chooses it
    SqlLogWriter& log;
    StatementProgress& progress;
    // A database fault is told as itself (exit 1), also where a routine's
    // error trap showed it and went on with what it had; so is a failed log
    // write.
    void Check(const Trapped& trapped = {}) const;
};
// The work of a report's shape; returns the exit status.
using StatementRun = int (*)(const ReportDefinition& report, const StatementWork& work);

// What the statement commands share around their work: the options of the
// report's shape (usage on a problem, exit 2), outputs that clash with the
// ledger or each other (exit 2), outputs checked before any work, the session
// and the department (not in the list: exit 2), the SQL log kept also when
// the run fails, and every run-time error told once (exit 1), a progress
// line on a terminal.
int RunStatementCommand(const ReportDefinition& report, const QStringList& args,
                        const SessionOpener& openSession, StatementRun run);

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
