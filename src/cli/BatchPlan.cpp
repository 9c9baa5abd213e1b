#include "cli/BatchPlan.h"

#include <QDir>

#include "cli/BatchFolder.h"
#include "frame/Conditions.h"
#include "reports/Reports.h"

namespace yunqi {

namespace {

// The single command's arguments for one statement of the month.
QStringList StatementArgs(const BatchOptions& o, const ReportDefinition& report,
                          const QString& code) {
    const QDate first = o.month, last = first.addMonths(1).addDays(-1);
    QStringList args{report.command};
    if (!o.database.isEmpty()) args << QStringLiteral("--database") << o.database;
    args << QStringLiteral("--dept") << code;
    if (report.conditions == ConditionsKind::YearMonths) {
        // The reconciliation covers the year to date.
        args << QStringLiteral("--year") << QString::number(first.year())
             << QStringLiteral("--months")
             << QStringLiteral("01-") + first.toString(QStringLiteral("MM"));
    } else {
        args << QStringLiteral("--from") << first.toString(Qt::ISODate) << QStringLiteral("--to")
             << last.toString(Qt::ISODate);
        for (const QString& ratio : o.ratios) args << QStringLiteral("--ratio") << ratio;
        if (!o.ratios.isEmpty()) args << QStringLiteral("--ratio-if-present");
    }
    return args;
}

}  // namespace

BatchPlan PlanBatch(const BatchOptions& o, const QStringList& entries) {
    const QDir out(o.out);
    BatchPlan plan;
    QStringList seen;
    for (const QString& entry : entries) {
        const QString code = Conditions::DeptCodeOf(entry);
        if ((!o.depts.isEmpty() && !o.depts.contains(code)) || seen.contains(code)) continue;
        seen << code;
        const QString folder = FileNameOfCode(code);
        plan.folders << folder;
        for (const ReportDefinition* report : AllReports()) {
            if (!o.reports.isEmpty() && !o.reports.contains(report->command)) continue;
            BatchJob job;
            job.dept = code;
            job.report = report->command;
            job.label = code + QLatin1Char(' ') + Conditions::DepartmentOf(entry).trimmed() +
                        QLatin1Char(' ') + report->texts.caption;
            job.relativeFile =
                folder + QLatin1Char('/') + report->command + QStringLiteral(".xlsx");
            job.args = StatementArgs(o, *report, code);
            job.args << QStringLiteral("--xlsx") << out.filePath(job.relativeFile);
            if (o.csv)
                job.csvPath = out.filePath(folder + QLatin1Char('/') + report->command +
                                           QStringLiteral(".csv"));
            job.args << QStringLiteral("--csv") << (o.csv ? job.csvPath : QStringLiteral("-"));
            plan.jobs.push_back(std::move(job));
        }
    }
    return plan;
}

}  // namespace yunqi
