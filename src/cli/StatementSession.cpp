#include "cli/StatementSession.h"


#include "core/RuntimeError.h"
#include "core/os/FileSystem.h"
#include "db/OpenDatabase.h"
#include "db/SessionState.h"

namespace yunqi {

std::unique_ptr<DatabaseSession> OpenStatementSession(const QString& database) {
    if (database.isEmpty()) {
        // The desktop program's settings; OpenDatabase has shown why it failed.
        if (!OpenDatabase(ReadDbSettings()))
            throw RuntimeError(ErrorCode::ConnectionFailed);
        return std::move(AppSession().SessionConnection);
    }
    os::Error error = 0;
    const os::FileInfo info = os::Stat(database, &error);
    if (error) throw RuntimeError(ErrorCode::PathFileAccess, database + QStringLiteral(": ") + os::Reason(error));
    if (!info.exists) throw RuntimeError(ErrorCode::FileNotFound, database);
    // The engine would take any of these for a new, empty database.
    if (info.folder)
        throw RuntimeError(ErrorCode::PathFileAccess, database + QStringLiteral(": is a folder, not a ledger"));
    if (!info.regular)
        throw RuntimeError(ErrorCode::PathFileAccess,
                           database + QStringLiteral(": is not a regular file (a device, FIFO or socket), not a ledger"));
    return DatabaseSession::OpenEmbedded(database);
}

}  // namespace yunqi
