#pragma once

#include <QString>

// The statements are written for SQL Server. When the engine is SQLite the
// few forms it lacks are rewritten here, and nowhere else.
enum class SqlDialect { SqlServer, SQLite };

// Rewrites one SQL Server text for SQLite. A text that SQL Server would reject
// and SQLite would accept (an empty "In ()" list) raises the server's error.
QString AdaptToSQLite(const QString& sql);
