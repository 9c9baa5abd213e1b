#include "db/DatabaseSession.h"

#include <QFileInfo>
#include <QSqlDatabase>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlResult>
#include <atomic>

#include "core/RuntimeError.h"
#include "db/OdbcApi.h"

namespace yunqi {

namespace {

QString NewConnectionName() {
    static std::atomic<int> counter{0};
    return QStringLiteral("yunqi-session-%1").arg(++counter);
}

RuntimeError ErrorOf(const QSqlError& error) { return DatabaseError(error); }

// Where the driver refuses, the statement runs without a limit.
void SetQueryTimeout(const QSqlQuery& query, int seconds) {
    const QVariant handle = query.result()->handle();
    const auto fn = Odbc().SetStmtAttr;
    if (!fn || handle.metaType() != QMetaType::fromType<void*>()) return;
    void* statement = *static_cast<void* const*>(handle.constData());
    if (statement)
        fn(statement, SQL_ATTR_QUERY_TIMEOUT,
           reinterpret_cast<SQLPOINTER>(static_cast<quintptr>(seconds)), SQL_IS_UINTEGER);
}

}  // namespace

DatabaseSession::DatabaseSession(QString connectionName, SqlDialect dialect, bool odbc)
    : connectionName_(std::move(connectionName)), dialect_(dialect), odbc_(odbc) {}

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
    if (log_)
        log_(sql);
    else if (keepUnlogged_)
        sent_ << sql;
    const QString text = dialect_ == SqlDialect::SQLite ? AdaptToSQLite(sql) : sql;
    if (oneStatement_)
        for (const auto& cursor : open_) Recordset::ReadRestToMemory(cursor);
    open_.clear();

    QSqlQuery query(QSqlDatabase::database(connectionName_, false));
    query.setForwardOnly(true);
    bool ok;
    if (odbc_ && commandTimeout_.value_or(0) > 0) {
        // The statement must exist before its time-out can be set.
        ok = query.prepare(text);
        if (ok) {
            SetQueryTimeout(query, *commandTimeout_);
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
    if (!rs.AtEnd()) open_.push_back(rs.Watch());
    return rs;
}

}  // namespace yunqi
