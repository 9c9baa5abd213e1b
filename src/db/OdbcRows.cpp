#include "db/OdbcRows.h"

#include <QDateTime>
#include <QStringDecoder>
#include <optional>

#include "core/RuntimeError.h"
#include "db/OdbcApi.h"

namespace yunqi {

namespace {

RuntimeError StatementError(SQLHSTMT statement) {
    return DiagnosticsError(SQL_HANDLE_STMT, statement);
}

// A warning on a fetch that means the value arrived changed: not converted
// (FreeTDS: 42000, native 2401; 22xxx), or, where the whole value was asked
// for, cut (01004). For a value read in parts 01004 only says "more".
QString ChangedValue(SQLHSTMT statement, bool cutIsChange) {
    for (const auto& d : Diagnostics(SQL_HANDLE_STMT, statement))
        if ((cutIsChange && d.state == QLatin1String("01004")) || d.native == 2401 ||
            d.state.startsWith(QLatin1String("22")) || d.state == QLatin1String("42000"))
            return d.text;
    return QString();
}

// Strictly: a byte sequence that is not of the code page gives no text.
std::optional<QString> Decode(const QByteArray& codec, const QByteArray& bytes) {
    QStringDecoder decoder(codec.constData(), QStringConverter::Flag::Stateless);
    if (decoder.isValid()) {
        QString text = decoder.decode(bytes);
        if (decoder.hasError() || text.contains(QChar::ReplacementCharacter)) return std::nullopt;
        return text;
    }
#ifdef Q_OS_WIN
    // A Qt without ICU names only the UTF converters; Windows has the pages.
    const UINT page = codec == "GB18030" ? 936 : codec == "windows-1252" ? 1252 : CP_UTF8;
    if (bytes.isEmpty()) return QString();
    const int units = MultiByteToWideChar(page, MB_ERR_INVALID_CHARS, bytes.constData(),
                                          int(bytes.size()), nullptr, 0);
    if (units <= 0) return std::nullopt;
    QString text(units, Qt::Uninitialized);
    MultiByteToWideChar(page, MB_ERR_INVALID_CHARS, bytes.constData(), int(bytes.size()),
                        reinterpret_cast<wchar_t*>(text.data()), units);
    return text;
#else
    return std::nullopt;
#endif
}

}  // namespace

OdbcRows::OdbcRows(void* statement, const QByteArray& narrowCodec)
    : statement_(statement), narrowCodec_(narrowCodec) {
    const OdbcApi& api = Odbc();
    if (!api.NumResultCols || !api.DescribeColW || !api.Fetch || !api.GetData)
        throw RuntimeError(long(ErrorCode::ProviderError),
                           QStringLiteral("The ODBC driver manager lacks SQLGetData."));
    SQLSMALLINT count = 0;
    if (!SQL_SUCCEEDED(api.NumResultCols(statement_, &count))) throw StatementError(statement_);
    for (SQLUSMALLINT c = 1; c <= count; ++c) {
        SQLWCHAR name[512];
        SQLSMALLINT nameLength = 0, type = 0, digits = 0, nullable = 0;
        SQLULEN size = 0;
        if (!SQL_SUCCEEDED(api.DescribeColW(statement_, c, name, 512, &nameLength, &type, &size,
                                            &digits, &nullable)))
            throw StatementError(statement_);
        QString text = FromSqlWChar(name, qMin<int>(nameLength, 511));
        // Some drivers pad wide column names with NULs.
        if (const qsizetype nul = text.indexOf(QChar(0)); nul >= 0) text.truncate(nul);
        names_ << text;
        switch (type) {
            case SQL_CHAR:
            case SQL_VARCHAR:
            case SQL_LONGVARCHAR:
                kinds_.push_back(narrowCodec_.isEmpty() ? Kind::Wide : Kind::Narrow);
                break;
            case SQL_BINARY:
            case SQL_VARBINARY:
            case SQL_LONGVARBINARY:
                kinds_.push_back(Kind::Bytes);
                break;
            case SQL_BIT:
            case SQL_TINYINT:
            case SQL_SMALLINT:
            case SQL_INTEGER:
            case SQL_BIGINT:
                kinds_.push_back(Kind::Integer);
                break;
            case SQL_REAL:
            case SQL_FLOAT:
            case SQL_DOUBLE:
            case SQL_DECIMAL:
            case SQL_NUMERIC:
                kinds_.push_back(Kind::Double);
                break;
            case SQL_TYPE_DATE:
                kinds_.push_back(Kind::Date);
                break;
            case SQL_TYPE_TIME:
                kinds_.push_back(Kind::Time);
                break;
            case SQL_TYPE_TIMESTAMP:
                kinds_.push_back(Kind::Timestamp);
                break;
            default:
                kinds_.push_back(Kind::Wide);
        }
    }
}

bool OdbcRows::Next() {
    const SQLRETURN r = Odbc().Fetch(statement_);
    if (r == SQL_NO_DATA) return false;
    if (!SQL_SUCCEEDED(r)) throw StatementError(statement_);
    row_.clear();
    row_.reserve(names_.size());
    for (int c = 0; c < names_.size(); ++c) {
        try {
            row_ << Read(c);
        } catch (const RuntimeError& e) {
            // Name the value: its column, and the ticket when the row has read
            // its number already.
            QString where = QStringLiteral("列“%1”").arg(names_[c]);
            const qsizetype ticket = names_.indexOf(QStringLiteral("票据编号"));
            if (ticket >= 0 && ticket < c && row_[ticket].isValid())
                where += QStringLiteral("（票据编号 %1）").arg(row_[ticket].toString());
            throw RuntimeError(e.number(),
                               where + QStringLiteral("的值无法正确读出：") + e.description());
        }
    }
    return true;
}

QByteArray OdbcRows::ReadAll(int column, short cType, bool* isNull) {
    // Wide text ends in a NUL of two bytes, narrow text in one, bytes in none.
    const int terminator = cType == SQL_C_WCHAR ? 2 : cType == SQL_C_CHAR ? 1 : 0;
    QByteArray data;
    char buffer[4096];
    *isNull = false;
    for (;;) {
        SQLLEN length = 0;
        const SQLRETURN r = Odbc().GetData(statement_, SQLUSMALLINT(column + 1), cType, buffer,
                                           sizeof buffer, &length);
        if (r == SQL_NO_DATA) break;
        if (!SQL_SUCCEEDED(r)) throw StatementError(statement_);
        if (length == SQL_NULL_DATA) {
            *isNull = true;
            return data;
        }
        if (r == SQL_SUCCESS_WITH_INFO)
            if (const QString why = ChangedValue(statement_, false); !why.isEmpty())
                throw RuntimeError(long(ErrorCode::ProviderError), why);
        const bool more = r == SQL_SUCCESS_WITH_INFO &&
                          (length == SQL_NO_TOTAL || length > SQLLEN(sizeof buffer) - terminator);
        if (!more) {
            data.append(buffer, length);
            break;
        }
        // A part: the buffer full but for the terminator.
        const qsizetype part = sizeof buffer - terminator;
        data.append(buffer, part - part % qMax(terminator, 1));
    }
    return data;
}

QVariant OdbcRows::Read(int column) {
    const auto get = [&](short cType, auto* value) {
        SQLLEN length = 0;
        const SQLRETURN r = Odbc().GetData(statement_, SQLUSMALLINT(column + 1), cType, value,
                                           sizeof *value, &length);
        if (!SQL_SUCCEEDED(r)) throw StatementError(statement_);
        if (r == SQL_SUCCESS_WITH_INFO)
            if (const QString why = ChangedValue(statement_, true); !why.isEmpty())
                throw RuntimeError(long(ErrorCode::ProviderError), why);
        return length != SQL_NULL_DATA;
    };
    bool isNull = false;
    switch (kinds_[column]) {
        case Kind::Integer: {
            qlonglong v = 0;
            return get(SQL_C_SBIGINT, &v) ? QVariant(v) : QVariant();
        }
        case Kind::Double: {
            double v = 0;
            return get(SQL_C_DOUBLE, &v) ? QVariant(v) : QVariant();
        }
        case Kind::Date: {
            SQL_DATE_STRUCT v{};
            return get(SQL_C_TYPE_DATE, &v) ? QVariant(QDate(v.year, v.month, v.day)) : QVariant();
        }
        case Kind::Time: {
            SQL_TIME_STRUCT v{};
            return get(SQL_C_TYPE_TIME, &v) ? QVariant(QTime(v.hour, v.minute, v.second))
                                            : QVariant();
        }
        case Kind::Timestamp: {
            SQL_TIMESTAMP_STRUCT v{};
            if (!get(SQL_C_TYPE_TIMESTAMP, &v)) return QVariant();
            return QDateTime(QDate(v.year, v.month, v.day),
                             QTime(v.hour, v.minute, v.second, int(v.fraction / 1000000)));
        }
        case Kind::Bytes: {
            const QByteArray data = ReadAll(column, SQL_C_BINARY, &isNull);
            return isNull ? QVariant() : QVariant(data);
        }
        case Kind::Narrow: {
            const QByteArray data = ReadAll(column, SQL_C_BINARY, &isNull);
            if (isNull) return QVariant();
            std::optional<QString> text = Decode(narrowCodec_, data);
            if (!text)
                throw RuntimeError(long(ErrorCode::ProviderError),
                                   QStringLiteral("Bytes that are not %1 text: %2.")
                                       .arg(QString::fromLatin1(narrowCodec_),
                                            QString::fromLatin1(data.toHex(' '))));
            return *text;
        }
        case Kind::Wide: {
            const QByteArray data = ReadAll(column, SQL_C_WCHAR, &isNull);
            if (isNull) return QVariant();
            return FromSqlWChar(reinterpret_cast<const SQLWCHAR*>(data.constData()),
                                data.size() / 2);
        }
    }
    return QVariant();
}

}  // namespace yunqi
