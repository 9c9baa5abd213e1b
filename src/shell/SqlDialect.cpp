#include "shell/SqlDialect.h"

#include <QRegularExpression>

#include "frame/RuntimeError.h"

namespace {

using Re = QRegularExpression;
constexpr auto kI = Re::CaseInsensitiveOption;

// Convert(Char(8),X,112) is yyyymmdd, Convert(Char(6),X,112) yyyymm.
QString DateStyle112(QString sql) {
    static const Re convert(
        QStringLiteral(R"(convert\s*\(\s*char\s*\(\s*(8|6)\s*\)\s*,\s*([^,()]+?)\s*,\s*112\s*\))"),
        kI);
    QString out;
    qsizetype last = 0;
    for (auto it = convert.globalMatch(sql); it.hasNext();) {
        const auto m = it.next();
        out += QStringView(sql).mid(last, m.capturedStart() - last);
        out += QStringLiteral("strftime('") +
               (m.captured(1) == QLatin1String("8") ? QStringLiteral("%Y%m%d")
                                                    : QStringLiteral("%Y%m")) +
               QStringLiteral("',") + m.captured(2) + QLatin1Char(')');
        last = m.capturedEnd();
    }
    out += QStringView(sql).mid(last);
    return out;
}

// Index of a keyword at bracket depth 0 outside literals, from position from.
qsizetype TopLevel(const QString& sql, const Re& keyword, qsizetype from, bool lastOne) {
    qsizetype found = -1;
    int depth = 0;
    bool quoted = false;
    for (qsizetype i = from; i < sql.size(); ++i) {
        const QChar c = sql[i];
        if (c == QLatin1Char('\'')) quoted = !quoted;
        if (quoted) continue;
        if (c == QLatin1Char('('))
            ++depth;
        else if (c == QLatin1Char(')'))
            --depth;
        else if (depth == 0 && (i == 0 || !sql[i - 1].isLetterOrNumber())) {
            const auto m = keyword.match(sql, i, Re::NormalMatch, Re::AnchorAtOffsetMatchOption);
            if (m.hasMatch()) {
                found = i;
                if (!lastOne) return found;
            }
        }
    }
    return found;
}

// SQL Server binds a bare ORDER BY name to the select list; SQLite calls it
// ambiguous when several joined tables have it. Qualify it as the list does.
QString QualifyOrderBy(const QString& sql) {
    static const Re orderBy(QStringLiteral(R"(order\s+by\b)"), kI);
    static const Re select(QStringLiteral(R"(select\b)"), kI);
    static const Re from(QStringLiteral(R"(from\b)"), kI);
    const qsizetype order = TopLevel(sql, orderBy, 0, true);
    const qsizetype head = TopLevel(sql, select, 0, false);
    if (order < 0 || head < 0) return sql;
    const qsizetype listEnd = TopLevel(sql, from, head, false);
    if (listEnd < 0) return sql;
    const QString list = sql.mid(head, listEnd - head);

    const auto termsStart = orderBy.match(sql, order).capturedEnd();
    QStringList terms = sql.mid(termsStart).split(QLatin1Char(','));
    static const Re bare(QStringLiteral(R"(^(\s*)([^\s.,()']+)(\s*(?:asc|desc)?\s*)$)"), kI);
    for (QString& term : terms) {
        const auto m = bare.match(term);
        if (!m.hasMatch()) continue;
        const Re qualified(QStringLiteral(R"((?:^|[\s,])([^\s.,()']+)\.)") +
                           Re::escape(m.captured(2)) + QStringLiteral(R"((?=\s*(?:,|$)))"));
        const auto q = qualified.match(list);
        if (q.hasMatch())
            term = m.captured(1) + q.captured(1) + QLatin1Char('.') + m.captured(2) + m.captured(3);
    }
    return sql.left(termsStart) + terms.join(QLatin1Char(','));
}

}  // namespace

QString AdaptToSQLite(const QString& sql) {
    static const Re emptyIn(QStringLiteral(R"(\bin\s*\(\s*\))"), kI);
    if (emptyIn.match(sql).hasMatch())
        throw RuntimeError(102, QStringLiteral("Incorrect syntax near ')'."));
    static const Re len(QStringLiteral(R"(\blen\s*\()"), kI);
    QString out = DateStyle112(sql);
    out.replace(len, QStringLiteral("length("));
    return QualifyOrderBy(out);
}
