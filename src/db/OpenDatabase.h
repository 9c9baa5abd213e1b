#pragma once

#include <QString>

#include "db/Settings.h"

namespace yunqi {

// The connection text as the office's tools know it: catalogue and server in
// single quotes, password and user as they stand.
QString ConnectionText(const QString& uid, const QString& pwd, const QString& dbName,
                       const QString& server);

// The TDS version to ask for by the server edition: "2000" 7.1, "2005" 7.2,
// "2008" and "2008 R2" 7.3; "2012", later editions and any label not known
// here 7.4. Case and blanks in the label don't count.
QString TdsVersion(const QString& edition);

// The ODBC equivalent of the connection text for a SQL Server driver. Svr may
// be "host" or the name of a freetds.conf section (given to FreeTDS as
// SERVERNAME), "host,port", "host\instance" (FreeTDS asks the server's browser
// service for the port) or "host\instance,port" (FreeTDS takes the port). With
// DSN set, that data source names server, port, TDS version and encryption;
// UID, PWD and DBname are added when set. The application's name goes as APP,
// and FreeTDS is asked for UTF-8 either way. FreeTDS is known by the library
// the driver manager loads for Driver, whatever its registered name. Any other
// driver (Windows' "SQL Server", ODBC Driver 17 and 18) gets Svr as one SERVER
// value, "host,port" included, and none of FreeTDS's own keywords. Every value
// is quoted as ODBC says where it needs it, Driver always.
QString OdbcConnectionString(const DbSettings& settings);

// Why a value of the settings can't reach FreeTDS through a connection
// string, or empty text (always, for other drivers). FreeTDS 1.3 ends a value
// in braces at the first "};" and keeps a doubled "}}" as it stands, where the
// ODBC rule reads one "}": no form of a value that needs braces and holds "}"
// reaches both readings.
QString UncarriedValue(const DbSettings& settings);

// Opens the one connection of the process into AppSession(), keeping the
// connection text in SessionConnectionText. On SQL Server it then checks that
// Chinese text arrives intact (CheckChineseText). A failure shows "错误信息："
// and the driver's description, and gives false.
bool OpenDatabase(const DbSettings& settings);

}  // namespace yunqi
