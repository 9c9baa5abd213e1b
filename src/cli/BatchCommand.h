#pragma once

#include <QStringList>

namespace yunqi {

// yunqi-statement batch: every statement of every department for one month,
// into a folder, with a summary. Returns the exit status: 0 none failed,
// 1 some failed, 2 bad arguments, 130 interrupted.
int RunBatch(const QStringList& args);

// A department code as a file name: characters a file name can't hold, and
// "%", written as %XX of their UTF-8 bytes.
QString FileNameOfCode(const QString& code);

}  // namespace yunqi
