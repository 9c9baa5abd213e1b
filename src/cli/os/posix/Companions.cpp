#include "cli/os/Companions.h"

#include <sys/resource.h>
#include <unistd.h>

#include <QProcess>
#include <algorithm>
#include <csignal>
#ifdef __linux__
#include <sys/prctl.h>
#endif

namespace yunqi {

namespace {

// A companion holds three pipes, its process descriptor and, while it starts,
// one more pipe: up to 8 descriptors here. The rest stay for the batch's own
// files (the ledger's session, the summary, the event loop).
constexpr long kPerCompanion = 8, kForTheBatch = 24;

}  // namespace

void TieToThisProcess(QProcess& companion) {
#ifdef __linux__
    const pid_t batch = ::getpid();
    companion.setChildProcessModifier([batch] {
        ::prctl(PR_SET_PDEATHSIG, SIGTERM);
        // The batch may have ended between the fork and the call above.
        if (::getppid() != batch) ::_exit(1);
    });
#else
    (void)companion;
#endif
}

int CompanionsTheFileLimitAllows(long* limit) {
    struct rlimit rl {};
    if (::getrlimit(RLIMIT_NOFILE, &rl) != 0 || rl.rlim_cur == RLIM_INFINITY) {
        *limit = 0;
        return 1 << 20;
    }
    *limit = long(std::min<rlim_t>(rl.rlim_cur, 1L << 30));
    return int(std::max(1L, (*limit - kForTheBatch) / kPerCompanion));
}

}  // namespace yunqi
