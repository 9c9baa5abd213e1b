#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

#include "cli/GridCsv.h"
#include "cli/StatementCli.h"
#include "support/TestDatabase.h"

using namespace yunqi;

namespace {

class InvoiceCommand : public ::testing::Test {
  protected:
    void SetUp() override {
        db.Exec("INSERT INTO 职能部门new VALUES ('D1','一部',NULL),('D2','二部',NULL)");
        db.Exec("INSERT INTO 设置管理处 VALUES ('D1','S01','东区'),('D2','S02','西区')");
        db.Exec("INSERT INTO 票据类型 VALUES ('01','增值税专用发票',0),('04','收据',0)");
        db.Exec("INSERT INTO 票据入库单 VALUES ('S1','01'),('S4','04')");
        db.Exec(
            "INSERT INTO setupsfxm VALUES ('01','物业费',0.06,'物业收费','物业费'),"
            "('02','停车费(月)',0.05,'停车收费','停车费')");
        db.Exec("INSERT INTO 收款方式列表 VALUES ('现金')");
        db.AddTicket("0001", "S1", "2024-03-01", "2024-03-01", QString(), 106, "现金",
                     "甲,\"乙\"\n丙", QString(), "D1");
        db.AddLine("S1", "0001", "01", 106, "6");
        db.AddTicket("0002", "S4", "2024-03-02", "2024-03-02", QString(), 100, "现金", "丁",
                     QString(), "D1");
        db.AddLine("S4", "0002", "02", 100, "NULL");
    }

    int Run(QStringList extra) {
        QStringList args{"invoice",    "--database", db.Path(),    "--dept", "D1",   "--from",
                         "2024-01-01", "--to",       "2024-12-31", "--csv",  csvPath};
        return RunStatementCli(args + extra);
    }

    TestDatabase db;
    QTemporaryDir dir;
    QString csvPath = dir.filePath("out.csv");
};

}  // namespace

TEST(GridCsvTest, QuotesOnlyWhatNeedsIt) {
    EXPECT_EQ(CsvField("plain 文本"), "plain 文本");
    EXPECT_EQ(CsvField("a,b"), "\"a,b\"");
    EXPECT_EQ(CsvField("say \"hi\""), "\"say \"\"hi\"\"\"");
    EXPECT_EQ(CsvField("line\rbreak"), "\"line\rbreak\"");
    EXPECT_EQ(CsvField("line\nbreak"), "\"line\nbreak\"");
}

TEST_F(InvoiceCommand, ExitStatusesTellWhatHappened) {
    EXPECT_EQ(RunStatementCli({"invoice", "--database", db.Path(), "--dept", "D1", "--from",
                               "2025-01-01", "--to", "2025-12-31"}),
              3);
    EXPECT_EQ(Run({"--ratio", "02=60/30"}), 2);
    EXPECT_EQ(Run({"--ratio", "09=60/40"}), 2);
    EXPECT_EQ(Run({"--bogus", "x"}), 2);
    EXPECT_EQ(RunStatementCli({"invoice", "--database", db.Path(), "--dept", "D1", "--from",
                               "2024-13-01", "--to", "2024-12-31"}),
              2);
    EXPECT_EQ(RunStatementCli({"invoice", "--database", db.Path(), "--dept", "D9", "--from",
                               "2024-01-01", "--to", "2024-12-31"}),
              2);
    EXPECT_EQ(RunStatementCli({"invoice", "--database", db.Path() + ".missing", "--dept", "D1",
                               "--from", "2024-01-01", "--to", "2024-12-31"}),
              1);
    EXPECT_FALSE(QFile::exists(db.Path() + ".missing"));
    EXPECT_FALSE(QFile::exists(csvPath));
}
