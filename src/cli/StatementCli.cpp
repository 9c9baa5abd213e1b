#include "cli/StatementCli.h"

#include <QTextStream>

#include "cli/BatchCommand.h"
#include "cli/ConsoleDialogs.h"
#include "cli/MakeDemoDbCommand.h"
#include "cli/MonthlyStatementCommand.h"
#include "cli/PagedStatementCommand.h"
#include "cli/StatementOptions.h"
#include "cli/StatementSession.h"
#include "reports/Reports.h"

namespace yunqi {

namespace {

int Usage(const QString& problem) {
    QTextStream err(stderr);
    if (!problem.isEmpty()) err << "yunqi-statement: " << problem << "\n";
    err << StatementUsage();
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
    if (const ReportDefinition* report = FindReport(command); report && report->makeMonthly)
        return RunMonthlyStatement(*report, args.mid(1), OpenStatementSession);
    return Usage(QStringLiteral("unknown command: ") + args.first());
}

}  // namespace yunqi
