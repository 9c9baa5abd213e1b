#include "cli/BatchOptions.h"

#include <QRegularExpression>
#include <QThread>
#include <algorithm>

#include "cli/StatementOptions.h"
#include "cli/TimeLimit.h"
#include "frame/Conditions.h"
#include "frame/SplitRatios.h"
#include "reports/Reports.h"

namespace yunqi {

namespace {

QDate FirstDay(const QString& month) {
    static const QRegularExpression shape(QStringLiteral("^(\\d{4})-(\\d{2})$"));
    const auto m = shape.match(month);
    return m.hasMatch() ? QDate(m.captured(1).toInt(), m.captured(2).toInt(), 1) : QDate();
}

QString MonthProblem(const QString& name, const QString& value) {
    return FirstDay(value).isValid() ? QString()
                                     : Wants(name, QStringLiteral("a month YYYY-MM"), value);
}

QString ReportProblem(const QString& name, const QString& value) {
    if (FindReport(value)) return QString();
    QStringList names;
    for (const ReportDefinition* r : AllReports()) names << r->command;
    const QString last = names.takeLast();
    return Wants(name, names.join(QStringLiteral(", ")) + QStringLiteral(" or ") + last, value);
}

QString JobsProblem(const QString& name, const QString& value) {
    bool ok = false;
    const int jobs = value.toInt(&ok);
    return ok && jobs >= 1 && jobs <= 256
               ? QString()
               : Wants(name, QStringLiteral("a number from 1 to 256"), value);
}

}  // namespace

const CommandSpec& BatchSpec() {
    using O = OptionSpec;
    static const CommandSpec spec{{{"--database", "FILE"},
                                   {"--month", "YYYY-MM", O::Required, MonthProblem},
                                   {"--out", "DIR", O::Required},
                                   {"--dept", "CODE", O::Repeatable},
                                   {"--report", "NAME", O::Repeatable, ReportProblem},
                                   {"--ratio", "ITEMCODE=DEV/PROP", O::Repeatable, RatioProblem},
                                   {"--csv", nullptr, O::Repeatable},
                                   {"--jobs", "N", 0, JobsProblem},
                                   {"--timeout", "SECONDS", 0, TimeoutProblem},
                                   {"--force", nullptr, O::Repeatable},
                                   {"--quiet", nullptr, O::Repeatable}}};
    return spec;
}

std::optional<BatchOptions> ParseBatchOptions(const QStringList& args, QString& problem) {
    const ParsedArgs parsed = ParseArgs(BatchSpec(), args);
    // The command line answers --help before a command runs; here it is no option.
    if (parsed.help) problem = QStringLiteral("unexpected argument --help");
    if (!parsed.problem.isEmpty()) problem = parsed.problem;
    if (parsed.help || !parsed.problem.isEmpty()) return std::nullopt;
    BatchOptions o;
    o.database = parsed.Value(QStringLiteral("--database"));
    o.month = FirstDay(parsed.Value(QStringLiteral("--month")));
    o.out = parsed.Value(QStringLiteral("--out"));
    o.depts = parsed.Values(QStringLiteral("--dept"));
    o.reports = parsed.Values(QStringLiteral("--report"));
    o.ratios = parsed.Values(QStringLiteral("--ratio"));
    // The statements would refuse a second ratio of an item, or shares that
    // miss 100, each of them: refused before any work instead.
    const auto ratios = ReadRatios(o.ratios, problem);
    if (!ratios) return std::nullopt;
    for (const RatioOption& r : *ratios) {
        FlexGrid grid = SplitRatios::NewGrid();
        grid.SetRows(2);
        SplitRatios::SetShares(grid, 1, r.developer, r.property);
        if (!SplitRatios::SumIsHundred(grid, 1)) {
            problem = SplitRatios::SumMessage();
            return std::nullopt;
        }
    }
    o.csv = parsed.Has(QStringLiteral("--csv"));
    o.jobs = parsed.Has(QStringLiteral("--jobs")) ? parsed.Value(QStringLiteral("--jobs")).toInt()
                                                  : std::max(1, QThread::idealThreadCount());
    o.timeout = parsed.Value(QStringLiteral("--timeout")).toInt();
    o.force = parsed.Has(QStringLiteral("--force"));
    o.quiet = parsed.Has(QStringLiteral("--quiet"));
    return o;
}

QString UnlistedDepartment(const BatchOptions& o, const QStringList& entries) {
    for (const QString& code : o.depts) {
        const bool listed = std::any_of(entries.begin(), entries.end(), [&](const QString& e) {
            return Conditions::DeptCodeOf(e) == code;
        });
        if (!listed)
            return QStringLiteral("no department with code ") + code +
                   QStringLiteral(" in the list");
    }
    return QString();
}

}  // namespace yunqi
