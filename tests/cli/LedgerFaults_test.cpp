// Exit statuses of yunqi-statement on bad ledgers and bad arguments: a
// database failure is exit 1 with the driver's own message, whichever
// statement meets it; exit 2 is for bad arguments only, with the usage.
#include <gtest/gtest.h>

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QTemporaryDir>

#include "cli/DemoDatabase.h"
#include "cli/ToolProcess.h"
#include "db/DatabaseSession.h"

using namespace yunqi;
using namespace yunqi::test;

namespace {

class LedgerFaults : public ::testing::Test {
  protected:
    static void SetUpTestSuite() {
        ledgerDir = new QTemporaryDir;
        ledger = ledgerDir->filePath("demo.sqlite");
        WriteDemoDatabase(ledger, 3000, 5);
    }
    static void TearDownTestSuite() {
        delete ledgerDir;
        ledgerDir = nullptr;
    }
    static QStringList Invoice(const QString& database, QStringList extra = {}) {
        return QStringList{"invoice", "--database", database, "--dept",    "01",
                           "--from",  "2024-01-01", "--to",   "2024-12-31"} +
               extra;
    }
    QString Copy(const char* name) {
        const QString path = dir.filePath(QString::fromUtf8(name));
        QFile::copy(ledger, path);
        QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner);
        return path;
    }
    void Sql(const QString& file, const QStringList& statements) {
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

    static QTemporaryDir* ledgerDir;
    static QString ledger;
    QTemporaryDir dir;
};

QTemporaryDir* LedgerFaults::ledgerDir = nullptr;
QString LedgerFaults::ledger;

}  // namespace

TEST_F(LedgerFaults, EachBadShapeIsADatabaseFailureWithTheDriversMessage) {
    struct Shape {
        const char* name;
        std::function<void(const QString&)> make;
        const char* message;
    };
    const Shape shapes[] = {
        {"truncated", [](const QString& f) { QFile(f).resize(QFileInfo(f).size() / 2); },
         "database disk image is malformed"},
        {"empty", [](const QString& f) { QFile(f).resize(0); }, "no such table"},
        {"text", [](const QString& f) { WriteAll(f, "Dear office,\nthis is no ledger.\n"); },
         "file is not a database"},
        {"missing department tables",
         [this](const QString& f) {
             Sql(f, {"DROP TABLE 设置管理处", "DROP TABLE 职能部门new"});
         },
         "no such table: 设置管理处"},
        {"missing ticket types", [this](const QString& f) { Sql(f, {"DROP TABLE 票据类型"}); },
         "no such table: 票据类型"},
    };
    for (const Shape& shape : shapes) {
        const QString file = Copy(shape.name);
        shape.make(file);
        const QByteArray bytes = ReadAll(file);
        const ToolResult r = RunTool(Invoice(file, {"--csv", dir.filePath("out.csv")}));
        EXPECT_EQ(r.status, 1) << shape.name << r.Err().toStdString();
        EXPECT_TRUE(r.Err().contains(QStringLiteral("yunqi-statement: error "))) << shape.name;
        EXPECT_TRUE(r.Err().contains(QString::fromUtf8(shape.message)))
            << shape.name << r.Err().toStdString();
        EXPECT_FALSE(r.Err().contains("no department")) << shape.name;
        EXPECT_FALSE(QFile::exists(dir.filePath("out.csv")));
        EXPECT_EQ(ReadAll(file), bytes) << shape.name;
    }
}

TEST_F(LedgerFaults, ALockHeldBeyondTheBusyTimeOutIsADatabaseFailure) {
    const QString file = Copy("locked.sqlite");
    {
        QSqlDatabase db = QSqlDatabase::addDatabase("QSQLITE", "locker");
        db.setDatabaseName(file);
        ASSERT_TRUE(db.open());
        QSqlQuery q(db);
        ASSERT_TRUE(q.exec("BEGIN EXCLUSIVE"));
        ASSERT_TRUE(q.exec("UPDATE 票据 SET 金额 = 金额"));
        const ToolResult r = RunTool(Invoice(file));
        EXPECT_EQ(r.status, 1) << r.Err().toStdString();
        EXPECT_TRUE(r.Err().contains("error 5: database is locked")) << r.Err().toStdString();
        // One time-out for the run, not one for each statement.
        EXPECT_GE(r.elapsedMs, DatabaseSession::kBusyTimeoutMs - 500);
        EXPECT_LT(r.elapsedMs, 2 * DatabaseSession::kBusyTimeoutMs);
        q.exec("ROLLBACK");
    }
    QSqlDatabase::removeDatabase("locker");
}

TEST_F(LedgerFaults, ArgumentErrorsAreExitTwoWithTheOptionNamedAndTheUsage) {
    struct Case {
        QStringList extra;
        const char* message;
    };
    const Case cases[] = {
        {{"--ratio", "007=60/40/0"}, "--ratio 007=60/40/0: the 物业 share 40/0 is no number"},
        {{"--ratio", "007=60/abc"}, "the 物业 share abc is no number"},
        {{"--ratio", "007=60/40", "--ratio", "007=50/50"}, "--ratio for item 007 given twice"},
        {{"--csv", ""}, "--csv needs a value, not an empty text"},
        {{"--xlsx", ""}, "--xlsx needs a value, not an empty text"},
        {{"--sql-log", ""}, "--sql-log needs a value, not an empty text"},
        {{"stray"}, "unexpected argument stray"},
        {{"--dept", "02"}, "--dept given twice"},
        {{"--csv"}, "--csv needs a value"},
        {{"--csv", "--xlsx", "x.xlsx"}, "--csv needs a value"},
        {{"--year", "2024"}, "--year belongs to the reconciliation"},
        {{"--bogus", "1"}, "unknown option --bogus"},
    };
    for (const Case& c : cases) {
        const ToolResult r = RunTool(Invoice(ledger, c.extra));
        EXPECT_EQ(r.status, 2) << c.message;
        EXPECT_TRUE(r.Err().contains(QString::fromUtf8(c.message))) << r.Err().toStdString();
        EXPECT_TRUE(r.Err().contains("usage:")) << c.message;
    }
    for (const QStringList& args :
         {QStringList{"make-demo-db"}, QStringList{"make-demo-db", ""},
          QStringList{"make-demo-db", "a", "b"}, QStringList{"make-demo-db", "a", "--seed"},
          QStringList{"make-demo-db", "a", "--seed", "1", "--seed", "2"},
          QStringList{"make-demo-db", "a", "--tickets", "many"}}) {
        const ToolResult r = RunTool(args, {.workDir = dir.path()});
        EXPECT_EQ(r.status, 2) << args.join(' ').toStdString();
        EXPECT_TRUE(r.Err().contains("usage:"));
    }
    EXPECT_TRUE(QDir(dir.path()).isEmpty());
}
