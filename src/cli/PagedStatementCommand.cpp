#include "cli/PagedStatementCommand.h"

#include <climits>

#include "cli/StatementCommand.h"
#include "cli/StatementOptions.h"
#include "core/RuntimeError.h"
#include "frame/Conditions.h"
#include "frame/SplitRatios.h"
#include "frame/TextMeasure.h"

namespace yunqi {

namespace {

// The percentages typed for a parking item, checked as the editor checks them.
bool ApplyRatios(const std::vector<RatioOption>& typed, bool ifPresent, FlexGrid& ratios) {
    for (const RatioOption& ratio : typed) {
        const int row = SplitRatios::RowOfItem(ratios, ratio.itemCode);
        if (row < 0 && ifPresent) continue;
        if (row < 0) {
            SayOnStderr(QStringLiteral("no parking item with code ") + ratio.itemCode +
                        QStringLiteral(" in this window"));
            return false;
        }
        SplitRatios::SetShares(ratios, row, ratio.developer, ratio.property);
        if (!SplitRatios::SumIsHundred(ratios, row)) {
            SayOnStderr(SplitRatios::SumMessage());
            return false;
        }
    }
    return true;
}

}  // namespace

int RunPagedStatement(const ReportDefinition& report, const StatementWork& work) {
    const StatementOptions& o = work.options;
    DatabaseSession& session = work.session;
    const QString& entry = work.entry;
    if (const auto problem = Conditions::CheckConditions(true, o.from, o.to)) {
        SayOnStderr(Conditions::MessageOf(*problem));
        return kStatementBadArguments;
    }
    StatementConditions conditions{Conditions::DeptCodeOf(entry), Conditions::SiteCodeOf(entry),
                                   Conditions::LoadInvoiceTypes(session), o.from, o.to};
    work.Check();

    auto statement = MakeStatement<PagedStatement>(report, session);
    FlexGrid statementGrid;
    FlexGrid ratios = SplitRatios::NewGrid();
    statement->InitGridHeader(statementGrid);
    work.progress.Step(QStringLiteral("extracting fee items"));
    work.Check(statement->ExtractFeeItems(conditions, ratios, statementGrid));
    if (statement->FeeItems().size() <= 1) {
        SayOnStderr(report.texts.noFeeItemsText);
        return kStatementNothing;
    }
    if (!ApplyRatios(o.ratios, o.ratioIfPresent, ratios)) return kStatementBadArguments;
    statement->BuildGridHeader(statementGrid, ratios);
    work.progress.Step(QStringLiteral("computing"));
    const auto run = statement->RunStatistics(conditions, ratios, INT_MAX);
    work.Check(run.trapped);
    if (!run.rows) {
        SayOnStderr(report.texts.noRowsText);
        return kStatementNothing;
    }
    // The CSV holds the statement as if one page held it all.
    WriteStatementOutputs(
        o, work.progress, statement->UpperBound(),
        [&](CsvStream& csv) {
            WriteStatementCsv(csv, *statement, statementGrid, EstimatedTextMeasure());
        },
        [&](SheetModel& sheet, ExportFrame::ExportSteps& steps) {
            statement->WriteSheet(
                sheet, steps,
                {statementGrid, Conditions::TitleCaption(entry, report.texts.title), entry,
                 conditions});
        },
        [&] { work.Check(); });
    return kStatementRows;
}

}  // namespace yunqi
