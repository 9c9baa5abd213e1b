#pragma once

#include <QStringList>

namespace yunqi {

// yunqi-statement make-demo-db FILE [--tickets N] [--seed S]; returns the
// exit status.
int RunMakeDemoDb(const QStringList& args);

}  // namespace yunqi
