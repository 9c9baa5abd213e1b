#pragma once

#include <QString>
#include <functional>
#include <vector>

#include "cli/BatchJob.h"
#include "cli/TimeLimit.h"
#include "cli/os/Interrupts.h"

namespace yunqi {

// Runs the pending jobs, at most `parallel` at a time, and reports each finished one.
// A companion that cannot start is run when another has ended, with fewer at
// a time, or fails its statement when none is running. Returns false when
// interrupted (the watch's request): the running companions are stopped, and
// they remove their temporary files themselves; one that the same request
// ended is not a failed statement. Each companion gets what is left of the
// batch's time limit as its own, so that it ends by itself also where the
// batch cannot end it.
bool RunBatchJobs(std::vector<BatchJob>& jobs, int parallel, const QString& program,
                  const std::function<void(BatchJob&, int done)>& finished, InterruptWatch& watch,
                  const TimeLimit& limit);

}  // namespace yunqi
