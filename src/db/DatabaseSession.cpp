#include "db/DatabaseSession.h"

#include <QFileInfo>
#include <QLibrary>
#include <QSqlDatabase>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlResult>
#include <QThread>
#include <atomic>

#include "core/RuntimeError.h"
#include "core/StopRequest.h"
#include "db/OdbcApi.h"

namespace yunqi {

namespace {

QString NewConnectionName() {
    static std::atomic<int> counter{0};
    return QStringLiteral("yunqi-session-%1").arg(++counter);
}

RuntimeError ErrorOf(const QSqlError& error) { return DatabaseError(error); }

// Where the driver refuses, the statement runs without a limit.
void SetQueryTimeout(void* statement, int seconds) {
    if (const auto fn = Odbc().SetStmtAttr; fn && statement)
        fn(statement, SQL_ATTR_QUERY_TIMEOUT,
           reinterpret_cast<SQLPOINTER>(static_cast<quintptr>(seconds)), SQL_IS_UINTEGER);
}

// The embedded engine's handle of a connection, or null.
void* EngineHandle(const QSqlDatabase& db) {
    const QVariant handle = db.driver()->handle();
    if (!handle.isValid() || qstrcmp(handle.typeName(), "sqlite3*") != 0) return nullptr;
    return *static_cast<void* const*>(handle.constData());
}

// The engine's interrupt, from the library Qt's driver runs on, or where the
// driver carries the engine inside (Windows) from the program's copy of that
// same library; null where neither is there (then the work stops at its
// next row).
using EngineInterruptFn = void (*)(void*);
#ifdef YUNQI_SQLITE_LINKED
extern "C" void sqlite3_interrupt(struct sqlite3*);
EngineInterruptFn EngineInterrupt() {
    return reinterpret_cast<EngineInterruptFn>(&sqlite3_interrupt);
}
#else
EngineInterruptFn EngineInterrupt() {
    static const EngineInterruptFn fn = [] {
        QLibrary engine(QStringLiteral("sqlite3"), 0);
        return reinterpret_cast<EngineInterruptFn>(engine.resolve("sqlite3_interrupt"));
    }();
    return fn;
}
#endif

}  // namespace

DatabaseSession::DatabaseSession(QString connectionName, SqlDialect dialect, bool odbc)
    : connectionName_(std::move(connectionName)),
      dialect_(dialect),
      odbc_(odbc),
      ownerThread_(QThread::currentThread()) {}

DatabaseSession::~DatabaseSession() {
    {
        QSqlDatabase db = QSqlDatabase::database(connectionName_, false);
        if (db.isValid()) db.close();
    }
    QSqlDatabase::removeDatabase(connectionName_);
}

std::unique_ptr<DatabaseSession> DatabaseSession::OpenEmbedded(const QString& file) {
    if (!QFileInfo(file).isFile()) throw RuntimeError(ErrorCode::CannotOpenDatabaseFile, file);
    const QString name = NewConnectionName();
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        db.setDatabaseName(file);
        // One busy time-out for every statement of the session: a ledger that
        // a writer keeps locked longer fails the statement, "database is locked".
        db.setConnectOptions(
            QStringLiteral("QSQLITE_OPEN_READONLY;QSQLITE_BUSY_TIMEOUT=%1").arg(kBusyTimeoutMs));
        if (!db.open()) {
            RuntimeError e = ErrorOf(db.lastError());
            db = QSqlDatabase();
            QSqlDatabase::removeDatabase(name);
            throw e;
        }
    }
    return std::unique_ptr<DatabaseSession>(new DatabaseSession(name, SqlDialect::SQLite, false));
}

