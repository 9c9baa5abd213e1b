// Peak memory of a parking statement of N rows (default 32,767, the most its
// closing loops allow): one ticket a batch, each with a line of every parking
// item of the demo settings, all paid in cash, so that the total and one
// breakdown row follow N - 2 batches. Time of the run beside it.
//   parking_memory_bench [--rows N]
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QTextStream>
#include <climits>
#include <clocale>

#include "cli/DemoDatabase.h"
#include "frame/SplitRatios.h"
#include "frame/xlsx/XlsxWriter.h"
#include "reports/parking/ParkingStatement.h"

using namespace yunqi;

namespace {

QTextStream out(stdout);

// A "VmRSS:" or "VmHWM:" line of /proc/self/status, in MiB.
double StatusMiB(const char* key) {
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly)) return -1;
    for (const QByteArray& line : status.readAll().split('\n'))
        if (line.startsWith(key))
            return line.mid(int(qstrlen(key))).trimmed().split(' ')[0].toDouble() / 1024;
    return -1;
}

QString RowsLedger(const QString& folder, int rows) {
    const QString db = folder + QStringLiteral("/rows.sqlite");
    WriteDemoDatabase(db, 0, 1);
    {
        QSqlDatabase con = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), "rows");
        con.setDatabaseName(db);
        con.open();
        QSqlQuery q(con);
        q.exec(QStringLiteral("INSERT INTO 票据入库单 VALUES ('P1','02')"));
        q.exec(QStringLiteral(
                   "WITH RECURSIVE k(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM k WHERE i < %1) "
                   "INSERT INTO 票据 (票据编号, 入库单编号, 开票日期, 收款日期, 金额, 收款方式, "
                   "开票部门编号) SELECT printf('%08d', i), 'P1', '2024-01-01 08:00:00', "
                   "datetime('2024-01-01 08:00:00', '+' || i || ' seconds'), 300, '现金', '01' "
                   "FROM k")
                   .arg(rows - 2));
        q.exec(
            QStringLiteral("INSERT INTO 票据开票数据 SELECT 'P1', 票据编号, dh, 100, 4.76 "
                           "FROM 票据 CROSS JOIN setupsfxm WHERE 收费类别 Like '%停车%'"));
        con.close();
    }
    QSqlDatabase::removeDatabase("rows");
    return db;
}

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    std::setlocale(LC_CTYPE, "C.UTF-8");
    const QStringList args = app.arguments().mid(1);
    int rows = 32767;
    for (int i = 0; i + 1 < args.size(); ++i)
        if (args[i] == "--rows") rows = args[i + 1].toInt();

    QTemporaryDir tmp;
    const QString db = RowsLedger(tmp.path(), rows);
    auto session = DatabaseSession::OpenEmbedded(db);
    StatementConditions k;
    k.DeptCode = QStringLiteral("01");
    k.From = QDate(2024, 1, 1);
    k.To = QDate(2024, 1, 31);
    const double before = StatusMiB("VmRSS:");
    ParkingStatement statement(*session);
    FlexGrid statementGrid, ratios = SplitRatios::NewGrid();
    statement.ExtractFeeItems(k, ratios, statementGrid);
    statement.BuildGridHeader(statementGrid, ratios);
    QElapsedTimer clock;
    clock.start();
    statement.RunStatistics(k, ratios, 30);
    const double ms = clock.nsecsElapsed() / 1e6;
    out << "statement of " << statement.UpperBound() << " rows, " << statement.FeeColumnCount()
        << " money columns: " << QString::asprintf("%.0f ms\n", ms);
    out << QString::asprintf("resident before the run %.1f MiB, peak after it %.1f MiB\n", before,
                             StatusMiB("VmHWM:"));
    statement.ShowPage(statementGrid, 1, 30, EstimatedTextMeasure());
    RecordingDialogs dialogs;
    ExportFrame::ExportSteps steps(nullptr, dialogs);
    QTemporaryDir folder;
    StreamXlsx(folder.filePath("parking.xlsx"), [&](SheetModel& sheet) {
        statement.WriteSheet(sheet, steps,
                             {statementGrid, QStringLiteral("【云栖苑】停车费明细表"),
                              QStringLiteral("01 云栖苑【GY01】"), k});
    });
    out << QString::asprintf("peak with a page shown and the workbook written: %.1f MiB\n",
                             StatusMiB("VmHWM:"));
    return 0;
}
