#pragma once

#include <QString>
#include <QVariant>
#include <vector>

#include "core/RuntimeError.h"

#ifdef _WIN32
#include <windows.h>
#endif
#include <sql.h>
#include <sqlext.h>

namespace yunqi {

// The driver manager's calls that Qt's ODBC driver does not pass on, taken
// from the library that driver was loaded with. A call the library lacks is
// null.
struct OdbcApi {
    SQLRETURN(SQL_API* AllocHandle)(SQLSMALLINT, SQLHANDLE, SQLHANDLE*) = nullptr;
    SQLRETURN(SQL_API* FreeHandle)(SQLSMALLINT, SQLHANDLE) = nullptr;
    SQLRETURN(SQL_API* SetEnvAttr)(SQLHENV, SQLINTEGER, SQLPOINTER, SQLINTEGER) = nullptr;
    SQLRETURN(SQL_API* DriversW)
    (SQLHENV, SQLUSMALLINT, SQLWCHAR*, SQLSMALLINT, SQLSMALLINT*, SQLWCHAR*, SQLSMALLINT,
     SQLSMALLINT*) = nullptr;
    SQLRETURN(SQL_API* SetStmtAttr)(SQLHSTMT, SQLINTEGER, SQLPOINTER, SQLINTEGER) = nullptr;
    SQLRETURN(SQL_API* Cancel)(SQLHSTMT) = nullptr;
    SQLRETURN(SQL_API* ExecDirectW)(SQLHSTMT, SQLWCHAR*, SQLINTEGER) = nullptr;
    SQLRETURN(SQL_API* NumResultCols)(SQLHSTMT, SQLSMALLINT*) = nullptr;
    SQLRETURN(SQL_API* DescribeColW)
    (SQLHSTMT, SQLUSMALLINT, SQLWCHAR*, SQLSMALLINT, SQLSMALLINT*, SQLSMALLINT*, SQLULEN*,
     SQLSMALLINT*, SQLSMALLINT*) = nullptr;
    SQLRETURN(SQL_API* Fetch)(SQLHSTMT) = nullptr;
    SQLRETURN(SQL_API* GetData)
    (SQLHSTMT, SQLUSMALLINT, SQLSMALLINT, SQLPOINTER, SQLLEN, SQLLEN*) = nullptr;
    SQLRETURN(SQL_API* GetDiagRecW)
    (SQLSMALLINT, SQLHANDLE, SQLSMALLINT, SQLWCHAR*, SQLINTEGER*, SQLWCHAR*, SQLSMALLINT,
     SQLSMALLINT*) = nullptr;
};

const OdbcApi& Odbc();

// An ODBC handle as Qt's driver hands it out (a statement's, a connection's),
// or null.
inline void* OdbcHandle(const QVariant& handle) {
    return handle.metaType() == QMetaType::fromType<void*>()
               ? *static_cast<void* const*>(handle.constData())
               : nullptr;
}

// A wide ODBC text as a QString (SQLWCHAR is two bytes on every platform we
// build for).
inline QString FromSqlWChar(const SQLWCHAR* text, qsizetype units) {
    static_assert(sizeof(SQLWCHAR) == sizeof(char16_t));
    return QString::fromUtf16(reinterpret_cast<const char16_t*>(text), units);
}

// The diagnostics of a handle: state, native number and text of each record.
struct OdbcDiagnostic {
    QString state;
    long native = 0;
    QString text;
};
std::vector<OdbcDiagnostic> Diagnostics(SQLSMALLINT handleType, SQLHANDLE handle);
// The diagnostics as one run-time error: the first native number, the texts.
RuntimeError DiagnosticsError(SQLSMALLINT handleType, SQLHANDLE handle);

// The library file the driver manager loads for a registered driver name, or
// the name itself when it is a path; empty when neither is known.
QString OdbcDriverLibrary(const QString& driver);

}  // namespace yunqi
