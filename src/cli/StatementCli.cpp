#include "cli/StatementCli.h"

#include <QTextStream>

#include "cli/BatchCommand.h"
#include "cli/ConsoleDialogs.h"
#include "cli/MakeDemoDbCommand.h"
#include "cli/PagedStatementCommand.h"
#include "cli/StatementSession.h"
#include "reports/Reports.h"

namespace yunqi {

namespace {

const char kUsage[] =
    "usage:\n"
    "  yunqi-statement invoice|preinvoice|parking [--database FILE] --dept CODE --from YYYY-MM-DD "
    "--to YYYY-MM-DD [--ratio ITEMCODE=DEV/PROP]... [--csv PATH|-] [--xlsx PATH] [--sql-log PATH]\n"
    "  yunqi-statement reconciliation [--database FILE] --dept CODE --year YYYY --months MM-MM "
    "[--csv PATH|-] [--xlsx PATH] [--sql-log PATH]\n"
    "  yunqi-statement make-demo-db FILE [--tickets N] [--seed S]\n"
    "  yunqi-statement batch [--database FILE] --month YYYY-MM --out DIR [--dept CODE]... "
    "[--report NAME]... [--ratio ITEMCODE=DEV/PROP]... [--csv] [--jobs N] [--force] [--quiet]\n";

int Usage(const QString& problem) {
    QTextStream err(stderr);
    if (!problem.isEmpty()) err << "yunqi-statement: " << problem << "\n";
    err << kUsage;
    return 2;
}

}  // namespace

int RunStatementCli(const QStringList& args) {
    if (args.isEmpty()) return Usage(QString());
    static ConsoleDialogs dialogs;
    SetAppDialogs(&dialogs);
    const QString& command = args.first();
    if (command == QLatin1String("make-demo-db")) return RunMakeDemoDb(args.mid(1));
    if (command == QLatin1String("batch")) return RunBatch(args.mid(1));
    if (const ReportDefinition* report = FindReport(command); report && report->makePaged)
        return RunPagedStatement(*report, args.mid(1), OpenStatementSession);
    return Usage(QStringLiteral("unknown command: ") + args.first());
}

}  // namespace yunqi
