#include <QCoreApplication>
#include <clocale>

#include "cli/StatementCli.h"
#include "cli/os/Console.h"
#include "core/OutputFile.h"

using namespace yunqi;

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    // Chinese SQL texts survive the ODBC path only under a UTF-8 character type.
    std::setlocale(LC_CTYPE, "C.UTF-8");
    // Messages and the CSV on a terminal are UTF-8.
    UseUtf8Console();
    // Temporary files go with SIGINT, SIGTERM and SIGHUP; a file-size limit
    // fails a write, which is told.
    InstallOutputCleanup();
    return RunStatementCli(app.arguments().mid(1));
}
