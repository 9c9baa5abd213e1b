#include "cli/StatementSession.h"

#include <QFileInfo>

#include "core/RuntimeError.h"
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
    if (!QFileInfo(database).isFile())
        throw RuntimeError(ErrorCode::FileNotFound, database);
    return DatabaseSession::OpenEmbedded(database);
}

}  // namespace yunqi
