#pragma once

#include <QString>
#include <QStringList>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

#include "db/Recordset.h"
#include "db/SqlDialect.h"

namespace yunqi {

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
    // An ODBC connection, login time-out 30 s; dialect by driver. A SQL Server
    // connection is taken to allow one open statement at a time, and its rows
    // are fetched below Qt's driver (OdbcRows). Throws RuntimeError with the
    // driver's native number and description.
    static std::unique_ptr<DatabaseSession> OpenOdbc(const QString& odbcConnectionString,
                                                     SqlDialect dialect);

    // The code page of a SQL Server's narrow text, decoded by the program
    // ("GB18030", "windows-1252", "UTF-8"); empty (at first) leaves it to the
    // driver, fetched as wide characters.
    void SetNarrowTextCodec(const QByteArray& codec) { narrowCodec_ = codec; }

    // Runs one statement. Errors raise RuntimeError (native number, driver text).
    // Recordsets still open stay readable: on a connection that allows one open
    // statement, what is left of them is read into memory first.
    Recordset Open(const QString& sql);

    // Driver default until a report sets it; 0 means no limit, and it stays.
    // ODBC's default is already no limit and the embedded engine has none, so
    // only a positive value reaches the driver, as each ODBC statement's
    // query time-out.
    void SetCommandTimeout(int seconds) { commandTimeout_ = seconds; }
    std::optional<int> CommandTimeout() const { return commandTimeout_; }

    // For a connection that can't have two statements open at once (SQL Server
    // without multiple active result sets).
    void SetOneStatementAtATime(bool one) { oneStatement_ = one; }
    bool OneStatementAtATime() const { return oneStatement_; }

    // How long a statement waits for a lock that another program holds on a
    // SQLite ledger before it fails with "database is locked": one time-out,
    // set on the connection, for every statement of the run.
    static constexpr int kBusyTimeoutMs = 5000;

    // Receives every SQL text as assembled, before any dialect rewrite; texts
    // sent before the log was set while KeepUnloggedTexts was on (the checks
    // of the start-up) first.
    void SetSqlLog(std::function<void(const QString&)> log);
    void KeepUnloggedTexts(bool keep) { keepUnlogged_ = keep; }

    // Open on a thread other than the one that opened the session runs on a
    // connection of that thread's own with the session's settings (driver,
    // database, login and busy time-outs, command time-out, code page, log).
    // It is opened when a ThreadConnection is made on that thread, which
    // costs a login on a server, and closed when it goes. Throws RuntimeError
    // as the session's own opening does.
    class ThreadConnection {
      public:
        explicit ThreadConnection(DatabaseSession& session);
        ~ThreadConnection();
        ThreadConnection(const ThreadConnection&) = delete;
        ThreadConnection& operator=(const ThreadConnection&) = delete;

      private:
        DatabaseSession& session_;
    };
    // Stops the statements running on the threads' own connections: an ODBC
    // statement is cancelled at the driver, the embedded engine interrupted.
    // From any thread. A statement that starts later runs: the work looks at
    // its StopRequest before each Open.
    void Interrupt();

  private:
    DatabaseSession(QString connectionName, SqlDialect dialect, bool odbc);

    QString connectionName_;
    SqlDialect dialect_;
    bool odbc_;
    bool oneStatement_ = false;
    QByteArray narrowCodec_;
    bool keepUnlogged_ = false;
    QStringList sent_;
    std::optional<int> commandTimeout_;
    std::function<void(const QString&)> log_;
    std::vector<std::weak_ptr<Recordset::Cursor>> open_;

    // The connections of other threads, by thread.
    struct ThreadLink {
        QString connectionName;
        void* engine = nullptr;     // the embedded engine's handle
        void* executing = nullptr;  // the ODBC statement being executed
        std::vector<std::weak_ptr<Recordset::Cursor>> open;
    };
    const void* ownerThread_;
    std::mutex threadsMutex_;
    std::map<const void*, ThreadLink> threads_;
    ThreadLink* LinkOfThisThread();
    // Runs execute with statement where Interrupt can cancel it; false, and
    // nothing run, when the work was asked to stop before.
    bool RunCancellable(ThreadLink& link, void* statement, const std::function<void()>& execute);
    Recordset ExecuteBelowTheDriver(ThreadLink& link, const QString& text);
};

}  // namespace yunqi
