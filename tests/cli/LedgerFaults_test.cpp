// Exit statuses of yunqi-statement: a database failure is exit 1 with the
// driver's own message, whichever statement meets it, also one that a
// routine's error trap has shown; exit 2 is for bad
// arguments only; exit 3 for nothing to show. No output is made on any.
#include <gtest/gtest.h>
#include <pwd.h>
#include <sys/stat.h>

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <functional>

#include "cli/ToolProcess.h"

using namespace yunqi;
using namespace yunqi::test;

namespace {

class LedgerFaults : public ::testing::Test {
  protected:
    QString Copy(const char* name) {
        const QString path = dir.filePath(QString::fromUtf8(name));
        QFile::copy(DemoLedger(), path);
        QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner);
        return path;
    }
    static void Sql(const QString& file, const QStringList& statements) {
        {
            QSqlDatabase db = QSqlDatabase::addDatabase("QSQLITE", "ledger-faults");
            db.setDatabaseName(file);
            ASSERT_TRUE(db.open());
            QSqlQuery q(db);
            for (const QString& s : statements)
                ASSERT_TRUE(q.exec(s)) << q.lastError().text().toStdString();
        }
        QSqlDatabase::removeDatabase("ledger-faults");
    }
    QTemporaryDir dir;
};

}  // namespace

TEST_F(LedgerFaults, EachBadLedgerIsADatabaseFailureWithTheDriversMessage) {
    struct Shape {
        const char* name;
        std::function<void(const QString&)> make;
        const char* message;
        const char* command = "invoice";
    };
    const Shape shapes[] = {
        {"truncated", [](const QString& f) { QFile(f).resize(QFileInfo(f).size() / 2); },
         "database disk image is malformed"},
        {"empty", [](const QString& f) { QFile(f).resize(0); }, "no such table"},
        {"text", [](const QString& f) { WriteAll(f, "Dear office,\nthis is no ledger.\n"); },
         "file is not a database"},
        {"missing department tables",
         [](const QString& f) {
             Sql(f, {"DROP TABLE 设置管理处", "DROP TABLE 职能部门new"});
         },
         "no such table: 设置管理处"},
        {"missing ticket types", [](const QString& f) { Sql(f, {"DROP TABLE 票据类型"}); },
         "no such table: 票据类型"},
        {"missing", [](const QString& f) { QFile::remove(f); }, "error 53: File not found"},
        // The engine would open these as new, empty databases: told what they are.
        {"a folder", [](const QString& f) { QFile::remove(f), QDir().mkdir(f); }, ": is a folder"},
        {"a FIFO",
         [](const QString& f) {
             QFile::remove(f), ::mkfifo(QFile::encodeName(f).constData(), 0600);
         },
         ": is not a regular file"},
        // Amounts and rates beyond the number forms: an error that names them.
        {"an amount beyond 15 digits",
         [](const QString& f) {
             Sql(f, {"UPDATE 票据开票数据 SET 金额 = 1e300 WHERE 票据编号 = "
                     "(SELECT min(票据编号) FROM 票据 WHERE 开票部门编号 = '01' "
                     "AND 开票日期 >= '2024-03')"});
         },
         "error 6: Overflow: 票据编号 "},
        {"an infinite amount",
         [](const QString& f) { Sql(f, {"UPDATE 票据开票数据 SET 金额 = 9e999"}); },
         "inf has more than the 15 digits"},
        {"a tax rate beyond 15 digits",
         [](const QString& f) { Sql(f, {"UPDATE setupsfxm SET 税率 = 1e308"}); },
         "税率: 1e+308 has more than the 15 digits"},
        // Trapped: the fee-item extraction, the pre-invoice run, the reconciliation's items.
        {"trapped extraction", [](const QString& f) { Sql(f, {"DROP TABLE setupsfxm"}); },
         "error 1: no such table: setupsfxm", "parking"},
        {"trapped run", [](const QString& f) { Sql(f, {"ALTER TABLE 票据 DROP COLUMN 地址"}); },
         "error 1: no such column: 地址", "preinvoice"},
        {"trapped monthly items",
         [](const QString& f) { Sql(f, {"DROP TABLE 税控盘收费项目设置"}); },
         "error 1: no such table: 税控盘收费项目设置", "reconciliation"},
    };
    for (const Shape& shape : shapes) {
        SCOPED_TRACE(shape.name);
        const QString file = Copy(shape.name);
        shape.make(file);
        const bool regular = QFileInfo(file).isFile();
        const QByteArray bytes = regular ? ReadAll(file) : QByteArray();
        QStringList args = Invoice({"--csv", dir.filePath("out.csv")}, file);
        args[0] = QString::fromUtf8(shape.command);
        if (args[0] == "reconciliation")
            args = {args[0],
                    "--database",
                    file,
                    "--dept",
                    "01",
                    "--year",
                    "2024",
                    "--months",
                    "01-12",
                    "--csv",
                    dir.filePath("out.csv")};
        const ToolResult r = RunTool(args);
        EXPECT_EQ(r.status, 1) << r.Err().toStdString();
        EXPECT_TRUE(r.Err().contains(QString::fromUtf8(shape.message))) << r.Err().toStdString();
        EXPECT_FALSE(r.Err().contains("no department"));
        EXPECT_FALSE(QFile::exists(dir.filePath("out.csv")));
        EXPECT_EQ(QFile::exists(file), shape.name != std::string("missing"));
        if (regular) EXPECT_EQ(ReadAll(file), bytes);
    }
}

