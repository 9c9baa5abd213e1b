#pragma once

#include <QStringList>

// yunqi-statement make-demo-db FILE [--tickets N] [--seed S]; returns the
// exit status.
int RunMakeDemoDb(const QStringList& args);
