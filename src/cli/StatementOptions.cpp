#include "cli/StatementOptions.h"

#include <QRegularExpression>
#include <QSet>
#include <cmath>

#include "cli/TimeLimit.h"

namespace yunqi {

namespace {

const QRegularExpression& RatioShape() {
    static const QRegularExpression shape(QStringLiteral("^([^=]+)=([^/]+)/(.+)$"));
    return shape;
}

QDate Day(const QString& text) { return QDate::fromString(text, QStringLiteral("yyyy-MM-dd")); }

QString DateProblem(const QString& name, const QString& value) {
    static const QRegularExpression shape(QStringLiteral("^\\d{4}-\\d{2}-\\d{2}$"));
    const bool ok = shape.match(value).hasMatch() && Day(value).isValid();
    return ok ? QString() : Wants(name, QStringLiteral("a date YYYY-MM-DD"), value);
}

QString YearProblem(const QString& name, const QString& value) {
    static const QRegularExpression shape(QStringLiteral("^\\d{4}$"));
    return shape.match(value).hasMatch() ? QString()
                                         : Wants(name, QStringLiteral("a year YYYY"), value);
}

const QRegularExpression& MonthsShape() {
    static const QRegularExpression shape(QStringLiteral("^(\\d{2})-(\\d{2})$"));
    return shape;
}

bool Month(const QString& text) {
    const int m = text.toInt();
    return m >= 1 && m <= 12;
}

QString MonthsProblem(const QString& name, const QString& value) {
    const auto m = MonthsShape().match(value);
    return m.hasMatch() && Month(m.captured(1)) && Month(m.captured(2))
               ? QString()
               : Wants(name, QStringLiteral("MM-MM, two months 01 to 12"), value);
}

// The 物业 share is read back from the grid as a number (a text that is no
// number is a type mismatch there); the 开发商 share is only summed and shown.
bool IsNumber(const QString& text) {
    bool ok = false;
    const double v = text.trimmed().toDouble(&ok);
    return ok && std::isfinite(v);
}

using O = OptionSpec;

CommandSpec DateWindowSpec() {
    return {{{"--database", "FILE"},
             {"--dept", "CODE", O::Required},
             {"--from", "YYYY-MM-DD", O::Required, DateProblem},
             {"--to", "YYYY-MM-DD", O::Required, DateProblem},
             {"--ratio", "ITEMCODE=DEV/PROP", O::Repeatable, RatioProblem},
             // The batch passes its ratios to every department: an item a
             // department's window lacks is no mistake there.
             {"--ratio-if-present", nullptr, O::Repeatable | O::Hidden},
             {"--csv", "PATH|-"},
             {"--xlsx", "PATH"},
             {"--sql-log", "PATH"},
             {"--timeout", "SECONDS", 0, TimeoutProblem},
             {"--quiet", nullptr}},
            {QStringLiteral("--year"), QStringLiteral("--months")},
            QStringLiteral(" belongs to the reconciliation; this command takes --from and --to")};
}

CommandSpec YearMonthsSpec() {
    return {{{"--database", "FILE"},
             {"--dept", "CODE", O::Required},
             {"--year", "YYYY", O::Required, YearProblem},
             {"--months", "MM-MM", O::Required, MonthsProblem},
             {"--csv", "PATH|-"},
             {"--xlsx", "PATH"},
             {"--sql-log", "PATH"},
             {"--timeout", "SECONDS", 0, TimeoutProblem},
             {"--quiet", nullptr}},
            {QStringLiteral("--from"), QStringLiteral("--to"), QStringLiteral("--ratio")},
            QStringLiteral(" belongs to the date-window statements; this command takes --year and "
                           "--months")};
}

}  // namespace

const CommandSpec& StatementSpec(ConditionsKind kind) {
    static const CommandSpec window = DateWindowSpec(), months = YearMonthsSpec();
    return kind == ConditionsKind::DateWindow ? window : months;
}

QString RatioProblem(const QString& name, const QString& value) {
    const auto m = RatioShape().match(value);
    if (!m.hasMatch()) return Wants(name, QStringLiteral("ITEMCODE=DEV/PROP"), value);
    if (!IsNumber(m.captured(3)))
        return name + QLatin1Char(' ') + value + QStringLiteral(": the 物业 share ") +
               m.captured(3) + QStringLiteral(" is no number");
    return QString();
}

std::optional<std::vector<RatioOption>> ReadRatios(const QStringList& values, QString& problem) {
    std::vector<RatioOption> ratios;
    QSet<QString> items;
    for (const QString& value : values) {
        if (problem = RatioProblem(QStringLiteral("--ratio"), value); !problem.isEmpty())
            return std::nullopt;
        const auto m = RatioShape().match(value);
        RatioOption r{m.captured(1), m.captured(2), m.captured(3)};
        if (items.contains(r.itemCode)) {
            problem =
                QStringLiteral("--ratio for item ") + r.itemCode + QStringLiteral(" given twice");
            return std::nullopt;
        }
        items.insert(r.itemCode);
        ratios.push_back(r);
    }
    return ratios;
}

std::optional<StatementOptions> ParseStatementOptions(const QStringList& args, QString& problem) {
    return ParseStatementOptions(args, ConditionsKind::DateWindow, problem);
}

std::optional<StatementOptions> ParseStatementOptions(const QStringList& args, ConditionsKind kind,
                                                      QString& problem) {
    const ParsedArgs parsed = ParseArgs(StatementSpec(kind), args);
    // The command line answers --help before a command runs; here it is no option.
    if (parsed.help) problem = QStringLiteral("unexpected argument --help");
    if (!parsed.problem.isEmpty()) problem = parsed.problem;
    if (parsed.help || !parsed.problem.isEmpty()) return std::nullopt;

    StatementOptions o;
    o.database = parsed.Value(QStringLiteral("--database"));
    o.dept = parsed.Value(QStringLiteral("--dept"));
    o.csv = parsed.Value(QStringLiteral("--csv"));
    o.xlsx = parsed.Value(QStringLiteral("--xlsx"));
    o.sqlLog = parsed.Value(QStringLiteral("--sql-log"));
    o.quiet = parsed.Has(QStringLiteral("--quiet"));
    o.timeout = parsed.Value(QStringLiteral("--timeout")).toInt();
    if (kind == ConditionsKind::DateWindow) {
        o.from = Day(parsed.Value(QStringLiteral("--from")));
        o.to = Day(parsed.Value(QStringLiteral("--to")));
        o.ratioIfPresent = parsed.Has(QStringLiteral("--ratio-if-present"));
        const auto ratios = ReadRatios(parsed.Values(QStringLiteral("--ratio")), problem);
        if (!ratios) return std::nullopt;
        o.ratios = *ratios;
    } else {
        o.year = parsed.Value(QStringLiteral("--year"));
        const auto m = MonthsShape().match(parsed.Value(QStringLiteral("--months")));
        o.fromMonth = m.captured(1);
        o.toMonth = m.captured(2);
    }
    return o;
}

}  // namespace yunqi
