#include <QCoreApplication>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <new>

#include "cli/CommandLine.h"
#include "cli/StatementCli.h"
#include "cli/os/Arguments.h"
#include "cli/os/Console.h"
#include "core/TemporaryFiles.h"

using namespace yunqi;

namespace {

// Said without allocating: there may be nothing left to allocate.
int OutOfMemory() {
    RemoveTemporaryOutputs();
    std::fputs("yunqi-statement: out of memory\n", stderr);
    return 1;
}

// An exception that no handler could take (thrown through the event loop or
// a function that may not throw): a failed allocation is told as such; any
// other ends the process as before, with its temporary files gone.
[[noreturn]] void OnTerminate() {
    if (const std::exception_ptr e = std::current_exception()) {
        try {
            std::rethrow_exception(e);
        } catch (const std::bad_alloc&) {
            std::_Exit(OutOfMemory());
        } catch (...) {
        }
    }
    RemoveTemporaryOutputs();
    std::abort();
}

}  // namespace

int main(int argc, char** argv) {
    std::set_terminate(OnTerminate);
    QCoreApplication app(argc, argv);
    // Chinese SQL texts survive the ODBC path only under a UTF-8 character type.
    std::setlocale(LC_CTYPE, "C.UTF-8");
    // Messages and the CSV on a terminal are UTF-8.
    UseUtf8Console();
    // Temporary files go with SIGINT, SIGTERM, SIGHUP and SIGABRT; a
    // file-size limit fails a write, which is told.
    InstallOutputCleanup();
    // A name is passed on as the bytes given or refused, never changed.
    if (const auto bad = ArgumentNotAsGiven(argc, argv)) {
        std::fprintf(
            stderr,
            "yunqi-statement: %s is not UTF-8 text: it would reach the system as another name\n%s",
            bad->constData(), StatementUsage().toUtf8().constData());
        return kExitBadArguments;
    }
    try {
        return RunStatementCli(app.arguments().mid(1));
    } catch (const std::bad_alloc&) {
        return OutOfMemory();
    }
}