// A user who may only read the ledger: what would make the engine write to
// it is told, not only the engine's "readonly database".
TEST_F(LedgerFaults, WhatMakesTheEngineWriteToAReadOnlyLedgerIsTold) {
    const struct passwd* nobody = ::getpwnam("nobody");
    if (::geteuid() != 0 || !nobody) GTEST_SKIP() << "running as user nobody needs root";
    struct Shape {
        const char* name;
        const char* sql;  // run as the owner, who may write
        const char* cause;
    };
    const Shape shapes[] = {
        {"a WAL ledger in a closed folder", "PRAGMA journal_mode=WAL",
         "the ledger is in WAL mode, which needs its -wal and -shm files in "},
        {"a journal left by a stopped writer", nullptr,
         "-journal was left by a writer that was stopped"},
    };
    ASSERT_EQ(::chmod(QFile::encodeName(dir.path()).constData(), 0755), 0);
    for (const Shape& shape : shapes) {
        SCOPED_TRACE(shape.name);
        const QString file = Copy(shape.name);
        if (shape.sql)
            Sql(file, {shape.sql});
        else
            WriteAll(file + "-journal", QByteArray(4096, 'j'));  // any bytes make it hot
        for (const QString& f : {file, file + "-journal"})
            ::chmod(QFile::encodeName(f).constData(), 0644);
        const ToolResult r = RunTool(Invoice({"--csv", "/dev/null"}, file), {.user = nobody});
        if (r.status == 126) GTEST_SKIP() << "this system does not let root become nobody";
        EXPECT_EQ(r.status, 1);
        EXPECT_TRUE(r.Err().contains(shape.cause)) << r.Err().toStdString();
    }
}

TEST_F(LedgerFaults, ALockHeldBeyondTheBusyTimeOutIsADatabaseFailure) {
    const QString file = Copy("locked.sqlite");
    {
        QSqlDatabase db = QSqlDatabase::addDatabase("QSQLITE", "locker");
        db.setDatabaseName(file);
        ASSERT_TRUE(db.open());
        QSqlQuery q(db);
        ASSERT_TRUE(q.exec("BEGIN EXCLUSIVE") && q.exec("UPDATE 票据 SET 金额 = 金额"));
        const ToolResult r = RunTool(Invoice({}, file));
        EXPECT_EQ(r.status, 1) << r.Err().toStdString();
        EXPECT_TRUE(r.Err().contains("error 5: database is locked")) << r.Err().toStdString();
        q.exec("ROLLBACK");
    }
    QSqlDatabase::removeDatabase("locker");
}

// The mistakes every command shares are StatementCli_test's table.
TEST_F(LedgerFaults, ArgumentsAndEmptyWindowsHaveTheirStatus) {
    const QString out = dir.filePath("out.csv");
    const auto invoice = [&](const QString& dept, const QString& from, const QString& to,
                             const QStringList& extra = {}) {
        return QStringList{"invoice", "--database", DemoLedger(), "--dept", dept, "--from",
                           from,      "--to",       to,           "--csv",  out} +
               extra;
    };
    const auto reconciliation = [&](const QString& dept, const QString& year,
                                    const QString& months) {
        return QStringList{
            "reconciliation", "--database", DemoLedger(), "--dept", dept, "--year", year,
            "--months",       months,       "--csv",      out};
    };
    struct Case {
        const char* name;
        QStringList args;
        int status;
        const char* message;
    };
    const QString from = "2024-01-01", to = "2024-12-31";
    const Case cases[] = {
        {"a share that is no number", Invoice({"--ratio", "007=60/abc"}), 2,
         "the 物业 share abc is no number"},
        {"shares that miss 100", Invoice({"--ratio", "007=60/30"}), 2, "分成比例总和必须等于100"},
        {"a ratio of no item here", Invoice({"--ratio", "099=60/40"}), 2,
         "no parking item with code 099 in this window"},
        {"a department not in the list", invoice("99", from, to), 2,
         "no department with code 99 in the list"},
        {"dates in the wrong order", invoice("01", to, from), 2, "截至日期不能小于开始日期!"},
        {"a window without tickets", invoice("01", "2030-01-01", "2030-12-31"), 3,
         "没有满足条件的开票数据,请重新设置条件!"},
        {"months in the wrong order", reconciliation("01", "2024", "12-01"), 2,
         "截至月份不能小于开始月份,请重新选择!"},
        {"a year without tickets", reconciliation("01", "2016", "01-12"), 3,
         "没有满足条件的开票数据,请重新设置条件!"},
        {"a department not in the reconciliation's list", reconciliation("99", "2024", "01-01"), 2,
         "no department with code 99 in the list"},
        {"an unknown command", {"nonsense"}, 2, "unknown command: nonsense"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const ToolResult r = RunTool(c.args, {.workDir = dir.path()});
        EXPECT_EQ(r.status, c.status);
        EXPECT_TRUE(r.Err().contains(QString::fromUtf8(c.message))) << r.Err().toStdString();
        // Every mistake in the arguments is followed by a usage.
        EXPECT_EQ(r.Err().contains("\nusage:"), c.status == 2) << r.Err().toStdString();
        EXPECT_TRUE(QDir(dir.path()).isEmpty());
    }
}
