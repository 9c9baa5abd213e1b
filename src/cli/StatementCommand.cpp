#include "cli/StatementCommand.h"

#include <QTextStream>
#include <cstdio>

#include "cli/GridCsv.h"
#include "cli/StatementSession.h"
#include "cli/TimeLimit.h"
#include "cli/os/Console.h"
#include "core/OutputFile.h"
#include "core/RuntimeError.h"
#include "db/Settings.h"
#include "frame/Conditions.h"
#include "frame/xlsx/XlsxWriter.h"

namespace yunqi {

void SayOnStderr(const QString& text) {
    StatementProgress::ClearLine();
    QTextStream(stderr) << "yunqi-statement: " << text << "\n";
}

namespace {

// The first List1 entry of the department code, as a click on it would
// choose it; empty when the list has none. A failed read of the list throws.
QString EntryOfDepartment(DatabaseSession& session, const QString& dept) {
    Trapped trapped;
    const QStringList entries = Conditions::LoadDepartments(session, &trapped);
    if (trapped) throw *trapped;
    for (const QString& e : entries)
        if (Conditions::DeptCodeOf(e) == dept) return e;
    return QString();
}

// The session and the department, then the work.
int StartWork(const ReportDefinition& report, const StatementOptions& o,
              const SessionOpener& openSession, StatementRun run, SqlLogWriter& log,
              StatementProgress& progress) {
    std::unique_ptr<DatabaseSession> session = openSession(o.database);
    if (log.Wanted()) session->SetSqlLog([&log](const QString& sql) { log.Add(sql); });
    StatementWork work{o, *session, EntryOfDepartment(*session, o.dept), log, progress};
    work.Check();
    if (work.entry.isEmpty()) {
        SayOnStderr(QStringLiteral("no department with code ") + o.dept +
                    QStringLiteral(" in the list"));
        return kStatementBadArguments;
    }
    return run(report, work);
}

}  // namespace

void StatementWork::Check(const Trapped& trapped) const {
    if (trapped) throw *trapped;
    log.Check();
}

int RunStatementCommand(const ReportDefinition& report, const QStringList& args,
                        const SessionOpener& openSession, StatementRun run) {
    const QString usage = CommandUsage(report.command, StatementSpec(report.conditions));
    QString problem;
    const auto options = ParseStatementOptions(args, report.conditions, problem);
    if (!options) {
        SayOnStderr(problem);
        QTextStream(stderr) << usage;
        return kStatementBadArguments;
    }
    const StatementOptions& o = *options;
    // The whole run, a wait for a server that never answers too.
    const TimeLimit limit(o.timeout, QStringLiteral("yunqi-statement: "));
    const std::vector<OutputOption> outputs{{QStringLiteral("--csv"), o.csv, Dash::IsStdout},
                                            {QStringLiteral("--xlsx"), o.xlsx},
                                            {QStringLiteral("--sql-log"), o.sqlLog}};
    QStringList inputs{o.database};
    QString told;
    const auto tell = [&told, &inputs](const RuntimeError& error) {
        const QString text = WithLedgerCause(error, inputs.last()).NumberedText();
        if (text != told) SayOnStderr(text);
        told = text;
    };
    if (o.database.isEmpty()) {
        try {
            const DbSettings settings = ReadDbSettings();
            if (settings.Driver.compare(QLatin1String("SQLite"), Qt::CaseInsensitive) == 0)
                inputs << settings.DBname;
        } catch (const RuntimeError& e) {
            tell(e);
            return kStatementFailure;
        }
    }
    if (const auto clash = OutputClash(outputs, inputs)) {
        SayOnStderr(*clash);
        QTextStream(stderr) << usage;
        return kStatementBadArguments;
    }

    // A read-only file or a missing folder is refused before any work.
    try {
        CheckOutputs(outputs);
    } catch (const RuntimeError& e) {
        tell(e);
        return kStatementFailure;
    }
    SqlLogWriter log(o.sqlLog);
    int status = kStatementFailure;
    try {
        StatementProgress progress(o.dept + QLatin1Char(' ') + report.texts.caption, o.quiet);
        status = StartWork(report, o, openSession, run, log, progress);
    } catch (const RuntimeError& e) {
        tell(e);
    }
    // A department not in the list, dates out of order: the usage follows.
    if (status == kStatementBadArguments) QTextStream(stderr) << usage;
    // The log is kept also when the run failed: it tells what was sent.
    try {
        log.Finish();
    } catch (const RuntimeError& e) {
        tell(e);
        status = kStatementFailure;
    }
    return status;
}

void WriteStatementOutputs(const StatementOptions& o, StatementProgress& progress, int records,
                           const CsvWriter& writeCsv, const ExportFrame::SheetWriter& writeSheet,
                           const std::function<void()>& check) {
    if (!o.xlsx.isEmpty()) {
        ExportFrame::ExportSteps steps(&progress, AppDialogs());
        progress.ShowProgressBar(records);
        StreamXlsx(
            o.xlsx, [&](SheetModel& sheet) { writeSheet(sheet, steps); }, check);
    }
    if (!o.csv.isEmpty()) {
        // CSV lines on the same terminal start at the left margin.
        if (o.csv == QLatin1String("-") && IsTerminal(stdout))
            StatementProgress::ClearLine();
        else
            progress.Step(QStringLiteral("writing the CSV"));
        CsvStream csv(o.csv, Dash::IsStdout);
        writeCsv(csv);
        csv.Commit();
    }
}

}  // namespace yunqi
