#include "cli/StatementSession.h"

#include <QFileInfo>

#include "frame/RuntimeError.h"
#include "shell/OpenDatabase.h"
#include "shell/SessionState.h"

std::unique_ptr<DatabaseSession> OpenStatementSession(const QString& database) {
    if (database.isEmpty()) {
        // The desktop program's settings; OpenDatabase has shown why it failed.
        if (!OpenDatabase(ReadDbSettings()))
            throw RuntimeError(3704, QStringLiteral("数据库连接失败!"));
        return std::move(AppSession().SessionConnection);
    }
    if (!QFileInfo(database).isFile())
        throw RuntimeError(53, QStringLiteral("File not found: ") + database);
    return DatabaseSession::OpenEmbedded(database);
}
