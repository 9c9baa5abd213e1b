// --timeout against a server that takes the login and never answers one
// query: the run ends with status 124 and one line, although the driver
// waits inside the query, and leaves nothing behind; a batch stops as an
// interrupt stops it, its folder as it was.
#include <gtest/gtest.h>

#include <QJsonDocument>
#include <QJsonObject>

#include "cli/ToolProcess.h"
#include "db/SqlDialect.h"
#include "support/TdsListener.h"

using namespace yunqi;
using namespace yunqi::test;

namespace {

// The SQLite form of every text a statement sends, for the server to run.
const QString& Translations() {
    static QTemporaryDir dir;
    static const QString path = [] {
        const QString log = dir.filePath("sql.log");
        RunTool(Invoice({"--sql-log", log}));
        QJsonObject map;
        for (const QByteArray& line : ReadAll(log).split('\n'))
            if (!line.isEmpty())
                map[QString::fromUtf8(line)] = AdaptToSQLite(QString::fromUtf8(line));
        const QString file = dir.filePath("translations.json");
        WriteAll(file, QJsonDocument(map).toJson());
        return file;
    }();
    return path;
}

struct StallRow {
    const char* name;
    QStringList args;     // the outputs are added
    const char* stallOn;  // the first query holding this text is never answered
    int sessions;         // the batch's own, then its first statement's
    const char* says;
};
void PrintTo(const StallRow& row, std::ostream* os) { *os << row.name; }

const StallRow kRows[] = {
    {"statementInTheDepartmentList",
     {"invoice", "--dept", "01", "--from", "2024-01-01", "--to", "2024-12-31"},
     "From 设置管理处",
     1,
     "yunqi-statement: stopped after the time limit of 1 s\n"},
    {"reconciliationInItsFeeItems",
     {"reconciliation", "--dept", "01", "--year", "2024", "--months", "01-03"},
     "税控盘收费项目设置.税率",
     1,
     "yunqi-statement: stopped after the time limit of 1 s\n"},
    // Before the batch has made anything: the limit ends it at once.
    {"batchInItsDepartmentList",
     {"batch", "--month", "2024-03"},
     "From 设置管理处",
     1,
     "yunqi-statement: batch: stopped after the time limit of 1 s\n"},
    // A statement of the batch waits: the batch ends it and removes its work.
    {"batchInAStatement",
     {"batch", "--month", "2024-03", "--jobs", "1", "--quiet"},
     "定额=0",
     2,
     "yunqi-statement: batch: stopped after the time limit of 1 s\n"},
};

class TimeLimitTest : public ::testing::TestWithParam<StallRow> {
  protected:
    void SetUp() override {
        if (!ReadAll(QStringLiteral("/etc/odbcinst.ini")).contains("[FreeTDS]"))
            GTEST_SKIP() << "the FreeTDS ODBC driver is not installed (package tdsodbc)";
    }
};

TEST_P(TimeLimitTest, EndsTheRunThatWaitsOnTheServerLeavingNothing) {
    const StallRow& row = GetParam();
    TdsListener listener({"--reply", "serve", "--ledger", DemoLedger(), "--translations",
                          Translations(), "--stall-on", QString::fromUtf8(row.stallOn),
                          "--sessions", QString::number(row.sessions)});
    ASSERT_FALSE(listener.port_.isEmpty()) << listener.refusal_.toStdString();
    QTemporaryDir dir;
    ASSERT_TRUE(QDir(dir.path()).mkpath("config/云栖账房") && QDir(dir.path()).mkpath("work"));
    WriteAll(dir.filePath("config/云栖账房/云栖账房.ini"),
             "[DBConfig]\nEdition=2000\nSvr=127.0.0.1," + listener.port_.toLatin1() +
                 "\nUID=出纳\nPWD=secret\nDBname=账房\nDriver=FreeTDS\n");

    // What was there before: outputs of an earlier run, a batch's forced folder.
    const QString work = dir.filePath("work");
    QStringList args = row.args;
    if (args[0] == "batch") {
        QDir(work).mkdir("out");
        WriteAll(work + "/out/notes.txt", "mine");
        args << "--out" << work + "/out"
             << "--force";
    } else {
        for (const char* name : {"s.csv", "s.xlsx", "sql.log"}) WriteAll(work + '/' + name, "old");
        args << "--csv" << work + "/s.csv"
             << "--xlsx" << work + "/s.xlsx"
             << "--sql-log" << work + "/sql.log";
    }
    const ToolResult r = RunTool(args + QStringList{"--timeout", "1"},
                                 {.env = {"XDG_CONFIG_HOME=" + dir.filePath("config")}});

    EXPECT_EQ(r.status, 124) << r.Err().toStdString();
    EXPECT_EQ(r.Err(), QString::fromUtf8(row.says));
    const QStringList left =
        QDir(work).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    if (args[0] == "batch") {
        EXPECT_EQ(left, QStringList{"out"});  // no staging folder beside it
        EXPECT_EQ(
            QDir(work + "/out").entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
            QStringList{"notes.txt"});
        EXPECT_EQ(ReadAll(work + "/out/notes.txt"), "mine");
    } else {
        EXPECT_EQ(left, (QStringList{"s.csv", "s.xlsx", "sql.log"}));
        for (const char* name : {"s.csv", "s.xlsx", "sql.log"})
            EXPECT_EQ(ReadAll(work + '/' + name), "old") << name;
    }
    // The query that waited was sent, and the connection closed by whoever sent it.
    EXPECT_TRUE(listener.Records()["query"].toString().contains(QString::fromUtf8(row.stallOn)));
    EXPECT_EQ(listener.process_.state(), QProcess::NotRunning);
}

INSTANTIATE_TEST_SUITE_P(Rows, TimeLimitTest, ::testing::ValuesIn(kRows),
                         [](const auto& info) { return std::string(info.param.name); });

}  // namespace
