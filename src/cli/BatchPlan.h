#pragma once

#include <QString>
#include <QStringList>
#include <vector>

#include "cli/BatchJobs.h"
#include "cli/BatchOptions.h"

namespace yunqi {

// What a batch will do: its statements in department-list order, then report
// order, and the department folders (relative to the output folder) they
// write into.
struct BatchPlan {
    std::vector<BatchJob> jobs;
    QStringList folders;
};

// entries is the department list; a code listed twice counts once, as the
// first entry that --dept would choose.
BatchPlan PlanBatch(const BatchOptions& options, const QStringList& entries);

}  // namespace yunqi