std::unique_ptr<DatabaseSession> DatabaseSession::OpenOdbc(const QString& odbcConnectionString,
                                                           SqlDialect dialect) {
    const QString name = NewConnectionName();
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QODBC"), name);
        QString text = odbcConnectionString;
        // SQLite's ODBC driver waits for a lock by its own key (in ms).
        if (dialect == SqlDialect::SQLite &&
            !text.contains(QLatin1String("Timeout="), Qt::CaseInsensitive))
            text += QStringLiteral(";Timeout=%1").arg(kBusyTimeoutMs);
        // Qt's ODBC driver puts "DSN=" before a text that names no driver and no
        // server itself.
        if (text.startsWith(QLatin1String("DSN="), Qt::CaseInsensitive) &&
            !text.contains(QLatin1String("DRIVER="), Qt::CaseInsensitive) &&
            !text.contains(QLatin1String("SERVER="), Qt::CaseInsensitive))
            text.remove(0, 4);
        db.setDatabaseName(text);
        // Without a login time-out some drivers wait for ever on a silent server.
        db.setConnectOptions(
            QStringLiteral("SQL_ATTR_LOGIN_TIMEOUT=30;SQL_ATTR_CONNECTION_TIMEOUT=30"));
        if (!db.open()) {
            RuntimeError e = ErrorOf(db.lastError());
            db = QSqlDatabase();
            QSqlDatabase::removeDatabase(name);
            throw e;
        }
    }
    std::unique_ptr<DatabaseSession> session(new DatabaseSession(name, dialect, true));
    session->SetOneStatementAtATime(dialect == SqlDialect::SqlServer);
    return session;
}

void DatabaseSession::SetSqlLog(std::function<void(const QString&)> log) {
    log_ = std::move(log);
    if (log_)
        for (const QString& sql : sent_) log_(sql);
    sent_.clear();
}

Recordset DatabaseSession::Open(const QString& sql) {
    ThrowIfStopRequested();
    if (log_)
        log_(sql);
    else if (keepUnlogged_)
        sent_ << sql;
    const QString text = dialect_ == SqlDialect::SQLite ? AdaptToSQLite(sql) : sql;
    ThreadLink* link = LinkOfThisThread();
    auto& open = link ? link->open : open_;
    if (oneStatement_)
        for (const auto& cursor : open) Recordset::ReadRestToMemory(cursor);
    open.clear();

    // SQL Server's rows are fetched below Qt's driver anyway; executed there
    // too, the statement can be cancelled from another thread.
    if (link && odbc_ && dialect_ == SqlDialect::SqlServer) {
        Recordset rs = ExecuteBelowTheDriver(*link, text);
        if (!rs.AtEnd()) open.push_back(rs.Watch());
        return rs;
    }
    QSqlQuery query(QSqlDatabase::database(link ? link->connectionName : connectionName_, false));
    query.setForwardOnly(true);
    bool ok;
    if (odbc_ && (commandTimeout_.value_or(0) > 0 || link)) {
        // The statement must exist before its time-out can be set, and
        // before another thread can cancel it.
        ok = query.prepare(text);
        if (ok && commandTimeout_.value_or(0) > 0)
            SetQueryTimeout(OdbcHandle(query.result()->handle()), *commandTimeout_);
        if (ok && link) {
            if (!RunCancellable(*link, OdbcHandle(query.result()->handle()),
                                [&] { ok = query.exec(); }))
                throw Stopped{};
        } else if (ok) {
            ok = query.exec();
        }
    } else {
        ok = query.exec(text);
    }
    if (!ok) {
        throw ErrorOf(query.lastError());
    }
    // Qt's driver reads SQL Server's text narrow and drops the driver's
    // warnings on a fetch; those rows are fetched below it.
    Recordset rs(std::move(query), odbc_ && dialect_ == SqlDialect::SqlServer
                                       ? std::optional<QByteArray>(narrowCodec_)
                                       : std::nullopt);
    if (!rs.AtEnd()) open.push_back(rs.Watch());
    return rs;
}

