#include "cli/os/Interrupts.h"

#include <unistd.h>

#include <QSocketNotifier>
#include <csignal>

namespace yunqi {

namespace {

// The handler only writes a byte; the event loop reads it.
int signalPipe[2] = {-1, -1};

void OnSignal(int signal) {
    const char byte = char(signal);
    [[maybe_unused]] const auto n = ::write(signalPipe[1], &byte, 1);
}

constexpr int kSignals[] = {SIGINT, SIGTERM, SIGHUP};

}  // namespace

struct InterruptWatch::State {
    struct sigaction old[NSIG] = {};
    std::unique_ptr<QSocketNotifier> notifier;
};

InterruptWatch::InterruptWatch(std::function<void()> onInterrupt) : d_(new State) {
    if (signalPipe[0] < 0 && ::pipe(signalPipe) != 0) return;
    struct sigaction action = {};
    action.sa_handler = OnSignal;
    sigemptyset(&action.sa_mask);
    for (int s : kSignals) sigaction(s, &action, &d_->old[s]);
    d_->notifier = std::make_unique<QSocketNotifier>(signalPipe[0], QSocketNotifier::Read);
    QObject::connect(d_->notifier.get(), &QSocketNotifier::activated,
                     [onInterrupt = std::move(onInterrupt)] {
                         char byte;
                         [[maybe_unused]] const auto n = ::read(signalPipe[0], &byte, 1);
                         onInterrupt();
                     });
}

InterruptWatch::~InterruptWatch() {
    if (!d_->notifier) return;
    for (int s : kSignals) sigaction(s, &d_->old[s], nullptr);
}

}  // namespace yunqi
