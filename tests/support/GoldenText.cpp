#include "support/GoldenText.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QList>
#include <algorithm>

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
    qsizetype column = 0;
    if (k < got.size() && k < want.size()) {
        const QString a = QString::fromUtf8(got[k]), b = QString::fromUtf8(want[k]);
        while (column < a.size() && column < b.size() && a[column] == b[column]) ++column;
    }
    QString text =
        QStringLiteral("first difference at line %1, column %2 (expected %3 lines, got %4):\n")
            .arg(k + 1)
            .arg(column + 1)
            .arg(LineCount(expected))
            .arg(LineCount(actual));
    // A few lines before, then the expected lines and the produced ones from there.
    auto add = [&](const char* mark, const QList<QByteArray>& lines, qsizetype from, qsizetype to) {
        for (qsizetype n = std::max<qsizetype>(0, from); n < std::min(to, lines.size()); ++n)
            text += QStringLiteral("%1 %2  %3\n")
                        .arg(QLatin1String(mark))
                        .arg(n + 1, 5)
                        .arg(Shown(lines[n], column));
    };
    add(" ", want, k - 3, k);
    add("-", want, k, k + 4);
    add("+", got, k, k + 4);
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
