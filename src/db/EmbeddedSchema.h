#pragma once

#include <QStringList>

namespace yunqi {

// The tables of the embedded database: the ledger tables the statements read,
// in SQLite types (dates as "YYYY-MM-DD HH:MM:SS" text, money REAL), plus our
// own indexes.
namespace EmbeddedSchema {

QStringList TableStatements();
QStringList IndexStatements();
// Tables then indexes.
QStringList AllStatements();

}  // namespace EmbeddedSchema

}  // namespace yunqi
