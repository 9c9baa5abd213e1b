#include "shell/DatabaseSession.h"

#include <QFileInfo>
#include <QSqlDatabase>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlQuery>
#include <atomic>

#include "frame/RuntimeError.h"

namespace {

QString NewConnectionName() {
    static std::atomic<int> counter{0};
    return QStringLiteral("yunqi-session-%1").arg(++counter);
}

RuntimeError ErrorOf(const QSqlError& error) {
    bool ok = false;
    long number = error.nativeErrorCode().toLong(&ok);
    QString text = error.databaseText().isEmpty() ? error.text() : error.databaseText();
    return RuntimeError(ok ? number : -2147467259L, text);
}

}  // namespace

DatabaseSession::DatabaseSession(QString connectionName, SqlDialect dialect)
    : connectionName_(std::move(connectionName)), dialect_(dialect) {}

DatabaseSession::~DatabaseSession() {
    {
        QSqlDatabase db = QSqlDatabase::database(connectionName_, false);
        if (db.isValid()) db.close();
    }
    QSqlDatabase::removeDatabase(connectionName_);
}

std::unique_ptr<DatabaseSession> DatabaseSession::OpenEmbedded(const QString& file) {
    if (!QFileInfo(file).isFile())
        throw RuntimeError(14, QStringLiteral("unable to open database file: ") + file);
    const QString name = NewConnectionName();
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        db.setDatabaseName(file);
        db.setConnectOptions(QStringLiteral("QSQLITE_OPEN_READONLY"));
        if (!db.open()) {
            RuntimeError e = ErrorOf(db.lastError());
            db = QSqlDatabase();
            QSqlDatabase::removeDatabase(name);
            throw e;
        }
    }
    return std::unique_ptr<DatabaseSession>(new DatabaseSession(name, SqlDialect::SQLite));
}

std::unique_ptr<DatabaseSession> DatabaseSession::OpenOdbc(const QString& odbcConnectionString,
                                                           SqlDialect dialect) {
    const QString name = NewConnectionName();
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QODBC"), name);
        db.setDatabaseName(odbcConnectionString);
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
    return std::unique_ptr<DatabaseSession>(new DatabaseSession(name, dialect));
}

Recordset DatabaseSession::Open(const QString& sql) {
    if (log_) log_(sql);
    const QString text = dialect_ == SqlDialect::SQLite ? AdaptToSQLite(sql) : sql;
    QSqlQuery query(QSqlDatabase::database(connectionName_, false));
    query.setForwardOnly(true);
    if (!query.exec(text)) throw ErrorOf(query.lastError());
    return Recordset(std::move(query));
}
