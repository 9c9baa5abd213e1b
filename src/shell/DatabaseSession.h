#pragma once

#include <QString>
#include <functional>
#include <optional>

#include "shell/Recordset.h"
#include "shell/SqlDialect.h"

// The one database connection of the process. Every query goes through Open:
// the text is logged, adapted to the engine's dialect and run forward-only.
class DatabaseSession {
  public:
    ~DatabaseSession();
    DatabaseSession(const DatabaseSession&) = delete;
    DatabaseSession& operator=(const DatabaseSession&) = delete;

    // The embedded engine on a database file. Throws RuntimeError when the
    // file can't be opened.
    static std::unique_ptr<DatabaseSession> OpenEmbedded(const QString& file);
    // An ODBC connection; dialect by driver. Throws RuntimeError with the
    // driver's native number and description.
    static std::unique_ptr<DatabaseSession> OpenOdbc(const QString& odbcConnectionString,
                                                     SqlDialect dialect);

    // Runs one statement. Errors raise RuntimeError (native number, driver text).
    Recordset Open(const QString& sql);

    // Driver default until a report sets it; 0 means no limit, and it stays.
    void SetCommandTimeout(int seconds) { commandTimeout_ = seconds; }
    std::optional<int> CommandTimeout() const { return commandTimeout_; }

    SqlDialect Dialect() const { return dialect_; }
    // Receives every SQL text as assembled, before any dialect rewrite.
    void SetSqlLog(std::function<void(const QString&)> log) { log_ = std::move(log); }

  private:
    DatabaseSession(QString connectionName, SqlDialect dialect);

    QString connectionName_;
    SqlDialect dialect_;
    std::optional<int> commandTimeout_;
    std::function<void(const QString&)> log_;
};
