#include <QCoreApplication>
#include <clocale>

#include "cli/StatementCli.h"

using namespace yunqi;

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    // Chinese SQL texts survive the ODBC path only under a UTF-8 character type.
    std::setlocale(LC_CTYPE, "C.UTF-8");
    return RunStatementCli(app.arguments().mid(1));
}
