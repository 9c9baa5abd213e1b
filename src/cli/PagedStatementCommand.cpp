#include "cli/PagedStatementCommand.h"

#include <QFile>
#include <QSaveFile>
#include <QTextStream>
#include <climits>

#include "cli/GridCsv.h"
#include "cli/StatementOptions.h"
#include "frame/Conditions.h"
#include "core/RuntimeError.h"
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

bool WriteText(const QString& path, const QString& text) {
    if (path == QLatin1String("-")) {
        QFile out;
        if (!out.open(stdout, QIODevice::WriteOnly)) return false;
        return out.write(text.toUtf8()) >= 0;
    }
    // Replaces an existing file only when the whole text is written.
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        Say(path + QStringLiteral(": ") + file.errorString());
        return false;
    }
    file.write(text.toUtf8());
    if (!file.commit()) {
        Say(path + QStringLiteral(": ") + file.errorString());
        return false;
    }
    return true;
}

int Run(const ReportDefinition& report, const StatementOptions& o, const SessionOpener& openSession) {
    std::unique_ptr<DatabaseSession> session = openSession(o.database);
    std::unique_ptr<QFile> sqlLog;
    if (!o.sqlLog.isEmpty()) {
        sqlLog = std::make_unique<QFile>(o.sqlLog);
        if (!sqlLog->open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Text)) {
            Say(o.sqlLog + QStringLiteral(": ") + sqlLog->errorString());
            return kFailure;
        }
        session->SetSqlLog([log = sqlLog.get()](const QString& sql) {
            QString line = sql;
            line.replace(QLatin1Char('\n'), QLatin1Char(' '));
            log->write((line + QLatin1Char('\n')).toUtf8());
            log->flush();
        });
    }

    // The department as a click on its List1 entry would choose it.
    QString entry;
    for (const QString& e : Conditions::LoadDepartments(*session))
        if (Conditions::DeptCodeOf(e) == o.dept) {
            entry = e;
            break;
        }
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

    std::unique_ptr<PagedStatement> statement = report.makePaged(*session);
    FlexGrid grid1;
    FlexGrid grid2 = SplitRatios::NewGrid();
    statement->InitGridHeader(grid1);
    statement->ExtractFeeItems(conditions, grid2, grid1);
    if (statement->FeeItems().size() <= 1) {
        Say(report.texts.noFeeItemsText);
        return kNothing;
    }
    if (!ApplyRatios(o.ratios, o.ratioIfPresent, grid2)) return kBadArguments;
    statement->BuildGridHeader(grid1, grid2);
    if (!statement->RunStatistics(conditions, grid2, INT_MAX)) {
        Say(report.texts.noRowsText);
        return kNothing;
    }
    // One page holds the whole statement.
    statement->ShowPage(grid1, 1, INT_MAX, EstimatedTextMeasure());

    if (!o.csv.isEmpty() && !WriteText(o.csv, GridCsv(grid1))) return kFailure;
    if (!o.xlsx.isEmpty()) {
        SheetModel sheet;
        ExportFrame::ExportSteps steps(nullptr, AppDialogs());
        statement->WriteSheet(
            sheet, steps, {grid1, Conditions::TitleCaption(entry, report.texts.title), entry, conditions});
        WriteXlsx(sheet, o.xlsx);
    }
    return kRows;
}

}  // namespace

int RunPagedStatement(const ReportDefinition& report, const QStringList& args,
                      const SessionOpener& openSession) {
    QString problem;
    const auto options = ParseStatementOptions(args, problem);
    if (!options) {
        Say(problem);
        return kBadArguments;
    }
    try {
        return Run(report, *options, openSession);
    } catch (const RuntimeError& e) {
        Say(QStringLiteral("error ") + QString::number(e.number()) + QStringLiteral(": ") +
            e.description());
        return kFailure;
    }
}

}  // namespace yunqi
