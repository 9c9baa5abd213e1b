#include "cli/MonthlyStatementCommand.h"

#include "frame/Conditions.h"
#include "frame/MonthlyStatement.h"

namespace yunqi {

namespace {

int Run(const ReportDefinition& report, const StatementOptions& o, const SessionOpener& openSession,
        SqlLogWriter& log, StatementProgress& progress) {
    std::unique_ptr<DatabaseSession> session = OpenLoggedSession(openSession, o.database, log);
    const auto check = [&log](const Trapped& trapped = {}) { ThrowFaults(trapped, log); };

    const QString entry = EntryOfDepartment(*session, o.dept);
    check();
    if (entry.isEmpty()) {
        SayOnStderr(QStringLiteral("no department with code ") + o.dept +
                    QStringLiteral(" in the list"));
        return kStatementBadArguments;
    }
    if (!MonthsInOrder(o.FromMonth, o.ToMonth)) {
        SayOnStderr(QStringLiteral("截至月份不能小于开始月份,请重新选择!"));
        return kStatementBadArguments;
    }

    auto statement = MakeStatement<MonthlyStatement>(report, *session);
    StatementConditions k;
    k.DeptCode = Conditions::DeptCodeOf(entry);
    k.SiteCode = Conditions::SiteCodeOf(entry);
    k.InvoiceTypeList = statement->LoadInvoiceTypes();
    k.Year = o.Year;
    k.FromMonth = o.FromMonth;
    k.ToMonth = o.ToMonth;
    check();

    FlexGrid statementGrid;
    statement->InitGridHeader(statementGrid);
    progress.Step(QStringLiteral("extracting fee items"));
    check(statement->ExtractFeeItems(k, statementGrid));
    if (statement->FeeItems().size() <= 1) {
        SayOnStderr(report.texts.noFeeItemsText);
        return kStatementNothing;
    }
    progress.Step(QStringLiteral("computing"));
    check(statement->RunReconciliation(k, statementGrid));
    // Like the window's export, nothing is written without a body row.
    if (statementGrid.Rows() <= 2) {
        SayOnStderr(QStringLiteral("no rows"));
        return kStatementNothing;
    }
    WriteStatementOutputs(
        o, progress, statementGrid.Rows() - 2,
        [&](CsvStream& csv) { WriteGridCsv(csv, statementGrid); },
        [&](SheetModel& sheet, ExportFrame::ExportSteps& steps) {
            statement->WriteSheet(
                sheet, steps, {statementGrid, statement->TitleCaption(entry, o.Year), entry, k});
        },
        [&] { check(); });
    return kStatementRows;
}

}  // namespace

int RunMonthlyStatement(const ReportDefinition& report, const QStringList& args,
                        const SessionOpener& openSession) {
    return RunStatementCommand(
        report, args,
        [&](const StatementOptions& o, SqlLogWriter& log, StatementProgress& progress) {
            return Run(report, o, openSession, log, progress);
        });
}

}  // namespace yunqi
