#pragma once

#include <QString>

#include "db/Settings.h"

namespace yunqi {

// The connection text as the office's tools know it: catalogue and server in
// single quotes, password and user as they stand.
QString ConnectionText(const QString& uid, const QString& pwd, const QString& dbName,
                       const QString& server);

// The ODBC equivalent of the connection text for a SQL Server driver. Svr may
// be "host", "host,port" or "host\instance".
QString OdbcConnectionString(const DbSettings& settings);

// Opens the one connection of the process into AppSession(), keeping the
// connection text in SessionConnectionText. A failure shows "错误信息：" and
// the driver's description, and gives false.
bool OpenDatabase(const DbSettings& settings);

}  // namespace yunqi
