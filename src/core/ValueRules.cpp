#include "core/ValueRules.h"

#include <QDateTime>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "core/RuntimeError.h"

namespace yunqi {

namespace ValueRules {

namespace {

// The 15 significant digits of |value| and the decimal exponent of the first.
struct Digits15 {
    std::string digits;  // exactly 15 characters
    int exponent = 0;
};

// Beyond 15 digits before the point "0.00" would make up the digits that
// follow, and the workbook and the CSV would disagree on them; an infinity or
// NaN has no digits at all.
constexpr double kBeyondExact = 1e15;

void Unformattable(double value) {
    char text[40];
    std::snprintf(text, sizeof text, "%.15g", value);
    throw RuntimeError(ErrorCode::Overflow,
                       QString::fromLatin1(text) +
                           QStringLiteral(" has more than the 15 digits before the point that "
                                          "the number forms hold"));
}

Digits15 Decompose(double magnitude) {
    if (!std::isfinite(magnitude)) Unformattable(magnitude);
    char buf[40];
    std::snprintf(buf, sizeof buf, "%.14e", magnitude);
    Digits15 d;
    d.digits.reserve(15);
    const char* p = buf;
    for (; *p && *p != 'e'; ++p)
        if (*p >= '0' && *p <= '9') d.digits.push_back(*p);
    d.exponent = *p == 'e' ? std::atoi(p + 1) : 0;
    return d;
}

// Digit at 10^place of the 15-digit form (0 outside it).
char DigitAt(const Digits15& d, int place) {
    int index = d.exponent - place;
    if (index < 0 || index >= 15) return '0';
    return d.digits[index];
}

// The "0.00" text in Latin-1, sign included.
std::string Fixed2(double value) {
    if (value == 0) return "0.00";
    if (!(std::fabs(value) < kBeyondExact)) Unformattable(value);
    Digits15 d = Decompose(std::fabs(value));
    // Integer part digits, then two decimals, then the rounding digit.
    std::string out;
    int top = std::max(d.exponent, 0);
    for (int place = top; place >= -2; --place) out.push_back(DigitAt(d, place));
    if (DigitAt(d, -3) >= '5') {
        int i = int(out.size()) - 1;
        for (; i >= 0; --i) {
            if (out[i] == '9') {
                out[i] = '0';
            } else {
                ++out[i];
                break;
            }
        }
        if (i < 0) out.insert(out.begin(), '1');
    }
    out.insert(out.end() - 2, '.');
    std::size_t first = 0;
    while (first + 4 < out.size() && out[first] == '0') ++first;
    out.erase(0, first);
    if (value < 0) out.insert(out.begin(), '-');
    return out;
}

}  // namespace

RuntimeError NamingTheValue(const RuntimeError& error, const QString& holder) {
    if (error.number() != RuntimeError::Overflow().number()) return error;
    const QString head = RuntimeError::Overflow().description() + QStringLiteral(": ");
    QString detail = error.description();
    if (detail.startsWith(head)) detail.remove(0, head.size());
    return RuntimeError(ErrorCode::Overflow, holder + QStringLiteral(": ") + detail);
}

QString Format0_00(double value) {
    const std::string text = Fixed2(value);
    return QString::fromLatin1(text.data(), int(text.size()));
}

// Read back without the locale and without a QString: statements round every
// amount they read.
double Round2(double value) {
    const std::string text = Fixed2(value);
    double result = 0;
    std::from_chars(text.data(), text.data() + text.size(), result);
    return result;
}

QString Format00(long long value) {
    QString digits =
        QString::number(value < 0 ? -value : value).rightJustified(2, QLatin1Char('0'));
    return value < 0 ? QLatin1Char('-') + digits : digits;
}

double Val(const QString& text) {
    std::string s;
    s.reserve(text.size());
    bool digitsSeen = false, dotSeen = false, expSeen = false;
    int i = 0;
    const int n = text.size();
    auto skipBlanks = [&] {
        while (i < n &&
               (text[i] == u' ' || text[i] == u'\t' || text[i] == u'\n' || text[i] == u'\r'))
            ++i;
    };
    skipBlanks();
    if (i < n && (text[i] == u'+' || text[i] == u'-')) s.push_back(char(text[i++].unicode()));
    for (; i < n; ++i) {
        QChar c = text[i];
        if (c == u' ' || c == u'\t' || c == u'\n' || c == u'\r') continue;
        if (c >= u'0' && c <= u'9') {
            s.push_back(char(c.unicode()));
            digitsSeen = true;
        } else if (c == u'.' && !dotSeen && !expSeen) {
            s.push_back('.');
            dotSeen = true;
        } else if ((c == u'e' || c == u'E' || c == u'd' || c == u'D') && digitsSeen && !expSeen) {
            // An exponent counts only when digits follow it.
            int j = i + 1;
            std::string e = "e";
            if (j < n && (text[j] == u'+' || text[j] == u'-'))
                e.push_back(char(text[j++].unicode()));
            if (j < n && text[j] >= u'0' && text[j] <= u'9') {
                s += e;
                expSeen = true;
                i = j - 1;
            } else {
                break;
            }
        } else {
            break;
        }
    }
    if (!digitsSeen) return 0;
    return std::strtod(s.c_str(), nullptr);
}

QString DoubleText(double value) {
    if (value == 0) return QStringLiteral("0");
    Digits15 d = Decompose(std::fabs(value));
    int last = 14;
    while (last > 0 && d.digits[last] == '0') --last;
    std::string out;
    if (value < 0) out.push_back('-');
    if (d.exponent >= 0) {
        for (int place = d.exponent; place >= 0; --place) out.push_back(DigitAt(d, place));
        if (last > d.exponent) {
            out.push_back('.');
            for (int k = d.exponent + 1; k <= last; ++k) out.push_back(d.digits[k]);
        }
    } else {
        out += "0.";
        out.append(std::size_t(-d.exponent - 1), '0');
        out.append(d.digits, 0, std::size_t(last + 1));
    }
    return QString::fromLatin1(out.data(), int(out.size()));
}

long RoundHalfEven(double value) {
    double r = std::nearbyint(value);
    if (!(r >= -2147483648.0 && r <= 2147483647.0)) throw RuntimeError::Overflow();
    return long(r);
}

namespace {

bool IsDigit(QChar c) { return c >= u'0' && c <= u'9'; }

// "yyyy-mm-dd..." text as stored by the embedded engine.
bool IsIsoDateText(const QString& s) {
    return s.size() >= 10 && IsDigit(s[0]) && IsDigit(s[1]) && IsDigit(s[2]) && IsDigit(s[3]) &&
           s[4] == u'-' && IsDigit(s[5]) && IsDigit(s[6]) && s[7] == u'-' && IsDigit(s[8]) &&
           IsDigit(s[9]);
}

}  // namespace

QDate ToDate(const QVariant& value) {
    if (value.isNull()) throw RuntimeError::InvalidUseOfNull();
    switch (value.typeId()) {
        case QMetaType::QDate:
            return value.toDate();
        case QMetaType::QDateTime:
            return value.toDateTime().date();
        default:
            break;
    }
    const QString s = value.toString().trimmed();
    if (IsIsoDateText(s)) {
        QDate d(s.mid(0, 4).toInt(), s.mid(5, 2).toInt(), s.mid(8, 2).toInt());
        if (d.isValid()) return d;
    }
    QDateTime dt = QDateTime::fromString(s, Qt::ISODate);
    if (dt.isValid()) return dt.date();
    throw RuntimeError::TypeMismatch();
}

QString FormatYmdDash(const QDate& date) { return date.toString(QStringLiteral("yyyy-MM-dd")); }
QString FormatYmd(const QDate& date) { return date.toString(QStringLiteral("yyyyMMdd")); }
QString FormatYm(const QDate& date) { return date.toString(QStringLiteral("yyyyMM")); }

QString DateTextDash(const QVariant& value) {
    if (value.typeId() == QMetaType::QString) {
        const QString s = value.toString();
        if (IsIsoDateText(s)) return s.left(10);
    }
    return FormatYmdDash(ToDate(value));
}

QString DateText8(const QVariant& value) {
    if (value.typeId() == QMetaType::QString) {
        const QString s = value.toString();
        if (IsIsoDateText(s)) return s.mid(0, 4) + s.mid(5, 2) + s.mid(8, 2);
    }
    return FormatYmd(ToDate(value));
}

QString DateText6(const QVariant& value) {
    if (value.typeId() == QMetaType::QString) {
        const QString s = value.toString();
        if (IsIsoDateText(s)) return s.mid(0, 4) + s.mid(5, 2);
    }
    return FormatYm(ToDate(value));
}

QString RemoveCrLf(QString text) { return text.remove(QStringLiteral("\r\n")); }

bool IsParkingCategory(const QString& category) {
    return category.contains(QStringLiteral("停车"));
}

QString TextOf(const QVariant& value) {
    if (value.isNull()) throw RuntimeError::InvalidUseOfNull();
    return value.toString();
}

QString TextOrEmpty(const QVariant& value) { return value.isNull() ? QString() : value.toString(); }

double NumberOf(const QVariant& value) {
    if (value.isNull()) throw RuntimeError::InvalidUseOfNull();
    switch (value.typeId()) {
        case QMetaType::Double:
        case QMetaType::Float:
        case QMetaType::Int:
        case QMetaType::UInt:
        case QMetaType::LongLong:
        case QMetaType::ULongLong:
        case QMetaType::Long:
        case QMetaType::ULong:
        case QMetaType::Short:
        case QMetaType::UShort:
            return value.toDouble();
        default: {
            bool ok = false;
            double d = value.toString().trimmed().toDouble(&ok);
            if (!ok) throw RuntimeError::TypeMismatch();
            return d;
        }
    }
}

}  // namespace ValueRules

}  // namespace yunqi
