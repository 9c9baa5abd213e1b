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
            throw RuntimeError(3704, QStringLiteral("数据库连接失败!"));
        return std::move(AppSession().SessionConnection);
    }
    if (!QFileInfo(database).isFile())
        throw RuntimeError(53, QStringLiteral("File not found: ") + database);
    return DatabaseSession::OpenEmbedded(database);
}

}  // namespace yunqi
