// Wall time of the invoice statement on a large demo ledger, beside the time
// the sqlite3 shell takes for the same two SQL texts alone, and the time of
// ShowPage on a long statement.
//   invoice_statement_bench [DB] [--tickets N] [--year YYYY]
// Without DB a demo ledger of N tickets (default 200000) is made in /tmp.
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QTextStream>
#include <clocale>
#include <cstdio>

#include "BenchSupport.h"
#include "frame/Conditions.h"
#include "frame/SplitRatios.h"
#include "reports/invoice/InvoiceStatement.h"

using namespace yunqi;

namespace {

QTextStream out(stdout);

struct Timed {
    double statementMs = 0;
    int rows = 0;
    QStringList sql;
};

Timed RunOnce(const QString& db, const StatementConditions& k) {
    auto session = DatabaseSession::OpenEmbedded(db);
    Timed t;
    session->SetSqlLog([&](const QString& s) { t.sql << s; });
    InvoiceStatement statement(*session);
    FlexGrid grid1, grid2 = SplitRatios::NewGrid();
    QElapsedTimer clock;
    clock.start();
    statement.ExtractFeeItems(k, grid2, grid1);
    statement.RunStatistics(k, grid2, 30);
    t.statementMs = clock.nsecsElapsed() / 1e6;
    t.rows = statement.Rows().UpperBound();
    return t;
}

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    std::setlocale(LC_CTYPE, "C.UTF-8");
    QStringList args = app.arguments().mid(1);
    int tickets = 200000, year = 2024;
    QString db;
    for (int i = 0; i < args.size(); ++i) {
        if (args[i] == "--tickets" && i + 1 < args.size())
            tickets = args[++i].toInt();
        else if (args[i] == "--year" && i + 1 < args.size())
            year = args[++i].toInt();
        else
            db = args[i];
    }
    QTemporaryDir tmp;
    if (db.isEmpty()) db = BenchSupport::DemoLedger(tickets);

    auto session = DatabaseSession::OpenEmbedded(db);
    StatementConditions k;
    k.DeptCode = BenchSupport::LargestDepartment(*session);
    k.InvoiceTypeList = Conditions::LoadInvoiceTypes(*session);
    k.From = QDate(year, 1, 1);
    k.To = QDate(year, 12, 31);
    out << "department " << k.DeptCode << ", window " << year << "\n";

    RunOnce(db, k);  // warm the page cache
    double best = 1e18, shellBest = 1e18;
    Timed t;
    for (int i = 0; i < 3; ++i) {
        t = RunOnce(db, k);
        best = std::min(best, t.statementMs);
        shellBest = std::min(shellBest, BenchSupport::ShellMs(db, t.sql, tmp.filePath("s.sql")));
    }
    out << "statement rows " << t.rows << " from " << t.sql.size() << " SQL texts\n";
    out << QString::asprintf("statement (extraction + statistics): %.0f ms\n", best);
    out << QString::asprintf("sqlite3 shell, same texts: %.0f ms\n", shellBest);
    out << QString::asprintf("ratio to the shell: %.2f; own share: %.1f%%\n", best / shellBest,
                             100.0 * (best - shellBest) / best);

    // ShowPage on a long statement: every year of the department.
    k.From = QDate(2000, 1, 1);
    k.To = QDate(2099, 12, 31);
    InvoiceStatement statement(*session);
    FlexGrid grid1, grid2 = SplitRatios::NewGrid();
    statement.ExtractFeeItems(k, grid2, grid1);
    statement.RunStatistics(k, grid2, 30);
    const int pages = statement.PageCount();
    out << "long statement rows " << statement.Rows().UpperBound() << ", pages of 30: " << pages
        << "\n";
    EstimatedTextMeasure measure;
    for (int page : {1, pages / 2, pages}) {
        QElapsedTimer clock;
        clock.start();
        const int repeat = 200;
        for (int i = 0; i < repeat; ++i) statement.ShowPage(grid1, page, 30, measure);
        out << QString::asprintf("ShowPage page %d: %.3f ms\n", page,
                                 clock.nsecsElapsed() / 1e6 / repeat);
    }
    return 0;
}
