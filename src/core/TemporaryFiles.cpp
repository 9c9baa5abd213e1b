#include "core/TemporaryFiles.h"

#include <QFile>
#include <atomic>
#include <cstdlib>

namespace yunqi {

namespace {

// A fixed table of heap strings: the handler only loads pointers and removes
// files, both safe in a signal handler.
//
// A file is created and registered, and a name freed, inside a TableChange:
// the end events are held on that thread, and a handler running on another
// thread waits for every change under way to end. Otherwise an event between
// the creation and Register() would leave the file behind.

constexpr int kSlots = 64;
std::atomic<char*> registered[kSlots];
std::atomic<int> changing{0};
std::atomic<bool> ending{false};

class TableChange {
  public:
    TableChange() {
        changing.fetch_add(1);
        if (ending.load()) {
            // A handler on another thread is removing the files: nothing new
            // is made, and the process ends before long.
            changing.fetch_sub(1);
            os::WaitForTheEnd();
        }
    }
    ~TableChange() { changing.fetch_sub(1); }
    TableChange(const TableChange&) = delete;
    TableChange& operator=(const TableChange&) = delete;

  private:
    os::EndEventsHeld held_;  // before the count, and given back after it
};

int Register(const QString& path) {
    char* copy = os::NewNativeName(path);
    if (!copy) return -1;
    for (int i = 0; i < kSlots; ++i) {
        char* expected = nullptr;
        if (registered[i].compare_exchange_strong(expected, copy)) return i;
    }
    std::free(copy);  // more than kSlots at once: removed by the destructors only
    return -1;
}

bool RemoveRegistered() {
    bool all = true;
    for (auto& slot : registered)
        if (const char* name = slot.load()) all = os::RemoveNative(name) && all;
    return all;
}

// The end handler's part, on whichever thread it runs.
bool RemoveAtTheEnd() {
    ending.store(true);
    // A file being made on another thread is registered first; a thread that
    // hangs in open(2) does not keep the process alive for long.
    for (int i = 0; changing.load() > 0 && i < 5000; ++i) os::SleepOneMillisecond();
    return RemoveRegistered();
}

// For the tests: YUNQI_TEST_SIGNAL_AFTER_TEMPORARY=SIGNAL:NAME, read by
// InstallOutputCleanup(), sends SIGNAL to the process right after the
// temporary file of a target called NAME (or "yunqi-output" for one staged in
// the temporary folder) was made and before it is registered, the moment a
// user's signal could otherwise slip in.
int testSignal = 0;
QByteArray testBase;

void SignalForTests(const QString& base) {
    if (testSignal > 0 && QFile::encodeName(base) == testBase) os::SendEndEventForTests(testSignal);
}

}  // namespace

os::Handle CreateRegisteredTemporary(const QString& folder, const QString& base, QString* made,
                                     os::Error* error, int* slot) {
    TableChange change;
    const os::Handle handle = os::CreateUnique(folder, base, made, error);
    if (handle == os::kNoHandle) return handle;
    SignalForTests(base);
    *slot = Register(*made);
    return handle;
}

void UnregisterTemporary(int slot) {
    if (slot < 0) return;
    TableChange change;
    std::free(registered[slot].exchange(nullptr));
}

void InstallOutputCleanup() {
    const QByteArray test = qgetenv("YUNQI_TEST_SIGNAL_AFTER_TEMPORARY");
    if (const qsizetype colon = test.indexOf(':'); colon > 0) {
        testSignal = test.left(colon).toInt();
        testBase = test.mid(colon + 1);
    }
    os::InstallEndHandler(RemoveAtTheEnd);
}

void RemoveTemporaryOutputs() { RemoveRegistered(); }

void RemoveTemporaryOutputsFromAnyThread() { RemoveAtTheEnd(); }

}  // namespace yunqi