DatabaseSession::ThreadLink* DatabaseSession::LinkOfThisThread() {
    const void* thread = QThread::currentThread();
    if (thread == ownerThread_) return nullptr;
    std::lock_guard lock(threadsMutex_);
    const auto found = threads_.find(thread);
    // Without a connection of its own a thread would share the session's,
    // which its driver does not allow.
    if (found == threads_.end()) throw RuntimeError::InvalidProcedureCall();
    return &found->second;
}

bool DatabaseSession::RunCancellable(ThreadLink& link, void* statement,
                                     const std::function<void()>& execute) {
    {
        std::lock_guard lock(threadsMutex_);
        link.executing = statement;
    }
    // A stop asked for before the handle was there has found nothing to cancel.
    const bool run = !StopRequestedHere();
    if (run) execute();
    std::lock_guard lock(threadsMutex_);
    link.executing = nullptr;
    return run;
}

Recordset DatabaseSession::ExecuteBelowTheDriver(ThreadLink& link, const QString& text) {
    const OdbcApi& api = Odbc();
    void* connection =
        OdbcHandle(QSqlDatabase::database(link.connectionName, false).driver()->handle());
    SQLHANDLE statement = nullptr;
    if (!api.AllocHandle || !api.ExecDirectW || !api.FreeHandle || !connection ||
        !SQL_SUCCEEDED(api.AllocHandle(SQL_HANDLE_STMT, connection, &statement)))
        throw RuntimeError(long(ErrorCode::ProviderError),
                           QStringLiteral("No ODBC statement to run the query on."));
    if (commandTimeout_.value_or(0) > 0) SetQueryTimeout(statement, *commandTimeout_);
    SQLRETURN done = SQL_ERROR;
    std::u16string wide = text.toStdU16String();
    RunCancellable(link, statement, [&] {
        done = api.ExecDirectW(statement, reinterpret_cast<SQLWCHAR*>(wide.data()),
                               SQLINTEGER(wide.size()));
    });
    if (StopRequestedHere() || !SQL_SUCCEEDED(done)) {
        const RuntimeError error = DiagnosticsError(SQL_HANDLE_STMT, statement);
        const bool stopped = StopRequestedHere() && done == SQL_ERROR;
        api.FreeHandle(SQL_HANDLE_STMT, statement);
        if (stopped) throw Stopped{};
        if (!SQL_SUCCEEDED(done)) throw error;
    }
    return Recordset(Recordset::OdbcStatement{statement}, narrowCodec_);
}

void DatabaseSession::Interrupt() {
    std::lock_guard lock(threadsMutex_);
    for (auto& [thread, link] : threads_) {
        if (link.executing && Odbc().Cancel) Odbc().Cancel(link.executing);
        if (link.engine && EngineInterrupt()) EngineInterrupt()(link.engine);
    }
}

DatabaseSession::ThreadConnection::ThreadConnection(DatabaseSession& session) : session_(session) {
    const QString name = NewConnectionName();
    void* engine = nullptr;
    {
        QSqlDatabase db = QSqlDatabase::cloneDatabase(session.connectionName_, name);
        if (!db.open()) {
            RuntimeError e = ErrorOf(db.lastError());
            db = QSqlDatabase();
            QSqlDatabase::removeDatabase(name);
            throw e;
        }
        engine = EngineHandle(db);
    }
    std::lock_guard lock(session.threadsMutex_);
    session.threads_[QThread::currentThread()] = ThreadLink{name, engine, nullptr, {}};
}

DatabaseSession::ThreadConnection::~ThreadConnection() {
    QString name;
    {
        std::lock_guard lock(session_.threadsMutex_);
        const auto found = session_.threads_.find(QThread::currentThread());
        if (found == session_.threads_.end()) return;
        name = found->second.connectionName;
        session_.threads_.erase(found);
    }
    {
        QSqlDatabase db = QSqlDatabase::database(name, false);
        if (db.isValid()) db.close();
    }
    QSqlDatabase::removeDatabase(name);
}

}  // namespace yunqi
