#include "cli/MonthlyStatementCommand.h"

#include "frame/Conditions.h"
#include "frame/MonthlyStatement.h"

namespace yunqi {

int RunMonthlyStatement(const ReportDefinition& report, const StatementWork& work) {
    const StatementOptions& o = work.options;
    const QString& entry = work.entry;
    if (!MonthsInOrder(o.fromMonth, o.toMonth)) {
        SayOnStderr(QStringLiteral("截至月份不能小于开始月份,请重新选择!"));
        return kStatementBadArguments;
    }

    auto statement = MakeStatement<MonthlyStatement>(report, work.session);
    StatementConditions k;
    k.DeptCode = Conditions::DeptCodeOf(entry);
    k.SiteCode = Conditions::SiteCodeOf(entry);
    k.InvoiceTypeList = statement->LoadInvoiceTypes();
    k.Year = o.year;
    k.FromMonth = o.fromMonth;
    k.ToMonth = o.toMonth;
    work.Check();

    FlexGrid statementGrid;
    statement->InitGridHeader(statementGrid);
    work.progress.Step(QStringLiteral("extracting fee items"));
    work.Check(statement->ExtractFeeItems(k, statementGrid));
    if (statement->FeeItems().size() <= 1) {
        SayOnStderr(report.texts.noFeeItemsText);
        return kStatementNothing;
    }
    work.progress.Step(QStringLiteral("computing"));
    work.Check(statement->RunReconciliation(k, statementGrid));
    // Like the window's export, nothing is written without a body row.
    if (statementGrid.Rows() <= 2) {
        SayOnStderr(QStringLiteral("no rows"));
        return kStatementNothing;
    }
    WriteStatementOutputs(
        o, work.progress, statementGrid.Rows() - 2,
        [&](CsvStream& csv) { WriteGridCsv(csv, statementGrid); },
        [&](SheetModel& sheet, ExportFrame::ExportSteps& steps) {
            statement->WriteSheet(
                sheet, steps, {statementGrid, statement->TitleCaption(entry, o.year), entry, k});
        },
        [&] { work.Check(); });
    return kStatementRows;
}

}  // namespace yunqi
