#pragma once

#include <QString>
#include <memory>

#include "db/DatabaseSession.h"

namespace yunqi {

// The companion's database: the SQLite file named by --database (which must
// exist: a typo must not create an empty ledger), else the DBConfig settings
// as the desktop program reads them. Throws RuntimeError.
std::unique_ptr<DatabaseSession> OpenStatementSession(const QString& database);

// The engine's "attempt to write a readonly database" or "unable to open
// database file" on a ledger it only reads, with what is wrong: a journal
// left by a stopped writer, or a folder that takes no new file (a WAL
// ledger's -wal and -shm files, a read-only mount). Other errors as they are.
RuntimeError WithLedgerCause(const RuntimeError& error, const QString& database);

}  // namespace yunqi
