#pragma once

#include <QDate>
#include <QString>
#include <QVariant>

#include "core/RuntimeError.h"

namespace yunqi {

// The value rules every statement shares: number and date formats, the
// numeric value of a text, rounding. One place, so no report rounds its own way.
namespace ValueRules {

// An infinity or NaN raises Overflow in every number form below, naming it;
// so does a value of more than 15 digits before the point in "0.00".

// The Overflow of a number form told with what held the value ("票据编号
// 0001"); any other error as it was.
RuntimeError NamingTheValue(const RuntimeError& error, const QString& holder);

// "0.00": the value's 15-significant-digit decimal form rounded half away from
// zero; a negative that rounds to zero keeps its sign ("-0.00").
QString Format0_00(double value);
// A figure as the statements hold it: formatted "0.00" and read back.
double Round2(double value);
// "00": at least two digits; longer numbers are not cut (123 stays "123").
QString Format00(long long value);

// The numeric value of a text: the longest number at its start, blanks
// skipped; no number gives 0 (" 70%" is 70, "abc" is 0, "2.5" is 2.5).
double Val(const QString& text);
// The text of a double: 15 significant digits, no exponent, no trailing zeros.
QString DoubleText(double value);
// To an integer by rounding to nearest, ties to even. Beyond 32 bits: Overflow.
long RoundHalfEven(double value);

// Dates. A database value may be a date, a date-time or text in ISO form.
// Null raises "Invalid use of Null"; text that is no date raises "Type mismatch".
QDate ToDate(const QVariant& value);
QString FormatYmdDash(const QDate& date);  // yyyy-mm-dd
QString FormatYmd(const QDate& date);      // yyyymmdd
QString FormatYm(const QDate& date);       // yyyymm
// The same formats straight from a database value, without building a QDate
// when the value is already ISO text.
QString DateTextDash(const QVariant& value);
QString DateText8(const QVariant& value);
QString DateText6(const QVariant& value);

// Every CR LF pair removed; a bare CR or LF stays.
QString RemoveCrLf(QString text);

// The one test for a parking fee item.
bool IsParkingCategory(const QString& category);

// The text of a database value; Null raises "Invalid use of Null".
QString TextOf(const QVariant& value);
// The text of a database value, or empty when Null.
QString TextOrEmpty(const QVariant& value);
// A database number as a double; text is read with the numeric-value rule.
double NumberOf(const QVariant& value);

}  // namespace ValueRules

}  // namespace yunqi
