#pragma once

#include <QString>

#include "cli/BatchJobs.h"

namespace yunqi {

// One line on standard error: "yunqi-statement: batch: TEXT".
void BatchSay(const QString& text);

// The progress of a batch on standard error: "[3/16] LABEL 1,234 rows" a
// statement, redrawn in place on a terminal, one line each otherwise; a
// failed statement's message is told also under --quiet.
class BatchProgress {
  public:
    BatchProgress(int total, bool quiet);
    void Finished(const BatchJob& job, int done);
    // The batch stopped before its end: why, after a redrawn line is ended.
    void Interrupted(const QString& why);

  private:
    int total_;
    bool quiet_;
    bool terminal_;
};

}  // namespace yunqi
