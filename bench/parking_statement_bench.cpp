// The parking statement on a large demo ledger (largest department, one year
// of payments) beside the sqlite3 shell running the same SQL texts, and the
// peak memory of a statement of 32,767 rows, the most its closing loops allow.
//   parking_statement_bench [DB] [--tickets N] [--year YYYY]
//   parking_statement_bench --rows N     (the memory figure alone, in a fresh process)
// Without DB a demo ledger of N tickets (default 200000) is made in /tmp.
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QTextStream>
#include <climits>
#include <clocale>

#include "BenchSupport.h"
#include "cli/DemoDatabase.h"
#include "core/RuntimeError.h"
#include "frame/SplitRatios.h"
#include "reports/parking/ParkingStatement.h"

using namespace yunqi;

namespace {

QTextStream out(stdout);

struct Timed {
    double statementMs = 0;
    int rows = 0;
    long error = 0;  // a run-time error that ended the statement
    QStringList sql;
};

// Command3 then Command6, as the window runs them.
Timed RunOnce(const QString& db, const StatementConditions& k) {
    auto session = DatabaseSession::OpenEmbedded(db);
    Timed t;
    session->SetSqlLog([&](const QString& s) { t.sql << s; });
    ParkingStatement statement(*session);
    FlexGrid grid1, grid2 = SplitRatios::NewGrid();
    QElapsedTimer clock;
    clock.start();
    statement.ExtractFeeItems(k, grid2, grid1);
    statement.BuildGridHeader(grid1, grid2);
    try {
        statement.RunStatistics(k, grid2, 30);
    } catch (const RuntimeError& e) {
        // Past 32,767 rows: the whole result has been read and grouped by then.
        t.error = e.number();
    }
    t.statementMs = clock.nsecsElapsed() / 1e6;
    t.rows = statement.UpperBound();
    return t;
}

// A ledger whose January statement has exactly `rows` rows: one ticket a
// batch, each with a line of every parking item of the demo settings, all
// paid in cash, so that the total and one breakdown row follow the batches.
QString RowsLedger(const QString& folder, int rows) {
    const QString db = folder + QStringLiteral("/rows.sqlite");
    WriteDemoDatabase(db, 0, 1);
    {
        QSqlDatabase con = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), "rows");
        con.setDatabaseName(db);
        con.open();
        QSqlQuery q(con);
        const QString batches = QString::number(rows - 2);
        q.exec(QStringLiteral("INSERT INTO 票据入库单 VALUES ('P1','02')"));
        q.exec(QStringLiteral(
                   "WITH RECURSIVE k(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM k WHERE i < %1) "
                   "INSERT INTO 票据 (票据编号, 入库单编号, 开票日期, 收款日期, 金额, 收款方式, "
                   "开票部门编号) SELECT printf('%08d', i), 'P1', '2024-01-01 08:00:00', "
                   "datetime('2024-01-01 08:00:00', '+' || i || ' seconds'), 300, '现金', '01' "
                   "FROM k")
                   .arg(batches));
        q.exec(QStringLiteral("INSERT INTO 票据开票数据 SELECT 'P1', 票据编号, dh, 100, 4.76 "
                              "FROM 票据 CROSS JOIN setupsfxm WHERE 收费类别 Like '%停车%'"));
        con.close();
    }
    QSqlDatabase::removeDatabase("rows");
    return db;
}

int MemoryOf(int rows) {
    QTemporaryDir tmp;
    const QString db = RowsLedger(tmp.path(), rows);
    auto session = DatabaseSession::OpenEmbedded(db);
    StatementConditions k;
    k.DeptCode = QStringLiteral("01");
    k.From = QDate(2024, 1, 1);
    k.To = QDate(2024, 1, 31);
    const double before = BenchSupport::ResidentMiB();
    ParkingStatement statement(*session);
    FlexGrid grid1, grid2 = SplitRatios::NewGrid();
    statement.ExtractFeeItems(k, grid2, grid1);
    statement.BuildGridHeader(grid1, grid2);
    QElapsedTimer clock;
    clock.start();
    const bool ok = statement.RunStatistics(k, grid2, 30);
    const double ms = clock.nsecsElapsed() / 1e6;
    out << "statement of " << statement.UpperBound() << " rows, " << statement.FeeColumnCount()
        << " money columns: " << (ok ? "" : "no rows, ") << QString::asprintf("%.0f ms\n", ms);
    out << QString::asprintf("resident before the run %.1f MiB, peak after it %.1f MiB\n", before,
                             BenchSupport::PeakResidentMiB());
    statement.ShowPage(grid1, 1, INT_MAX, EstimatedTextMeasure());
    SheetModel sheet;
    RecordingDialogs dialogs;
    ExportFrame::ExportSteps steps(nullptr, dialogs);
    statement.WriteSheet(sheet, steps, {grid1, QStringLiteral("【云栖苑】停车费明细表"),
                                        QStringLiteral("01 云栖苑【GY01】"), k});
    out << QString::asprintf("peak with one page of all rows and the sheet model: %.1f MiB\n",
                             BenchSupport::PeakResidentMiB());
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    std::setlocale(LC_CTYPE, "C.UTF-8");
    QStringList args = app.arguments().mid(1);
    int tickets = 200000, year = 2024;
    QString db;
    for (int i = 0; i < args.size(); ++i) {
        if (args[i] == "--rows" && i + 1 < args.size())
            return MemoryOf(args[++i].toInt());
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
    for (const auto& [from, to] : {std::pair{QDate(year, 1, 1), QDate(year, 12, 31)},
                                   std::pair{QDate(year, 1, 1), QDate(year, 1, 31)}}) {
        k.From = from;
        k.To = to;
        out << "department " << k.DeptCode << ", payments " << from.toString(Qt::ISODate)
            << " to " << to.toString(Qt::ISODate) << "\n";
        RunOnce(db, k);  // warm the page cache
        double best = 1e18, shellBest = 1e18;
        Timed t;
        for (int i = 0; i < 5; ++i) {
            t = RunOnce(db, k);
            best = std::min(best, t.statementMs);
            shellBest =
                std::min(shellBest, BenchSupport::ShellMs(db, t.sql, tmp.filePath("s.sql")));
        }
        out << "  statement rows " << t.rows << " from " << t.sql.size() << " SQL texts";
        if (t.error) out << ", ended by run-time error " << t.error;
        out << "\n";
        out << QString::asprintf("  statement: %.0f ms; sqlite3 shell, same texts: %.0f ms; "
                                 "ratio %.2f\n",
                                 best, shellBest, best / shellBest);
    }
    return 0;
}
