#pragma once

#include <QString>
#include <memory>

#include "shell/DatabaseSession.h"

// The companion's database: the SQLite file named by --database (which must
// exist: a typo must not create an empty ledger), else the DBConfig settings
// as the desktop program reads them. Throws RuntimeError.
std::unique_ptr<DatabaseSession> OpenStatementSession(const QString& database);
