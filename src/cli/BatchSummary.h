#pragma once

#include <QString>
#include <vector>

#include "cli/BatchJobs.h"

namespace yunqi {

// DIR/summary.csv: "dept,report,status,rows,seconds,file", one line a
// statement in the order of the jobs; rows and file only for an "ok" one.
QString BatchSummary(const std::vector<BatchJob>& jobs);

}  // namespace yunqi
