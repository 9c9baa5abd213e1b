#pragma once

#include <QString>
#include <QStringList>

namespace yunqi {

// The output folder of a batch. One that holds anything but the files of a
// batch (summary.csv, mismatches.csv, and per department folder the reports'
// workbooks and CSV files) is refused unless forced: the problem, else an empty text.
// Messages name the folder as typed.
QString ForeignFolderProblem(const QString& out, bool force);

// Makes the folder and its department folders, in order; on a failure tells
// which and returns false.
bool MakeBatchFolders(const QString& out, const QStringList& folders);

// A department code as a file name: characters a file name can't hold, and
// "%", written as %XX of their UTF-8 bytes.
QString FileNameOfCode(const QString& code);

}  // namespace yunqi
