#include "cli/os/Interrupts.h"

#include <windows.h>

#include <QCoreApplication>
#include <QObject>
#include <atomic>

namespace yunqi {

namespace {

// The console runs its handler on a thread of its own: the call is queued to
// a receiver that lives on the event loop's thread.
QObject* receiver = nullptr;
std::function<void()> callback;
std::atomic<bool> requested{false};
HANDLE stopped = nullptr;  // set once the watch ends

BOOL WINAPI OnConsoleEvent(DWORD event) {
    if (!receiver) return FALSE;
    requested = true;
    QMetaObject::invokeMethod(
        receiver,
        [] {
            if (callback) callback();
        },
        Qt::QueuedConnection);
    // For a closing console the process ends when the handler returns: the
    // companions, which have the same console, get the event too; give the
    // batch a moment to see them end.
    if (event == CTRL_CLOSE_EVENT || event == CTRL_LOGOFF_EVENT || event == CTRL_SHUTDOWN_EVENT)
        ::WaitForSingleObject(stopped, 4000);
    return TRUE;
}

}  // namespace

struct InterruptWatch::State {
    QObject receiver;
};

InterruptWatch::InterruptWatch() : d_(new State) {
    receiver = &d_->receiver;
    requested = false;
    if (!stopped) stopped = ::CreateEventW(nullptr, TRUE, FALSE, nullptr);
    ::ResetEvent(stopped);
    ::SetConsoleCtrlHandler(OnConsoleEvent, TRUE);
}

InterruptWatch::~InterruptWatch() {
    ::SetConsoleCtrlHandler(OnConsoleEvent, FALSE);
    receiver = nullptr;
    callback = nullptr;
    ::SetEvent(stopped);
}

void InterruptWatch::OnInterrupt(std::function<void()> handler) { callback = std::move(handler); }

// As a Ctrl+C reaches it, without reaching the companions.
void InterruptWatch::Request() { OnConsoleEvent(CTRL_C_EVENT); }

bool InterruptWatch::Requested() { return requested; }

}  // namespace yunqi
