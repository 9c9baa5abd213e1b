#pragma once

#include <QString>
#include <memory>

#include "db/DatabaseSession.h"

namespace yunqi {

// The companion's database: the SQLite file named by --database (which must
// exist: a typo must not create an empty ledger), else the DBConfig settings
// as the desktop program reads them. Throws RuntimeError.
std::unique_ptr<DatabaseSession> OpenStatementSession(const QString& database);

}  // namespace yunqi
