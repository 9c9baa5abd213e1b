#pragma once

#include <QByteArray>
#include <QString>

namespace yunqi {

// One element a line, indented by depth; an element holding only text keeps
// it on its line. Attributes and texts stay byte for byte, so that a swapped
// column or a lost style shows as a few lines of a diff.
QByteArray PrettyXml(const QByteArray& xml);

// Where two texts part, for a failure message: the first differing line with
// its number, a few lines before it, and a few of each text from there.
// Empty when they are the same.
QString FirstDifference(const QByteArray& actual, const QByteArray& expected);

// Compares produced bytes with a golden file and tells the first difference;
// with YUNQI_UPDATE_GOLDEN set, rewrites the file instead.
void ExpectGolden(const QByteArray& actual, const QString& goldenPath);

}  // namespace yunqi
