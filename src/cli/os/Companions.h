#pragma once

class QProcess;

namespace yunqi {

// The batch's companions as the system lets them run.

// Ties a companion, before it starts, to this process: on Linux it gets
// SIGTERM (and removes its temporary files) when this process ends, by
// SIGKILL too, and one whose batch is gone by the time it starts ends at once.
// Elsewhere nothing.
void TieToThisProcess(QProcess& companion);

// How many companions can run at once under the limit of open files: each
// takes descriptors of this process for its pipes while it runs. *limit is
// that limit (0 where there is none to tell).
int CompanionsTheFileLimitAllows(long* limit);

}  // namespace yunqi
