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

constexpr int kRows = kStatementRows, kNothing = kStatementNothing,
              kBadArguments = kStatementBadArguments;

void Say(const QString& text) { SayOnStderr(text); }

// The percentages typed for a parking item, checked as the editor checks them.
bool ApplyRatios(const std::vector<RatioOption>& typed, bool ifPresent, FlexGrid& ratios) {
    for (const RatioOption& ratio : typed) {
        const int row = SplitRatios::RowOfItem(ratios, ratio.itemCode);
        if (row < 0 && ifPresent) continue;
        if (row < 0) {
            Say(QStringLiteral("no parking item with code ") + ratio.itemCode +
                QStringLiteral(" in this window"));
            return false;
        }
        SplitRatios::SetShares(ratios, row, ratio.developer, ratio.property);
        if (!SplitRatios::SumIsHundred(ratios, row)) {
            Say(SplitRatios::SumMessage());
            return false;
        }
    }
    return true;
}

int Run(const ReportDefinition& report, const StatementOptions& o, const SessionOpener& openSession,
        SqlLogWriter& log, StatementProgress& progress) {
    std::unique_ptr<DatabaseSession> session = OpenLoggedSession(openSession, o.database, log);
    const auto check = [&log](const Trapped& trapped = {}) { ThrowFaults(trapped, log); };

    // The department as a click on its List1 entry would choose it.
    const QString entry = EntryOfDepartment(*session, o.dept);
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

    auto statement = MakeStatement<PagedStatement>(report, *session);
    FlexGrid statementGrid;
    FlexGrid ratios = SplitRatios::NewGrid();
    statement->InitGridHeader(statementGrid);
    progress.Step(QStringLiteral("extracting fee items"));
    check(statement->ExtractFeeItems(conditions, ratios, statementGrid));
    if (statement->FeeItems().size() <= 1) {
        Say(report.texts.noFeeItemsText);
        return kNothing;
    }
    if (!ApplyRatios(o.ratios, o.ratioIfPresent, ratios)) return kBadArguments;
    statement->BuildGridHeader(statementGrid, ratios);
    progress.Step(QStringLiteral("computing"));
    const auto run = statement->RunStatistics(conditions, ratios, INT_MAX);
    check(run.trapped);
    if (!run.rows) {
        Say(report.texts.noRowsText);
        return kNothing;
    }
    // The CSV holds the statement as if one page held it all.
    WriteStatementOutputs(
        o, progress, statement->UpperBound(),
        [&](CsvStream& csv) {
            WriteStatementCsv(csv, *statement, statementGrid, EstimatedTextMeasure());
        },
        [&](SheetModel& sheet, ExportFrame::ExportSteps& steps) {
            statement->WriteSheet(
                sheet, steps,
                {statementGrid, Conditions::TitleCaption(entry, report.texts.title), entry,
                 conditions});
        },
        [&] { check(); });
    return kRows;
}

}  // namespace

int RunPagedStatement(const ReportDefinition& report, const QStringList& args,
                      const SessionOpener& openSession) {
    return RunStatementCommand(
        report, args,
        [&](const StatementOptions& o, SqlLogWriter& log, StatementProgress& progress) {
            return Run(report, o, openSession, log, progress);
        });
}

}  // namespace yunqi
