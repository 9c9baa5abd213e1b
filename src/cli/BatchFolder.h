#pragma once

#include <QString>
#include <QStringList>
#include <cstdint>

namespace yunqi {

// The output folder of a batch. One that holds anything but the files of a
// batch (summary.csv, mismatches.csv, and per department folder the reports'
// workbooks and CSV files) is refused unless forced, one that is no folder
// always: the problem, else an empty text.
// Messages name the folder as typed.
QString ForeignFolderProblem(const QString& out, bool force);

// A department code as a file name: characters a file name can't hold, and
// "%", written as %XX of their UTF-8 bytes; so is the first character of a
// code that is the name of a batch's own file (summary.csv, mismatches.csv).
QString FileNameOfCode(const QString& code);

// Where a batch is built: a hidden folder ".NAME.batch-XXXXXX" beside the
// output folder (inside it when its parent takes no new folder), which
// takes the output folder's place once the batch is complete, so that the
// folder is never two months' files at once: SwapIn() trades the two in one
// step where the system can, else moves the earlier batch's files out and
// the new ones in (the department folders first, summary.csv last); other
// files of a forced folder stay. Without SwapIn() the destructor removes it,
// and the output folder is as it was. The folder is locked while the batch
// lives: one left by a batch that was killed is removed by the next.
class BatchStaging {
  public:
    explicit BatchStaging(const QString& out);
    ~BatchStaging();
    BatchStaging(const BatchStaging&) = delete;
    BatchStaging& operator=(const BatchStaging&) = delete;

    // Makes the staging folder; false, and told, when it can't be made.
    bool Make();
    const QString& Path() const { return path_; }
    // Makes a department folder in it: the reason when it can't be made.
    QString MakeFolder(const QString& folder) const;
    // The staging path in a companion's message, as the output folder.
    QString AsOutput(QString text) const;
    // False, and told, when the output folder could not take the new files.
    bool SwapIn();

  private:
    QString out_;
    QString path_;
    bool inside_ = false;
    std::intptr_t lock_ = -1;
};

}  // namespace yunqi
