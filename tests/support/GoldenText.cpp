#include "support/GoldenText.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <algorithm>

namespace yunqi {

QByteArray PrettyXml(const QByteArray& xml) {
    // Tags (a '>' inside a quoted attribute doesn't end one) and the texts between them.
    static const QRegularExpression token(R"(<(?:[^>"']|"[^"]*"|'[^']*')*>?|[^<]+)");
    QList<QByteArray> parts;
    for (auto it = token.globalMatch(QString::fromUtf8(xml)); it.hasNext();)
        parts << it.next().captured().toUtf8();
    // 'S' a start tag, 'C' a closing one, 'T' a text, 'O' any other tag.
    auto kind = [&](qsizetype i) {
        const QByteArray t = parts.value(i);  // past the end: a text, which joins nothing
        if (!t.startsWith('<')) return 'T';
        if (t.startsWith("</")) return 'C';
        return t.startsWith("<?") || t.startsWith("<!") || t.endsWith("/>") ? 'O' : 'S';
    };
    QByteArray out;
    int depth = 0;
    for (qsizetype i = 0; i < parts.size(); ++i) {
        const char k = kind(i);
        if (k == 'T' && parts[i].trimmed().isEmpty()) continue;  // blanks between tags are layout
        if (k == 'C') depth = std::max(0, depth - 1);
        // An element holding only a text, or nothing, stays on its line.
        const int joined = k != 'S'                                   ? 0
                           : kind(i + 1) == 'C'                       ? 1
                           : kind(i + 1) == 'T' && kind(i + 2) == 'C' ? 2
                                                                      : 0;
        out += QByteArray(2 * depth, ' ') + parts.mid(i, joined + 1).join() + '\n';
        depth += k == 'S' && joined == 0;
        i += joined;
    }
    return out;
}

QString FirstDifference(const QByteArray& actual, const QByteArray& expected) {
    if (actual == expected) return QString();
    const QStringList got = QString::fromUtf8(actual).split('\n');
    const QStringList want = QString::fromUtf8(expected).split('\n');
    qsizetype k = 0, column = 0;  // the column in characters, as an editor counts it
    while (k < got.size() && k < want.size() && got[k] == want[k]) ++k;
    while (k < got.size() && k < want.size() && column < std::min(got[k].size(), want[k].size()) &&
           got[k][column] == want[k][column])
        ++column;
    auto lines = [](const QStringList& l) { return l.size() - (l.last().isEmpty() ? 1 : 0); };
    QString text = QStringLiteral(
                       "first difference at line %1, column %2 (expected %3 lines, "
                       "got %4):\n")
                       .arg(k + 1)
                       .arg(column + 1)
                       .arg(lines(want))
                       .arg(lines(got));
    // A few lines before, then the expected lines and the produced ones from there; a long line
    // is cut around the column.
    auto add = [&](const char* mark, const QStringList& from, qsizetype first, qsizetype end) {
        for (qsizetype n = std::max<qsizetype>(0, first); n < std::min(end, from.size()); ++n) {
            const qsizetype cut = from[n].size() > 160 ? std::max<qsizetype>(0, column - 60) : 0;
            QString shown = from[n].mid(cut, from[n].size() > 160 ? 140 : -1);
            text += QStringLiteral("%1 %2  %3%4\n")
                        .arg(QLatin1String(mark))
                        .arg(n + 1, 5)
                        .arg(cut ? QStringLiteral("…") : QString(), shown.replace('\r', "\\r"));
        }
    };
    add(" ", want, k - 3, k);
    add("-", want, k, k + 4);
    add("+", got, k, k + 4);
    return text;
}

void ExpectGolden(const QByteArray& actual, const QString& goldenPath) {
    QFile golden(goldenPath);
    const std::string path = goldenPath.toStdString();
    if (qEnvironmentVariableIsSet("YUNQI_UPDATE_GOLDEN")) {
        QDir().mkpath(QFileInfo(goldenPath).path());  // a new report's folder
        ASSERT_TRUE(golden.open(QIODevice::WriteOnly | QIODevice::Truncate)) << path;
        golden.write(actual);
        return;
    }
    ASSERT_TRUE(golden.open(QIODevice::ReadOnly))
        << path << " is missing (YUNQI_UPDATE_GOLDEN=1 writes it)";
    const QString difference = FirstDifference(actual, golden.readAll());
    EXPECT_TRUE(difference.isEmpty()) << path << ": " << difference.toStdString();
}

}  // namespace yunqi
