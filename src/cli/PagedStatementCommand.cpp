#include "cli/PagedStatementCommand.h"

#include <QTextStream>
#include <climits>

#include "cli/CommandOutputs.h"
#include "cli/GridCsv.h"
#include "cli/StatementOptions.h"
#include "core/OutputFile.h"
#include "core/RuntimeError.h"
#include "db/Settings.h"
#include "frame/Conditions.h"
#include "frame/SplitRatios.h"
#include "frame/TextMeasure.h"
#include "frame/xlsx/XlsxWriter.h"

namespace yunqi {

namespace {

constexpr int kRows = 0, kNothing = 3, kBadArguments = 2, kFailure = 1;

void Say(const QString& text) { QTextStream(stderr) << "yunqi-statement: " << text << "\n"; }

// The percentages typed for a parking item, checked as the editor checks them.
bool ApplyRatios(const std::vector<RatioOption>& ratios, bool ifPresent, FlexGrid& grid2) {
    for (const RatioOption& ratio : ratios) {
        const QString code = QLatin1Char('\'') + ratio.itemCode + QLatin1Char('\'');
        int row = -1;
        for (int r = 1; r < grid2.Rows() && row < 0; ++r)
            if (grid2.TextMatrix(r, SplitRatios::kCodeCol) == code) row = r;
        if (row < 0 && ifPresent) continue;
        if (row < 0) {
            Say(QStringLiteral("no parking item with code ") + ratio.itemCode +
                QStringLiteral(" in this window"));
            return false;
        }
        grid2.SetTextMatrix(row, SplitRatios::kDeveloperCol, ratio.developer);
        grid2.SetTextMatrix(row, SplitRatios::kPropertyCol, ratio.property);
        if (!SplitRatios::SumIsHundred(grid2, row)) {
            Say(SplitRatios::SumMessage());
            return false;
        }
    }
    return true;
}

int Run(const ReportDefinition& report, const StatementOptions& o, const SessionOpener& openSession,
        SqlLogWriter& log) {
    std::unique_ptr<DatabaseSession> session = openSession(o.database);
    if (log.Wanted()) session->SetSqlLog([&log](const QString& sql) { log.Add(sql); });
    // A database fault is told as itself (exit 1), also where a routine's
    // error trap showed it and went on with what it had.
    const auto check = [&session, &log] {
        if (const auto& fault = session->FirstFault()) throw *fault;
        log.Check();
    };

    // The department as a click on its List1 entry would choose it.
    QString entry;
    for (const QString& e : Conditions::LoadDepartments(*session))
        if (Conditions::DeptCodeOf(e) == o.dept) {
            entry = e;
            break;
        }
    check();
    if (entry.isEmpty()) {
        Say(QStringLiteral("no department with code ") + o.dept + QStringLiteral(" in the list"));
        return kBadArguments;
    }
    if (const auto problem = Conditions::CheckConditions(true, o.from, o.to)) {
        Say(Conditions::MessageOf(*problem));
        return kBadArguments;
    }
    StatementConditions conditions{Conditions::DeptCodeOf(entry), Conditions::SiteCodeOf(entry),
                                   Conditions::LoadInvoiceTypes(*session), o.from, o.to};
    check();

    std::unique_ptr<PagedStatement> statement = report.makePaged(*session);
    FlexGrid grid1;
    FlexGrid grid2 = SplitRatios::NewGrid();
    statement->InitGridHeader(grid1);
    statement->ExtractFeeItems(conditions, grid2, grid1);
    check();
    if (statement->FeeItems().size() <= 1) {
        Say(report.texts.noFeeItemsText);
        return kNothing;
    }
    if (!ApplyRatios(o.ratios, o.ratioIfPresent, grid2)) return kBadArguments;
    statement->BuildGridHeader(grid1, grid2);
    const bool rows = statement->RunStatistics(conditions, grid2, INT_MAX);
    check();
    if (!rows) {
        Say(report.texts.noRowsText);
        return kNothing;
    }
    // One page holds the whole statement.
    statement->ShowPage(grid1, 1, INT_MAX, EstimatedTextMeasure());
    check();

    // The workbook first: it is the likelier to fail, and a failure then
    // leaves the CSV target (standard output too) untouched as well.
    if (!o.xlsx.isEmpty()) {
        SheetModel sheet;
        ExportFrame::ExportSteps steps(nullptr, AppDialogs());
        statement->WriteSheet(
            sheet, steps, {grid1, Conditions::TitleCaption(entry, report.texts.title), entry, conditions});
        check();
        WriteXlsx(sheet, o.xlsx);
    }
    if (!o.csv.isEmpty()) WriteOutputFile(o.csv, GridCsv(grid1).toUtf8(), Dash::IsStdout);
    return kRows;
}

}  // namespace

int RunPagedStatement(const ReportDefinition& report, const QStringList& args,
                      const SessionOpener& openSession) {
    QString problem;
    const auto options = ParseStatementOptions(args, report.conditions, problem);
    if (!options) {
        Say(problem);
        QTextStream(stderr) << StatementUsage();
        return kBadArguments;
    }
    const StatementOptions& o = *options;
    const std::vector<OutputOption> outputs{{QStringLiteral("--csv"), o.csv, Dash::IsStdout},
                                            {QStringLiteral("--xlsx"), o.xlsx},
                                            {QStringLiteral("--sql-log"), o.sqlLog}};
    QStringList inputs{o.database};
    if (o.database.isEmpty()) {
        const DbSettings settings = ReadDbSettings();
        if (settings.Driver.compare(QLatin1String("SQLite"), Qt::CaseInsensitive) == 0)
            inputs << settings.DBname;
    }
    if (const auto clash = OutputClash(outputs, inputs)) {
        Say(*clash);
        QTextStream(stderr) << StatementUsage();
        return kBadArguments;
    }

    QString told;
    const auto tell = [&told](const RuntimeError& e) {
        const QString text = QStringLiteral("error ") + QString::number(e.number()) +
                             QStringLiteral(": ") + e.description();
        if (text != told) Say(text);
        told = text;
    };
    // A read-only file or a missing folder is refused before any work.
    try {
        CheckOutputs(outputs);
    } catch (const RuntimeError& e) {
        tell(e);
        return kFailure;
    }
    SqlLogWriter log(o.sqlLog);
    int status = kFailure;
    try {
        status = Run(report, o, openSession, log);
    } catch (const RuntimeError& e) {
        tell(e);
    }
    // The log is kept also when the run failed: it tells what was sent.
    try {
        log.Finish();
    } catch (const RuntimeError& e) {
        tell(e);
        status = kFailure;
    }
    return status;
}

}  // namespace yunqi
