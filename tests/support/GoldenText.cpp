#include "support/GoldenText.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QList>
#include <algorithm>
#include <utility>

namespace yunqi {

namespace {

struct Token {
    enum Kind { Other, Open, Close, Text } kind;
    QByteArray bytes;
};

// Tags (a '>' inside a quoted attribute doesn't end one) and the texts between them.
QList<Token> Tokens(const QByteArray& xml) {
    QList<Token> tokens;
    qsizetype i = 0;
    while (i < xml.size()) {
        qsizetype j = i;
        if (xml[i] != '<') {
            while (j < xml.size() && xml[j] != '<') ++j;
            tokens.push_back({Token::Text, xml.mid(i, j - i)});
            i = j;
            continue;
        }
        char quote = 0;
        for (++j; j < xml.size(); ++j) {
            if (quote) {
                if (xml[j] == quote) quote = 0;
            } else if (xml[j] == '"' || xml[j] == '\'') {
                quote = xml[j];
            } else if (xml[j] == '>') {
                break;
            }
        }
        const QByteArray tag = xml.mid(i, j + 1 - i);
        Token::Kind kind = Token::Open;
        if (tag.startsWith("</"))
            kind = Token::Close;
        else if (tag.startsWith("<?") || tag.startsWith("<!") || tag.endsWith("/>"))
            kind = Token::Other;
        tokens.push_back({kind, tag});
        i = j + 1;
    }
    return tokens;
}

// A line for a message: line ends made visible, a long line cut around column.
QString Shown(const QByteArray& line, qsizetype column) {
    QString text = QString::fromUtf8(line);
    if (text.size() > 160) {
        const qsizetype from = std::max<qsizetype>(0, std::min(column, text.size()) - 60);
        text = (from > 0 ? QStringLiteral("…") : QString()) + text.mid(from, 140) +
               (from + 140 < text.size() ? QStringLiteral("…") : QString());
    }
    return text.replace(QLatin1Char('\r'), QStringLiteral("\\r"));
}

qsizetype LineCount(const QByteArray& text) {
    return text.count('\n') + (text.isEmpty() || text.endsWith('\n') ? 0 : 1);
}

QByteArray ReadFile(const QString& path, bool* found = nullptr) {
    QFile f(path);
    const bool open = f.open(QIODevice::ReadOnly);
    if (found) *found = open;
    return open ? f.readAll() : QByteArray();
}

}  // namespace

QByteArray PrettyXml(const QByteArray& xml) {
    const QList<Token> tokens = Tokens(xml);
    QByteArray out;
    int depth = 0;
    auto line = [&](const QByteArray& text) { out += QByteArray(2 * depth, ' ') + text + '\n'; };
    for (qsizetype i = 0; i < tokens.size(); ++i) {
        const Token& t = tokens[i];
        auto next = [&](qsizetype k) {
            return i + k < tokens.size() ? tokens[i + k].kind : Token::Other;
        };
        switch (t.kind) {
            case Token::Open:
                if (next(1) == Token::Close) {
                    line(t.bytes + tokens[i + 1].bytes);
                    i += 1;
                } else if (next(1) == Token::Text && next(2) == Token::Close) {
                    line(t.bytes + tokens[i + 1].bytes + tokens[i + 2].bytes);
                    i += 2;
                } else {
                    line(t.bytes);
                    ++depth;
                }
                break;
            case Token::Close:
                depth = std::max(0, depth - 1);
                line(t.bytes);
                break;
            case Token::Text:
                // Blanks between elements are layout, not content.
                if (!t.bytes.trimmed().isEmpty()) line(t.bytes);
                break;
            case Token::Other:
                line(t.bytes);
                break;
        }
    }
    return out;
}

QString FirstDifference(const QByteArray& actual, const QByteArray& expected) {
    if (actual == expected) return QString();
    const QList<QByteArray> got = actual.split('\n'), want = expected.split('\n');
    qsizetype k = 0;
    while (k < got.size() && k < want.size() && got[k] == want[k]) ++k;
    // The column in characters, as an editor counts it.
    qsizetype shownColumn = 0;
    if (k < got.size() && k < want.size()) {
        const QString a = QString::fromUtf8(got[k]), b = QString::fromUtf8(want[k]);
        while (shownColumn < a.size() && shownColumn < b.size() && a[shownColumn] == b[shownColumn])
            ++shownColumn;
    }

    // The first hunk: the fewest lines dropped from the one and added to the
    // other after which both go on alike for a few lines, or end together.
    auto alike = [&](qsizetype i, qsizetype j) {
        for (qsizetype n = 0; n < 3; ++n) {
            const bool inWant = i + n < want.size(), inGot = j + n < got.size();
            if (!inWant || !inGot) return inWant == inGot;
            if (want[i + n] != got[j + n]) return false;
        }
        return true;
    };
    auto firstHunk = [&]() -> std::pair<qsizetype, qsizetype> {
        for (qsizetype d = 1; d <= 400; ++d)
            for (qsizetype i = 0; i <= d; ++i)
                if (k + i <= want.size() && k + d - i <= got.size() && alike(k + i, k + d - i))
                    return {i, d - i};
        return {want.size() - k, got.size() - k};
    };
    const auto [dropped, added] = firstHunk();

    QString text =
        QStringLiteral("first difference at line %1, column %2 (expected %3 lines, got %4):\n")
            .arg(k + 1)
            .arg(shownColumn + 1)
            .arg(LineCount(expected))
            .arg(LineCount(actual));
    auto add = [&](const char* mark, const QList<QByteArray>& lines, qsizetype n) {
        text += QStringLiteral("%1 %2  %3\n")
                    .arg(QLatin1String(mark))
                    .arg(n + 1, 5)
                    .arg(Shown(lines[n], shownColumn));
    };
    auto addSome = [&](const char* mark, const QList<QByteArray>& lines, qsizetype from,
                       qsizetype count) {
        for (qsizetype n = from; n < from + std::min<qsizetype>(count, 8); ++n) add(mark, lines, n);
        if (count > 8)
            text += QStringLiteral("%1 (%2 more)\n").arg(QLatin1String(mark)).arg(count - 8);
    };
    for (qsizetype n = std::max<qsizetype>(0, k - 3); n < k; ++n) add(" ", want, n);
    addSome("-", want, k, dropped);
    addSome("+", got, k, added);
    for (qsizetype n = k + dropped; n < std::min(k + dropped + 2, want.size()); ++n)
        add(" ", want, n);
    return text;
}

void ExpectGolden(const QByteArray& actual, const QString& goldenPath) {
    if (qEnvironmentVariableIsSet("YUNQI_UPDATE_GOLDEN")) {
        QFile out(goldenPath);
        ASSERT_TRUE(out.open(QIODevice::WriteOnly | QIODevice::Truncate))
            << goldenPath.toStdString();
        out.write(actual);
        return;
    }
    bool found = false;
    const QByteArray expected = ReadFile(goldenPath, &found);
    ASSERT_TRUE(found) << goldenPath.toStdString()
                       << " is missing (YUNQI_UPDATE_GOLDEN=1 writes it)";
    const QString difference = FirstDifference(actual, expected);
    EXPECT_TRUE(difference.isEmpty())
        << goldenPath.toStdString() << ": " << difference.toStdString();
}

}  // namespace yunqi
