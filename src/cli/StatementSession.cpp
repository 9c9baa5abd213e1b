#include "cli/StatementSession.h"

#include <QFile>
#include <QFileInfo>

#include "core/RuntimeError.h"
#include "core/os/FileSystem.h"
#include "db/OpenDatabase.h"
#include "db/SessionState.h"

namespace yunqi {

std::unique_ptr<DatabaseSession> OpenStatementSession(const QString& database) {
    if (database.isEmpty()) {
        // The desktop program's settings; OpenDatabase has shown why it failed.
        if (!OpenDatabase(ReadDbSettings())) throw RuntimeError(ErrorCode::ConnectionFailed);
        return std::move(AppSession().SessionConnection);
    }
    os::Error error = 0;
    const os::FileInfo info = os::Stat(database, &error);
    if (error)
        throw RuntimeError(ErrorCode::PathFileAccess,
                           database + QStringLiteral(": ") + os::Reason(error));
    if (!info.exists) throw RuntimeError(ErrorCode::FileNotFound, database);
    // The engine would take any of these for a new, empty database.
    if (info.folder)
        throw RuntimeError(ErrorCode::PathFileAccess,
                           database + QStringLiteral(": is a folder, not a ledger"));
    if (!info.regular)
        throw RuntimeError(
            ErrorCode::PathFileAccess,
            database +
                QStringLiteral(": is not a regular file (a device, FIFO or socket), not a ledger"));
    return DatabaseSession::OpenEmbedded(database);
}

namespace {

QString LedgerCause(const QString& ledger) {
    const QString journal = ledger + QStringLiteral("-journal");
    if (QFileInfo(journal).size() > 0)
        return journal + QStringLiteral(
                             " was left by a writer that was stopped: a program that may write "
                             "the ledger must roll it back first");
    QFile file(ledger);
    const QByteArray header = file.open(QIODevice::ReadOnly) ? file.read(20) : QByteArray();
    const bool wal = header.size() == 20 && header[18] == 2;  // the write-ahead log version
    QString folder, base;
    os::SplitPath(ledger, &folder, &base);
    if (const os::Error e = os::CanCreateIn(folder))
        return (wal ? QStringLiteral("the ledger is in WAL mode, which needs its -wal and -shm "
                                     "files in ")
                    : QStringLiteral("the engine needs files beside the ledger in ")) +
               folder + QStringLiteral(": ") + os::Reason(e);
    return QString();
}

}  // namespace

RuntimeError WithLedgerCause(const RuntimeError& error, const QString& database) {
    const QString& text = error.description();
    if (database.isEmpty() ||
        !(text.contains(QLatin1String("attempt to write a readonly database")) ||
          text.contains(QLatin1String("unable to open database file"))))
        return error;
    const QString cause = LedgerCause(database);
    return cause.isEmpty()
               ? error
               : RuntimeError(error.number(), text + QStringLiteral(" (") + database +
                                                  QStringLiteral(": ") + cause + QLatin1Char(')'));
}

}  // namespace yunqi
