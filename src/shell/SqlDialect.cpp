#include "shell/SqlDialect.h"

QString AdaptToSQLite(const QString& sql) { return sql; }
