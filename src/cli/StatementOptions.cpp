#include "cli/StatementOptions.h"

#include <QRegularExpression>

namespace yunqi {

namespace {

std::optional<QDate> IsoDate(const QString& text) {
    static const QRegularExpression shape(QStringLiteral("^\\d{4}-\\d{2}-\\d{2}$"));
    if (!shape.match(text).hasMatch()) return std::nullopt;
    const QDate d = QDate::fromString(text, QStringLiteral("yyyy-MM-dd"));
    if (!d.isValid()) return std::nullopt;
    return d;
}

std::optional<RatioOption> Ratio(const QString& text) {
    static const QRegularExpression shape(QStringLiteral("^([^=]+)=([^/]+)/(.+)$"));
    const auto m = shape.match(text);
    if (!m.hasMatch()) return std::nullopt;
    return RatioOption{m.captured(1), m.captured(2), m.captured(3)};
}

}  // namespace

std::optional<StatementOptions> ParseStatementOptions(const QStringList& args, QString& problem) {
    StatementOptions o;
    for (int i = 0; i < args.size(); ++i) {
        const QString& name = args[i];
        if (name == QLatin1String("--ratio-if-present")) {
            o.ratioIfPresent = true;
            continue;
        }
        if (i + 1 >= args.size()) {
            problem = name + QStringLiteral(" needs a value");
            return std::nullopt;
        }
        const QString value = args[++i];
        if (name == QLatin1String("--database")) {
            o.database = value;
        } else if (name == QLatin1String("--dept")) {
            o.dept = value;
        } else if (name == QLatin1String("--from") || name == QLatin1String("--to")) {
            const auto d = IsoDate(value);
            if (!d) {
                problem = name + QStringLiteral(" wants a date YYYY-MM-DD, not ") + value;
                return std::nullopt;
            }
            (name == QLatin1String("--from") ? o.from : o.to) = *d;
        } else if (name == QLatin1String("--ratio")) {
            const auto r = Ratio(value);
            if (!r) {
                problem = QStringLiteral("--ratio wants ITEMCODE=DEV/PROP, not ") + value;
                return std::nullopt;
            }
            o.ratios.push_back(*r);
        } else if (name == QLatin1String("--csv")) {
            o.csv = value;
        } else if (name == QLatin1String("--xlsx")) {
            o.xlsx = value;
        } else if (name == QLatin1String("--sql-log")) {
            o.sqlLog = value;
        } else {
            problem = QStringLiteral("unknown option ") + name;
            return std::nullopt;
        }
    }
    if (o.dept.isEmpty())
        problem = QStringLiteral("--dept is required");
    else if (!o.from.isValid())
        problem = QStringLiteral("--from is required");
    else if (!o.to.isValid())
        problem = QStringLiteral("--to is required");
    if (!problem.isEmpty()) return std::nullopt;
    return o;
}

}  // namespace yunqi
