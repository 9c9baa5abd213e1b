#include "cli/StatementOptions.h"

#include <QRegularExpression>
#include <QSet>
#include <cmath>

namespace yunqi {

namespace {

enum class Takes { Both, DateWindow, YearMonths };

struct OptionSpec {
    const char* name;
    Takes takes;
};

const OptionSpec kOptions[] = {
    {"--database", Takes::Both},     {"--dept", Takes::Both},        {"--from", Takes::DateWindow},
    {"--to", Takes::DateWindow},     {"--ratio", Takes::DateWindow}, {"--year", Takes::YearMonths},
    {"--months", Takes::YearMonths}, {"--csv", Takes::Both},         {"--xlsx", Takes::Both},
    {"--sql-log", Takes::Both},
};

const OptionSpec* Find(const QString& name) {
    for (const OptionSpec& o : kOptions)
        if (name == QLatin1String(o.name)) return &o;
    return nullptr;
}

bool Accepts(const OptionSpec& o, ConditionsKind kind) {
    return o.takes == Takes::Both ||
           (o.takes == Takes::DateWindow) == (kind == ConditionsKind::DateWindow);
}

std::optional<QDate> IsoDate(const QString& text) {
    static const QRegularExpression shape(QStringLiteral("^\\d{4}-\\d{2}-\\d{2}$"));
    if (!shape.match(text).hasMatch()) return std::nullopt;
    const QDate d = QDate::fromString(text, QStringLiteral("yyyy-MM-dd"));
    if (!d.isValid()) return std::nullopt;
    return d;
}

// The 物业 share is read back from the grid as a number (a text that is no
// number is a type mismatch there); the 开发商 share is only summed and shown.
bool IsNumber(const QString& text) {
    bool ok = false;
    const double v = text.trimmed().toDouble(&ok);
    return ok && std::isfinite(v);
}

std::optional<RatioOption> Ratio(const QString& text, QString& problem) {
    static const QRegularExpression shape(QStringLiteral("^([^=]+)=([^/]+)/(.+)$"));
    const auto m = shape.match(text);
    if (!m.hasMatch()) {
        problem = QStringLiteral("--ratio wants ITEMCODE=DEV/PROP, not ") + text;
        return std::nullopt;
    }
    RatioOption r{m.captured(1), m.captured(2), m.captured(3)};
    if (!IsNumber(r.property)) {
        problem = QStringLiteral("--ratio ") + text + QStringLiteral(": the 物业 share ") +
                  r.property + QStringLiteral(" is no number");
        return std::nullopt;
    }
    return r;
}

bool Month(const QString& text) {
    const int m = text.toInt();
    return m >= 1 && m <= 12;
}

}  // namespace

QString StatementUsage() {
    return QStringLiteral(
        "usage:\n"
        "  yunqi-statement invoice|preinvoice|parking [--database FILE] --dept CODE "
        "--from YYYY-MM-DD --to YYYY-MM-DD [--ratio ITEMCODE=DEV/PROP]... [--csv PATH|-] "
        "[--xlsx PATH] [--sql-log PATH]\n"
        "  yunqi-statement reconciliation [--database FILE] --dept CODE --year YYYY "
        "--months MM-MM [--csv PATH|-] [--xlsx PATH] [--sql-log PATH]\n"
        "  yunqi-statement make-demo-db FILE [--tickets N] [--seed S] [--force]\n"
        "  yunqi-statement batch [--database FILE] --month YYYY-MM --out DIR [--dept CODE]... "
        "[--report NAME]... [--ratio ITEMCODE=DEV/PROP]... [--csv] [--jobs N] [--force] "
        "[--quiet]\n");
}

std::optional<StatementOptions> ParseStatementOptions(const QStringList& args, QString& problem) {
    return ParseStatementOptions(args, ConditionsKind::DateWindow, problem);
}

std::optional<StatementOptions> ParseStatementOptions(const QStringList& args, ConditionsKind kind,
                                                      QString& problem) {
    static const QRegularExpression yearShape(QStringLiteral("^\\d{4}$"));
    static const QRegularExpression monthsShape(QStringLiteral("^(\\d{2})-(\\d{2})$"));
    StatementOptions o;
    QSet<QString> seen;
    QSet<QString> ratioItems;
    auto fail = [&problem](const QString& text) {
        problem = text;
        return std::nullopt;
    };
    for (int i = 0; i < args.size(); ++i) {
        const QString& name = args[i];
        if (name == QLatin1String("--ratio-if-present") && kind == ConditionsKind::DateWindow) {
            // The batch passes its ratios to every department: an item a
            // department's window lacks is no mistake there.
            o.ratioIfPresent = true;
            continue;
        }
        if (!name.startsWith(QLatin1String("--")))
            return fail(QStringLiteral("unexpected argument ") + name);
        const OptionSpec* spec = Find(name);
        if (!spec) return fail(QStringLiteral("unknown option ") + name);
        if (!Accepts(*spec, kind))
            return fail(name + (kind == ConditionsKind::DateWindow
                                    ? QStringLiteral(" belongs to the reconciliation; this "
                                                     "command takes --from and --to")
                                    : QStringLiteral(" belongs to the date-window statements; "
                                                     "this command takes --year and --months")));
        // The next option is no value: "--csv --xlsx x" lacks the CSV path.
        if (i + 1 >= args.size() || Find(args[i + 1]))
            return fail(name + QStringLiteral(" needs a value"));
        const QString value = args[++i];
        if (value.isEmpty())
            return fail(name + QStringLiteral(" needs a value, not an empty text"));
        if (name != QLatin1String("--ratio") && seen.contains(name))
            return fail(name + QStringLiteral(" given twice"));
        seen.insert(name);

        if (name == QLatin1String("--database")) {
            o.database = value;
        } else if (name == QLatin1String("--dept")) {
            o.dept = value;
        } else if (name == QLatin1String("--from") || name == QLatin1String("--to")) {
            const auto d = IsoDate(value);
            if (!d) return fail(name + QStringLiteral(" wants a date YYYY-MM-DD, not ") + value);
            (name == QLatin1String("--from") ? o.from : o.to) = *d;
        } else if (name == QLatin1String("--ratio")) {
            const auto r = Ratio(value, problem);
            if (!r) return std::nullopt;
            if (ratioItems.contains(r->itemCode))
                return fail(QStringLiteral("--ratio for item ") + r->itemCode +
                            QStringLiteral(" given twice"));
            ratioItems.insert(r->itemCode);
            o.ratios.push_back(*r);
        } else if (name == QLatin1String("--year")) {
            if (!yearShape.match(value).hasMatch())
                return fail(QStringLiteral("--year wants a year YYYY, not ") + value);
            o.Year = value;
        } else if (name == QLatin1String("--months")) {
            const auto m = monthsShape.match(value);
            if (!m.hasMatch() || !Month(m.captured(1)) || !Month(m.captured(2)))
                return fail(QStringLiteral("--months wants MM-MM, two months 01 to 12, not ") +
                            value);
            o.FromMonth = m.captured(1);
            o.ToMonth = m.captured(2);
        } else if (name == QLatin1String("--csv")) {
            o.csv = value;
        } else if (name == QLatin1String("--xlsx")) {
            o.xlsx = value;
        } else if (name == QLatin1String("--sql-log")) {
            o.sqlLog = value;
        }
    }
    if (o.dept.isEmpty()) return fail(QStringLiteral("--dept is required"));
    if (kind == ConditionsKind::DateWindow) {
        if (!o.from.isValid()) return fail(QStringLiteral("--from is required"));
        if (!o.to.isValid()) return fail(QStringLiteral("--to is required"));
    } else {
        if (o.Year.isEmpty()) return fail(QStringLiteral("--year is required"));
        if (o.FromMonth.isEmpty()) return fail(QStringLiteral("--months is required"));
    }
    return o;
}

}  // namespace yunqi
