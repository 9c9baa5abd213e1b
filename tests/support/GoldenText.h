#pragma once

#include <QString>

namespace yunqi {

// One element a line, indented by depth, attributes and texts byte for byte:
// a swapped column or a lost style shows as a few lines of a diff.
QByteArray PrettyXml(const QByteArray& xml);

// Where two texts part, for a failure message (empty when they are the same):
// the first differing line and column, a few lines before, a few of each after.
QString FirstDifference(const QByteArray& actual, const QByteArray& expected);

// Compares produced bytes with a golden file and tells the first difference;
// with YUNQI_UPDATE_GOLDEN set, rewrites the file instead.
void ExpectGolden(const QByteArray& actual, const QString& goldenPath);

}  // namespace yunqi
