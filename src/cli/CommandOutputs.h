#pragma once

#include <QString>
#include <QStringList>
#include <memory>
#include <optional>
#include <vector>

#include "core/OutputFile.h"
#include "core/RuntimeError.h"

namespace yunqi {

// What the companion's commands share about their outputs, before and after
// the work: the files themselves are written by OutputFile and StagedOutput.

struct OutputOption {
    QString option;  // "--csv", for messages
    QString path;    // empty: not asked for
    Dash dash = Dash::IsFileName;
};

// A bad argument (exit 2): an output that names an input (the ledger, also
// through another name or link) or the same file as another output. Nothing
// when the outputs will do.
std::optional<QString> OutputClash(const std::vector<OutputOption>& outputs,
                                   const QStringList& inputs);

// Before any work: each output checked as CheckOutput does (read-only file,
// missing folder...). Throws RuntimeError (exit 1).
void CheckOutputs(const std::vector<OutputOption>& outputs);

// The SQL log of a run: one line for each text sent. The file is opened when
// the first text comes, through OutputFile, so nothing is created, let alone
// truncated, before a statement is sent; Finish() makes it final. A failed
// write never throws into the statement that is being sent: it is kept, the
// later texts are dropped, and Check() and Finish() throw it.
class SqlLogWriter {
  public:
    explicit SqlLogWriter(const QString& path);  // empty: no log
    ~SqlLogWriter();

    bool Wanted() const { return !path_.isEmpty(); }
    void Add(const QString& sql);
    // Throws the failure of a write, if one failed.
    void Check() const;
    // Commits what was logged, when anything was; throws a failure.
    void Finish();

  private:
    QString path_;
    std::unique_ptr<OutputFile> file_;
    std::optional<RuntimeError> failure_;
};

}  // namespace yunqi
