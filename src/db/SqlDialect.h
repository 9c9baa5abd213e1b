#pragma once

#include <QString>

namespace yunqi {

// The statements are written for SQL Server. When the engine is SQLite the
// few forms it lacks are rewritten here, and nowhere else.
enum class SqlDialect { SqlServer, SQLite };

// Rewrites one SQL Server text for SQLite. String literals are never touched;
// keywords are matched without regard to case or spacing.
//
//  - Convert(Char(8),X,112) becomes strftime('%Y%m%d',X), Char(6) '%Y%m'.
//  - len( becomes length(.
//  - An unqualified name in an ON clause that only one of the tables joined so
//    far holds, but that a table joined later holds as well, is qualified with
//    that table (SQL Server binds it as the joins go, SQLite calls it ambiguous).
//    Table columns are those of the embedded schema; a derived table's are the
//    names of its select list.
//  - A bare ORDER BY name that the select list has as Q.name becomes Q.name, as
//    SQL Server binds it to that list column.
//  - An empty "In ()" list, which SQL Server rejects and SQLite accepts, raises
//    the server's error: RuntimeError 102 "Incorrect syntax near ')'.".
QString AdaptToSQLite(const QString& sql);

}  // namespace yunqi
