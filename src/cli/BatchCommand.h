#pragma once

#include <QStringList>

namespace yunqi {

// yunqi-statement batch: every statement of every department for one month,
// into a folder, with a summary. Returns the exit status: 0 none failed,
// 1 some failed, 2 bad arguments, 130 interrupted.
int RunBatch(const QStringList& args);

}  // namespace yunqi
