#include "cli/os/Interrupts.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <QSocketNotifier>
#include <csignal>

namespace yunqi {

namespace {

// The handler only writes a byte; the event loop reads it.
int signalPipe[2] = {-1, -1};

void OnSignal(int signal) {
    const int saved = errno;
    const char byte = char(signal);
    [[maybe_unused]] const auto n = ::write(signalPipe[1], &byte, 1);
    errno = saved;
}

// SIGPIPE: a reader of the progress that went away stops the batch as an
// interrupt does.
constexpr int kSignals[] = {SIGINT, SIGTERM, SIGHUP, SIGPIPE};

}  // namespace

struct InterruptWatch::State {
    struct sigaction old[NSIG] = {};
    std::unique_ptr<QSocketNotifier> notifier;
    std::function<void()> handler;
    bool requested = false;

    // Also from Requested(): the notifier may then find the byte gone.
    void Take() {
        char byte;
        if (::read(signalPipe[0], &byte, 1) != 1) return;
        requested = true;
        if (handler) handler();
    }
};

InterruptWatch::InterruptWatch() : d_(new State) {
    // Never blocks; not inherited by the companions.
    if (signalPipe[0] < 0 && ::pipe2(signalPipe, O_NONBLOCK | O_CLOEXEC) != 0) return;
    struct sigaction action = {};
    action.sa_handler = OnSignal;
    sigemptyset(&action.sa_mask);
    for (int s : kSignals) sigaction(s, &action, &d_->old[s]);
    d_->notifier = std::make_unique<QSocketNotifier>(signalPipe[0], QSocketNotifier::Read);
    QObject::connect(d_->notifier.get(), &QSocketNotifier::activated,
                     [d = d_.get()] { d->Take(); });
}

InterruptWatch::~InterruptWatch() {
    if (!d_->notifier) return;
    for (int s : kSignals) sigaction(s, &d_->old[s], nullptr);
}

void InterruptWatch::OnInterrupt(std::function<void()> handler) {
    d_->handler = std::move(handler);
}

// The byte a signal would write.
void InterruptWatch::Request() { OnSignal(0); }

bool InterruptWatch::Requested() {
    pollfd p{signalPipe[0], POLLIN, 0};
    if (!d_->requested && d_->notifier && ::poll(&p, 1, 0) == 1) d_->Take();
    return d_->requested;
}

}  // namespace yunqi
