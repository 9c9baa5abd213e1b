#pragma once

#include <QStringList>

#include "cli/CommandLine.h"

namespace yunqi {

// yunqi-statement make-demo-db FILE [--tickets N] [--seed S] [--force]: an
// existing FILE is refused (exit 2) unless --force is given; returns the
// exit status.
int RunMakeDemoDb(const QStringList& args);
const CommandSpec& MakeDemoDbSpec();

}  // namespace yunqi
