#include "cli/StatementCli.h"

#include <QTextStream>

#include "cli/ConsoleDialogs.h"
#include "cli/MakeDemoDbCommand.h"
#include "cli/PagedStatementCommand.h"
#include "cli/StatementSession.h"
#include "frame/xlsx/XlsxWriter.h"
#include "reports/invoice/InvoiceStatement.h"
#include "reports/invoice/InvoiceTexts.h"
#include "reports/invoice/InvoiceWorkbook.h"

namespace {

const char kUsage[] =
    "usage:\n"
    "  yunqi-statement invoice|preinvoice|parking [--database FILE] --dept CODE --from YYYY-MM-DD "
    "--to YYYY-MM-DD [--ratio ITEMCODE=DEV/PROP]... [--csv PATH|-] [--xlsx PATH] [--sql-log PATH]\n"
    "  yunqi-statement reconciliation [--database FILE] --dept CODE --year YYYY --months MM-MM "
    "[--csv PATH|-] [--xlsx PATH] [--sql-log PATH]\n"
    "  yunqi-statement make-demo-db FILE [--tickets N] [--seed S]\n";

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
    if (command == QLatin1String("invoice")) {
        const PagedReport report{
            InvoiceTexts(),
            [](DatabaseSession& s) { return std::make_unique<InvoiceStatement>(s); },
            [](const PagedStatement& statement, const FlexGrid& grid1, const StatementRun& run,
               const QString& path) {
                SheetModel sheet;
                ExportFrame::ExportSteps steps(nullptr, AppDialogs());
                WriteInvoiceSheet(sheet, steps,
                                  {static_cast<const InvoiceStatement&>(statement), grid1,
                                   run.title, run.entry, run.from, run.to});
                WriteXlsx(sheet, path);
            },
        };
        return RunPagedStatement(report, args.mid(1), OpenStatementSession);
    }
    return Usage(QStringLiteral("unknown command: ") + args.first());
}
