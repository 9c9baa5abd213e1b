#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "cli/StatementCli.h"
#include "support/TestDatabase.h"

using namespace yunqi;

// The SQL texts each statement sends and the CSV it writes, for one small
// ledger, compared byte for byte with the files under tests/fixtures/golden/<report>.
// YUNQI_UPDATE_GOLDEN=1 rewrites the files instead (review the diff!).
namespace {

// Department D1 in March 2024: an ordinary item 01 and a parking item 07 at
// 33.3 %; paid, pre-invoiced, paid-later, voided, receipt and two-line tickets.
void FillLedger(TestDatabase& db) {
    db.Exec("INSERT INTO 职能部门new VALUES ('D1','一部',NULL)");
    db.Exec("INSERT INTO 设置管理处 VALUES ('D1','GY01','云栖苑')");
    db.Exec(
        "INSERT INTO 票据类型 VALUES ('01','增值税专用发票',0),('02','增值税普通发票',0),"
        "('04','收据',0),('09','定额发票',1)");
    db.Exec("INSERT INTO 票据入库单 VALUES ('S1','01'),('S2','02'),('S4','04'),('S9','09')");
    db.Exec(
        "INSERT INTO setupsfxm VALUES ('01','物业费',0.06,'物业收费','物业费'),"
        "('07','停车费(月)',0.05,'停车收费','停车费')");
    db.Exec("INSERT INTO 收款方式列表 VALUES ('现金'),('微信支付')");
    auto ticket = [&](const char* no, const char* note, const char* issued, const char* paid,
                      const char* voided, double amount, const char* method, const char* payer,
                      int pre = 0) {
        db.AddTicket(no, note, issued, paid ? QString(paid) : QString(),
                     voided ? QString(voided) : QString(), amount, method, payer, QString(), "D1",
                     pre);
    };
    ticket("0001", "S1", "2024-03-05 09:10:00", "2024-03-05 09:10:00", nullptr, 106, "现金",
           "甲公司");
    db.AddLine("S1", "0001", "01", 106, "6");
    ticket("0002", "S2", "2024-03-10 10:00:00", nullptr, nullptr, 210, "微信支付", "乙,\"丙\"", 1);
    db.AddLine("S2", "0002", "07", 105, "5");
    db.AddLine("S2", "0002", "07", 105, "5");
    ticket("0003", "S1", "2024-03-31 16:00:00", "2024-04-01 08:00:00", nullptr, 53, "现金", "丁");
    db.AddLine("S1", "0003", "01", 53, "NULL");
    ticket("0004", "S4", "2024-03-12 11:00:00", "2024-04-10 11:00:00", nullptr, 100, "现金", "戊");
    db.AddLine("S4", "0004", "07", 100, "5");
    ticket("0005", "S1", "2024-03-15 12:00:00", "2024-03-15 12:00:00", "2024-03-16 00:00:00", 50,
           "现金", "己");
    db.AddLine("S1", "0005", "01", 50, "3");
    ticket("0006", "S1", "2024-02-20 12:00:00", "2024-03-02 12:00:00", nullptr, 33.33, "微信支付",
           "庚");
    db.AddLine("S1", "0006", "07", 33.33, "1.59");
    ticket("0007", "S9", "2024-03-20 12:00:00", "2024-03-20 12:00:00", nullptr, 10, "现金", "辛");
    db.AddLine("S9", "0007", "01", 10, "NULL");
}

QByteArray ReadAll(const QString& path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

void Compare(const QString& produced, const QString& golden) {
    const QByteArray actual = ReadAll(produced);
    ASSERT_FALSE(actual.isEmpty()) << produced.toStdString();
    if (qEnvironmentVariableIsSet("YUNQI_UPDATE_GOLDEN")) {
        QFile out(golden);
        ASSERT_TRUE(out.open(QIODevice::WriteOnly));
        out.write(actual);
        return;
    }
    EXPECT_EQ(QString::fromUtf8(actual).toStdString(),
              QString::fromUtf8(ReadAll(golden)).toStdString())
        << golden.toStdString();
}

class GoldenStatements : public ::testing::TestWithParam<const char*> {};

TEST_P(GoldenStatements, SqlTextsAndCsvAreExact) {
    TestDatabase db;
    FillLedger(db);
    QTemporaryDir dir;
    const QString command = GetParam();
    const QString csv = dir.filePath("out.csv"), log = dir.filePath("sql.log");
    ASSERT_EQ(RunStatementCli({command, "--database", db.Path(), "--dept", "D1", "--from",
                               "2024-03-01", "--to", "2024-03-31", "--ratio", "07=66.7/33.3",
                               "--csv", csv, "--sql-log", log}),
              0);
    const QString golden = QStringLiteral(YUNQI_TEST_DIR "/fixtures/golden/") + command;
    Compare(log, golden + "/statement.sql");
    Compare(csv, golden + "/statement.csv");
    if (const QByteArray keep = qgetenv("YUNQI_KEEP_LEDGER"); !keep.isEmpty())
        QFile::copy(db.Path(), QString::fromUtf8(keep));
}

INSTANTIATE_TEST_SUITE_P(Reports, GoldenStatements, ::testing::Values("invoice", "preinvoice", "parking"));

}  // namespace
