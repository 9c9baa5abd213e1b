#include "db/OdbcApi.h"

#include <QFileInfo>
#include <QLibrary>
#include <QStringList>

namespace yunqi {

const OdbcApi& Odbc() {
    static const OdbcApi api = [] {
#ifdef Q_OS_WIN
        QLibrary manager(QStringLiteral("odbc32"));
#else
        QLibrary manager(QStringLiteral("odbc"), 2);
#endif
        OdbcApi a;
        const auto take = [&manager](auto& fn, const char* name) {
            fn = reinterpret_cast<std::remove_reference_t<decltype(fn)>>(manager.resolve(name));
        };
        take(a.AllocHandle, "SQLAllocHandle");
        take(a.FreeHandle, "SQLFreeHandle");
        take(a.SetEnvAttr, "SQLSetEnvAttr");
        take(a.DriversW, "SQLDriversW");
        take(a.SetStmtAttr, "SQLSetStmtAttr");
        take(a.Cancel, "SQLCancel");
        take(a.ExecDirectW, "SQLExecDirectW");
        take(a.NumResultCols, "SQLNumResultCols");
        take(a.DescribeColW, "SQLDescribeColW");
        take(a.Fetch, "SQLFetch");
        take(a.GetData, "SQLGetData");
        take(a.GetDiagRecW, "SQLGetDiagRecW");
        return a;
    }();
    return api;
}

std::vector<OdbcDiagnostic> Diagnostics(SQLSMALLINT handleType, SQLHANDLE handle) {
    std::vector<OdbcDiagnostic> all;
    if (!Odbc().GetDiagRecW) return all;
    for (SQLSMALLINT record = 1;; ++record) {
        SQLWCHAR state[6] = {};
        SQLINTEGER native = 0;
        SQLWCHAR text[1024];
        SQLSMALLINT length = 0;
        const SQLRETURN r = Odbc().GetDiagRecW(handleType, handle, record, state, &native, text,
                                               SQLSMALLINT(std::size(text)), &length);
        if (!SQL_SUCCEEDED(r)) return all;
        all.push_back({FromSqlWChar(state, 5), long(native),
                       FromSqlWChar(text, qMin<qsizetype>(length, std::size(text) - 1))});
    }
}

RuntimeError DiagnosticsError(SQLSMALLINT handleType, SQLHANDLE handle) {
    const auto all = Diagnostics(handleType, handle);
    if (all.empty()) return RuntimeError(long(ErrorCode::ProviderError), QStringLiteral("ODBC"));
    QStringList texts;
    for (const auto& d : all) texts << d.text;
    return RuntimeError(all.front().native ? all.front().native : long(ErrorCode::ProviderError),
                        texts.join(QLatin1Char(' ')));
}

QString OdbcDriverLibrary(const QString& driver) {
    if (driver.contains(QLatin1Char('/')) || driver.contains(QLatin1Char('\\')))
        return QFileInfo(driver).fileName();
    const OdbcApi& api = Odbc();
    if (!api.AllocHandle || !api.SetEnvAttr || !api.DriversW || !api.FreeHandle) return QString();
    SQLHENV env = nullptr;
    if (!SQL_SUCCEEDED(api.AllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &env))) return QString();
    api.SetEnvAttr(env, SQL_ATTR_ODBC_VERSION, reinterpret_cast<SQLPOINTER>(SQL_OV_ODBC3), 0);
    QString library;
    SQLWCHAR name[256], attributes[4096];
    SQLSMALLINT nameLength = 0, attributesLength = 0;
    for (SQLUSMALLINT direction = SQL_FETCH_FIRST; SQL_SUCCEEDED(api.DriversW(
             env, direction, name, 256, &nameLength, attributes, 4096, &attributesLength));
         direction = SQL_FETCH_NEXT) {
        if (FromSqlWChar(name, qMin<int>(nameLength, 255)).compare(driver, Qt::CaseInsensitive))
            continue;
        // Attributes are "key=value" texts, each ended by a NUL.
        const QString all = FromSqlWChar(attributes, qMin<int>(attributesLength, 4095));
        for (const QString& pair : all.split(QChar(0), Qt::SkipEmptyParts))
            if (pair.startsWith(QLatin1String("Driver="), Qt::CaseInsensitive))
                library = QFileInfo(pair.mid(7).trimmed()).fileName();
        break;
    }
    api.FreeHandle(SQL_HANDLE_ENV, env);
    return library;
}

}  // namespace yunqi
