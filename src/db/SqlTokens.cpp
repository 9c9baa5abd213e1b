#include "db/SqlTokens.h"

namespace yunqi {

namespace {

bool IsWordChar(QChar c) {
    // Surrogates: names may use characters beyond the basic plane.
    return c.isLetterOrNumber() || c.isSurrogate() || c == QLatin1Char('_') ||
           c == QLatin1Char('@') || c == QLatin1Char('#') || c == QLatin1Char('$');
}

// End of a run that closes with `close`; a doubled close stays inside.
qsizetype QuotedEnd(const QString& sql, qsizetype i, QChar close) {
    for (++i; i < sql.size(); ++i) {
        if (sql[i] != close) continue;
        if (i + 1 < sql.size() && sql[i + 1] == close) {
            ++i;
            continue;
        }
        return i + 1;
    }
    return sql.size();
}

}  // namespace

bool SqlToken::IsWord(QStringView word) const {
    return kind == Word && QStringView(text).compare(word, Qt::CaseInsensitive) == 0;
}

QString SqlToken::Name() const {
    if (text.size() >= 2 && (text[0] == QLatin1Char('[') || text[0] == QLatin1Char('"')))
        return text.mid(1, text.size() - 2);
    return text;
}

std::vector<SqlToken> TokenizeSql(const QString& sql) {
    std::vector<SqlToken> tokens;
    qsizetype i = 0;
    const qsizetype n = sql.size();
    auto take = [&](SqlToken::Kind kind, qsizetype end) {
        tokens.push_back({kind, sql.mid(i, end - i)});
        i = end;
    };
    while (i < n) {
        const QChar c = sql[i];
        const QChar next = i + 1 < n ? sql[i + 1] : QChar();
        qsizetype end = i + 1;
        if (c.isSpace()) {
            while (end < n && sql[end].isSpace()) ++end;
            take(SqlToken::Space, end);
        } else if (c == QLatin1Char('-') && next == QLatin1Char('-')) {
            end = sql.indexOf(QLatin1Char('\n'), i);
            take(SqlToken::Space, end < 0 ? n : end);
        } else if (c == QLatin1Char('/') && next == QLatin1Char('*')) {
            end = sql.indexOf(QStringLiteral("*/"), i + 2);
            take(SqlToken::Space, end < 0 ? n : end + 2);
        } else if (c == QLatin1Char('\'')) {
            take(SqlToken::Literal, QuotedEnd(sql, i, c));
        } else if (c == QLatin1Char('"')) {
            take(SqlToken::Word, QuotedEnd(sql, i, c));
        } else if (c == QLatin1Char('[')) {
            take(SqlToken::Word, QuotedEnd(sql, i, QLatin1Char(']')));
        } else if (c.isDigit()) {
            while (end < n && (IsWordChar(sql[end]) || sql[end] == QLatin1Char('.'))) ++end;
            take(SqlToken::Number, end);
        } else if (IsWordChar(c)) {
            while (end < n && IsWordChar(sql[end])) ++end;
            take(SqlToken::Word, end);
        } else {
            take(SqlToken::Punct, end);
        }
    }
    return tokens;
}

}  // namespace yunqi
