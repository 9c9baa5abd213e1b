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
        db.Department("D1", "S01", "东区");
        db.Department("D2", "S02", "西区");
        db.Types("01 04");
        db.Item("01", "物业费", "0.06", "物业收费");
        db.Item("02", "停车费(月)", "0.05", "停车收费", "停车费");
        db.Methods({"现金"});
        db.Add({.no = "0001", .issued = "2024-03-01", .amount = 106, .tax = "6"});
        db.Add({.no = "0002", .note = "S4", .issued = "2024-03-02", .amount = 100, .item = "02"});
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
