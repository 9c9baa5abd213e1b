#include "cli/os/Interrupts.h"

#include <windows.h>

#include <QCoreApplication>
#include <QObject>

namespace yunqi {

namespace {

// The console runs its handler on a thread of its own: the call is queued to
// a receiver that lives on the event loop's thread.
QObject* receiver = nullptr;
std::function<void()> callback;
HANDLE stopped = nullptr;  // set once the watch ends

BOOL WINAPI OnConsoleEvent(DWORD event) {
    if (!receiver) return FALSE;
    QMetaObject::invokeMethod(receiver, [] { if (callback) callback(); }, Qt::QueuedConnection);
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

InterruptWatch::InterruptWatch(std::function<void()> onInterrupt) : d_(new State) {
    callback = std::move(onInterrupt);
    receiver = &d_->receiver;
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

}  // namespace yunqi
