#include "cli/StatementCommand.h"

#include <unistd.h>

#include <QTextStream>
#include <cstdio>

#include "cli/GridCsv.h"
#include "cli/StatementCli.h"
#include "cli/StatementSession.h"
#include "cli/TimeLimit.h"
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

int RunStatementCommand(const ReportDefinition& report, const QStringList& args,
                        const StatementRun& run) {
    QString problem;
    const auto options = ParseStatementOptions(args, report.conditions, problem);
    if (!options) {
        SayOnStderr(problem);
        QTextStream(stderr) << StatementUsage(report.command);
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
        const RuntimeError e = WithLedgerCause(error, inputs.last());
        const QString text = QStringLiteral("error ") + QString::number(e.number()) +
                             QStringLiteral(": ") + e.description();
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
        QTextStream(stderr) << StatementUsage(report.command);
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
        status = run(o, log, progress);
    } catch (const RuntimeError& e) {
        tell(e);
    }
    // A department not in the list, dates out of order: the usage follows.
    if (status == kStatementBadArguments) QTextStream(stderr) << StatementUsage(report.command);
    // The log is kept also when the run failed: it tells what was sent.
    try {
        log.Finish();
    } catch (const RuntimeError& e) {
        tell(e);
        status = kStatementFailure;
    }
    return status;
}

std::unique_ptr<DatabaseSession> OpenLoggedSession(const SessionOpener& openSession,
                                                   const QString& database, SqlLogWriter& log) {
    std::unique_ptr<DatabaseSession> session = openSession(database);
    if (log.Wanted()) session->SetSqlLog([&log](const QString& sql) { log.Add(sql); });
    return session;
}

void ThrowFaults(const Trapped& trapped, const SqlLogWriter& log) {
    if (trapped) throw *trapped;
    log.Check();
}

QString EntryOfDepartment(DatabaseSession& session, const QString& dept) {
    Trapped trapped;
    const QStringList entries = Conditions::LoadDepartments(session, &trapped);
    if (trapped) throw *trapped;
    for (const QString& e : entries)
        if (Conditions::DeptCodeOf(e) == dept) return e;
    return QString();
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
        if (o.csv == QLatin1String("-") && ::isatty(fileno(stdout)))
            StatementProgress::ClearLine();
        else
            progress.Step(QStringLiteral("writing the CSV"));
        CsvStream csv(o.csv, Dash::IsStdout);
        writeCsv(csv);
        csv.Commit();
    }
}

}  // namespace yunqi
