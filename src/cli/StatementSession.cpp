#include "cli/StatementSession.h"

#include <QFileInfo>

#include "frame/RuntimeError.h"

std::unique_ptr<DatabaseSession> OpenStatementSession(const QString& database) {
    if (database.isEmpty())
        throw RuntimeError(1, QStringLiteral("the settings are not read yet; use --database"));
    if (!QFileInfo(database).isFile())
        throw RuntimeError(53, QStringLiteral("File not found: ") + database);
    return DatabaseSession::OpenEmbedded(database);
}
