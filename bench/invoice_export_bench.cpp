// The invoice workbook of a 100,000-row statement with 10 fee items (two of
// them parking): wall time and peak memory of the export, and the ratio to a
// bare libxlsxwriter program writing the same cells (xlsx_yardstick_bench).
#include <sys/resource.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QProcess>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QTextStream>
#include <clocale>

#include "db/EmbeddedSchema.h"
#include "frame/SplitRatios.h"
#include "frame/xlsx/XlsxWriter.h"
#include "reports/invoice/InvoiceStatement.h"

using namespace yunqi;

namespace {

QTextStream out(stdout);

double PeakMb() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss / 1024.0;
}

// One department, one year, one line a ticket over ten items.
void MakeLedger(const QString& file, int tickets) {
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), "ledger");
        db.setDatabaseName(file);
        db.open();
        QSqlQuery q(db);
        q.exec("PRAGMA journal_mode=OFF");
        db.transaction();
        for (const QString& s : EmbeddedSchema::AllStatements()) q.exec(s);
        q.exec(
            "INSERT INTO 票据类型 VALUES ('01','增值税专用发票',0),('02','增值税普通发票',0),"
            "('03','增值税电子发票',0),('04','收据',0)");
        q.exec("INSERT INTO 票据入库单 VALUES ('S1','01'),('S2','02'),('S3','03'),('S4','04')");
        for (int i = 1; i <= 10; ++i)
            q.exec(QString("INSERT INTO setupsfxm VALUES ('%1','项目%1',0.06,'%2','项目%1')")
                       .arg(i, 2, 10, QChar('0'))
                       .arg(i <= 2 ? "停车收费" : "物业收费"));
        q.exec("INSERT INTO 收款方式列表 VALUES ('现金'),('微信支付')");
        QSqlQuery t(db), l(db);
        t.prepare(
            "INSERT INTO 票据 (票据编号,入库单编号,开票日期,收款日期,金额,收款方式,付款人,地址,"
            "开票部门编号) VALUES (?,?,?,?,?,?,?,?,'01')");
        l.prepare("INSERT INTO 票据开票数据 VALUES (?,?,?,?,?)");
        for (int i = 0; i < tickets; ++i) {
            const QString no = QString("%1").arg(i, 8, 10, QChar('0'));
            const QString note = QString("S%1").arg(1 + i % 4);
            const QString day = QDate(2024, 1, 1).addDays(i % 366).toString("yyyy-MM-dd 10:00:00");
            const double amount = 100 + (i % 997) * 1.37;
            t.addBindValue(no), t.addBindValue(note), t.addBindValue(day), t.addBindValue(day);
            t.addBindValue(amount), t.addBindValue(i % 3 ? "现金" : "微信支付");
            t.addBindValue("云栖科技有限公司"), t.addBindValue("16幢492室");
            t.exec();
            l.addBindValue(note), l.addBindValue(no);
            l.addBindValue(QString("%1").arg(1 + i % 10, 2, 10, QChar('0')));
            l.addBindValue(amount), l.addBindValue(amount * 0.06 / 1.06);
            l.exec();
        }
        db.commit();
        // As a real ledger has; without statistics the planner may nest the item joins.
        q.exec("ANALYZE");
    }
    QSqlDatabase::removeDatabase("ledger");
}

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    std::setlocale(LC_CTYPE, "C.UTF-8");
    const int tickets = argc > 1 ? atoi(argv[1]) : 99997;
    QTemporaryDir dir;
    const QString ledger = dir.filePath("ledger.sqlite");
    MakeLedger(ledger, tickets);

    auto session = DatabaseSession::OpenEmbedded(ledger);
    InvoiceStatement statement(*session);
    StatementConditions k{"01", "", "'01','02','03','04'", QDate(2024, 1, 1), QDate(2024, 12, 31)};
    FlexGrid statementGrid, ratios = SplitRatios::NewGrid();
    statement.ExtractFeeItems(k, ratios, statementGrid);
    statement.RunStatistics(k, ratios, 30);
    const int u = statement.Rows().UpperBound();
    out << "statement: " << u << " rows, " << statement.FeeItems().size() - 1 << " fee items, "
        << statementGrid.Cols() << " columns; peak before export " << PeakMb() << " MB\n";

    RecordingDialogs dialogs;
    const QString file = dir.filePath("invoice.xlsx");
    QElapsedTimer clock;
    clock.start();
    ExportFrame::ExportSteps steps(nullptr, dialogs);
    // Rows go to the file as they are composed.
    StreamXlsx(file, [&](SheetModel& sheet) {
        statement.WriteSheet(sheet, steps,
                             {statementGrid, "【云栖苑】增值税开票明细表", "01 云栖苑【GY01】", k});
    });
    const double seconds = clock.nsecsElapsed() / 1e9;
    out << QString::asprintf("export: %.3f s, %lld bytes, peak %.0f MB\n", seconds,
                             QFileInfo(file).size(), PeakMb());

    const QString yardstick = QCoreApplication::applicationDirPath() + "/xlsx_yardstick_bench";
    QProcess bare;
    bare.start(yardstick, {QString::number(u), QString::number(statementGrid.Cols() - 9),
                           dir.filePath("yardstick.xlsx")});
    bare.waitForFinished(-1);
    const QString report = QString::fromUtf8(bare.readAllStandardOutput()).trimmed();
    out << report << "\n";
    const double bareSeconds = report.section(" in ", 1).section(" s", 0, 0).toDouble();
    if (bareSeconds > 0)
        out << QString::asprintf("ratio to the yardstick: %.2f\n", seconds / bareSeconds);
    return 0;
}
