// The four statements through the office's stack (Qt's ODBC driver, unixODBC,
// FreeTDS) from a loopback server that answers them from the golden ledger
// (tds_listener.py --reply serve): what yunqi-statement writes equals the
// embedded run's golden files, whatever the TDS version and however the server
// keeps its text; text it cannot read right ends the run, old files untouched.
#include <gtest/gtest.h>

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>

#include "core/RuntimeError.h"
#include "db/SqlDialect.h"
#include "reports/Reports.h"
#include "support/GoldenText.h"
#include "support/TdsListener.h"
#include "support/TestDatabase.h"
#include "support/ZipParts.h"

using namespace yunqi;

namespace {

const QString kGolden = QStringLiteral(YUNQI_TEST_DIR "/fixtures/golden/");

QByteArray ReadAll(const QString& path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

bool Write(const QString& path, const QByteArray& bytes) {
    QFile f(path);
    return f.open(QIODevice::WriteOnly) && f.write(bytes) == bytes.size();
}

// The golden ledger, and the SQLite form of each SQL text the statements
// send (as their golden logs hold them), for the server to run.
struct ServedLedger {
    TestDatabase db;
    QTemporaryDir dir;
    QString translations = dir.filePath("translations.json");
    ServedLedger() {
        FillGoldenLedger(db);
        QJsonObject map;
        for (const ReportDefinition* report : AllReports())
            for (const QByteArray& line :
                 ReadAll(kGolden + report->command + "/statement.sql").split('\n')) {
                if (line.isEmpty()) continue;
                const QString sql = QString::fromUtf8(line);
                try {
                    map[sql] = AdaptToSQLite(sql);
                } catch (const RuntimeError&) {
                }
            }
        Write(translations, QJsonDocument(map).toJson());
    }
};

const ServedLedger& Ledger() {
    static const ServedLedger* ledger = new ServedLedger;
    return *ledger;
}

enum class Expect { Golden, Refused, Failed };

struct ServerRow {
    const char* name;
    const char* report;
    const char* edition;
    QStringList listener;  // what the server holds and does
    const char* setting;   // a line more in [DBConfig]
    Expect expect;
    const char* says;  // in standard error, for a refusal or a failure
    // FreeTDS registered as "TDS" (in a driver list of the run's own).
    bool registeredAsTds = false;
};
void PrintTo(const ServerRow& row, std::ostream* os) { *os << row.name; }

const QStringList kGbk{"--collation", "Chinese_PRC_CI_AS"};
const QStringList kNvarchar{"--text", "nvarchar"};
const QStringList kLatin1{"--collation", "Latin1_General_CI_AS"};
const QStringList kSqlLatin1{"--collation", "SQL_Latin1_General_CP1_CI_AS"};
const char* const kAsGbk = "VarcharEncoding=GBK";
const char* const kRefusal = "错误信息：数据库的排序规则为 ";

// Money amounts by default; decimal and float on some rows.
const ServerRow kRows[] = {
    {"invoiceGbk71", "invoice", "2000", kGbk, "", Expect::Golden, ""},
    {"invoiceGbk74", "invoice", "2012", kGbk + QStringList{"--amounts", "float"}, "",
     Expect::Golden, ""},
    {"invoiceNvarchar71", "invoice", "2000", kNvarchar, "", Expect::Golden, ""},
    {"invoiceNvarchar74", "invoice", "2019", kNvarchar, "", Expect::Golden, ""},
    {"invoiceRegisteredAsTds", "invoice", "2000", kGbk, "Driver=TDS", Expect::Golden, "", true},
    {"preinvoiceGbk71", "preinvoice", "2000", kGbk, "", Expect::Golden, ""},
    {"preinvoiceGbk74", "preinvoice", "2012", kGbk, "", Expect::Golden, ""},
    {"preinvoiceNvarchar71", "preinvoice", "2000", kNvarchar + QStringList{"--amounts", "decimal"},
     "", Expect::Golden, ""},
    {"preinvoiceNvarchar74", "preinvoice", "2012", kNvarchar, "", Expect::Golden, ""},
    {"parkingGbk71", "parking", "2000", kGbk + QStringList{"--amounts", "decimal"}, "",
     Expect::Golden, ""},
    {"parkingGbk74", "parking", "2012", kGbk, "", Expect::Golden, ""},
    {"parkingNvarchar71", "parking", "2000", kNvarchar, "", Expect::Golden, ""},
    {"parkingNvarchar74", "parking", "2012", kNvarchar + QStringList{"--amounts", "float"}, "",
     Expect::Golden, ""},
    {"reconciliationGbk71", "reconciliation", "2000", kGbk, "", Expect::Golden, ""},
    {"reconciliationGbk74", "reconciliation", "2012", kGbk, "", Expect::Golden, ""},
    {"reconciliationNvarchar71", "reconciliation", "2000", kNvarchar, "", Expect::Golden, ""},
    {"reconciliationNvarchar74", "reconciliation", "2012",
     kNvarchar + QStringList{"--amounts", "float"}, "", Expect::Golden, ""},
    // GBK bytes under a Latin1 label: refused at start-up, read right as GBK
    // when the settings say so.
    {"invoiceLatin1Refused", "invoice", "2012", kLatin1, "", Expect::Refused,
     "Latin1_General_CI_AS"},
    {"parkingSqlLatin1Refused", "parking", "2000", kSqlLatin1, "", Expect::Refused,
     "SQL_Latin1_General_CP1_CI_AS"},
    {"invoiceLatin1AsGbk", "invoice", "2012", kLatin1, kAsGbk, Expect::Golden, ""},
    {"preinvoiceLatin1AsGbk", "preinvoice", "2000", kSqlLatin1, kAsGbk, Expect::Golden, ""},
    {"parkingLatin1AsGbk", "parking", "2000", kLatin1, kAsGbk, Expect::Golden, ""},
    {"reconciliationLatin1AsGbk", "reconciliation", "2012", kSqlLatin1, kAsGbk, Expect::Golden, ""},
    // A value whose bytes are no text: named, never dropped or altered.
    {"payerNotGbk", "invoice", "2000", kGbk + QStringList{"--bad", "甲公司"}, "", Expect::Failed,
     "列“付款人”（票据编号 0001）的值无法正确读出"},
    {"payerBadByteInside", "preinvoice", "2012", kGbk + QStringList{"--bad-inside", "乙,\"丙\""},
     "", Expect::Failed, "列“付款人”（票据编号 0002）的值无法正确读出"},
    {"payerNotGbkAsGbk", "invoice", "2012", kLatin1 + QStringList{"--bad", "甲公司"}, kAsGbk,
     Expect::Failed, "列“付款人”（票据编号 0001）的值无法正确读出"},
    {"departmentNotGbk", "parking", "2000", kGbk + QStringList{"--bad", "云栖苑"}, "",
     Expect::Refused, "Chinese_PRC_CI_AS，职能部门名称无法正确读出"},
    // The connection lost in the rows, and an error token.
    {"droppedInRows", "invoice", "2012",
     kGbk + QStringList{"--drop-on", "B1.物业费", "--drop-after", "2"}, "", Expect::Failed,
     "yunqi-statement: error "},
    {"errorToken", "parking", "2000", kGbk + QStringList{"--error-on", "收款方式列表"}, "",
     Expect::Failed, "Invalid object name '票据'."},
};

class FreeTdsStatements : public ::testing::TestWithParam<ServerRow> {
  protected:
    void SetUp() override {
        QFile list(QStringLiteral("/etc/odbcinst.ini"));
        if (!list.open(QIODevice::ReadOnly) || !list.readAll().contains("[FreeTDS]"))
            GTEST_SKIP() << "the FreeTDS ODBC driver is not installed (package tdsodbc)";
    }
};

TEST_P(FreeTdsStatements, WriteTheEmbeddedRunsFilesOrEndWithTheCause) {
    const ServerRow& row = GetParam();
    TdsListener listener(QStringList{"--reply", "serve", "--ledger", Ledger().db.Path(),
                                     "--translations", Ledger().translations} +
                         row.listener);
    ASSERT_FALSE(listener.port_.isEmpty()) << listener.refusal_.toStdString();

    QTemporaryDir dir;
    ASSERT_TRUE(QDir(dir.path()).mkpath("云栖账房"));
    ASSERT_TRUE(Write(dir.filePath("云栖账房/云栖账房.ini"),
                      "[DBConfig]\nEdition=" + QByteArray(row.edition) + "\nSvr=127.0.0.1," +
                          listener.port_.toLatin1() +
                          "\nUID=出纳\nPWD=secret\nDBname=账房\nDriver=FreeTDS\n" + row.setting +
                          "\n"));
    const QString report = QString::fromLatin1(row.report);
    const QString csv = dir.filePath("out.csv"), xlsx = dir.filePath("out.xlsx"),
                  log = dir.filePath("sql.log");
    ASSERT_TRUE(Write(csv, "old") && Write(xlsx, "old"));
    QStringList args{report, "--dept", "D1"};
    if (report == QLatin1String("reconciliation"))
        args += QStringList{"--year", "2024", "--months", "03-03"};
    else
        args +=
            QStringList{"--from", "2024-03-01", "--to", "2024-03-31", "--ratio", "07=66.7/33.3"};
    args << "--csv" << csv << "--xlsx" << xlsx << "--sql-log" << log;

    QProcess tool;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert("XDG_CONFIG_HOME", dir.path());
    if (row.registeredAsTds) {
        ASSERT_TRUE(Write(dir.filePath("odbcinst.ini"), "[TDS]\nDriver = libtdsodbc.so\n"));
        env.insert("ODBCSYSINI", dir.path());
    }
    tool.setProcessEnvironment(env);
    tool.start(QStringLiteral(YUNQI_BIN_DIR "/yunqi-statement"), args);
    ASSERT_TRUE(tool.waitForFinished(90000));
    const QString err = QString::fromUtf8(tool.readAllStandardError());
    const QString golden = kGolden + report + '/';
    // The edition's TDS version, and the program's name as it is.
    const QJsonObject login = listener.Records();
    EXPECT_EQ(login["version"].toString(),
              row.edition == std::string("2000") ? "0x71000001" : "0x74000004");
    EXPECT_EQ(login["app"].toString(), "yunqi-statement");

    if (row.expect != Expect::Golden) {
        EXPECT_EQ(tool.exitCode(), 1) << err.toStdString();
        if (row.expect == Expect::Refused) {
            EXPECT_TRUE(err.contains(kRefusal + QString::fromUtf8(row.says)) &&
                        err.contains("数据库连接失败!"))
                << err.toStdString();
        }
        EXPECT_TRUE(err.contains(QString::fromUtf8(row.says))) << err.toStdString();
        EXPECT_EQ(ReadAll(csv), "old");
        EXPECT_EQ(ReadAll(xlsx), "old");
        return;
    }
    ASSERT_EQ(tool.exitCode(), 0) << err.toStdString();
    const QString csvDifference = FirstDifference(ReadAll(csv), ReadAll(golden + "statement.csv"));
    EXPECT_TRUE(csvDifference.isEmpty()) << csvDifference.toStdString();
    const auto parts = ReadZipParts(xlsx);
    for (const char* name : {"xl/worksheets/sheet1.xml", "xl/styles.xml"}) {
        const auto part = parts.find(QString::fromLatin1(name));
        ASSERT_NE(part, parts.end()) << name;
        const QString difference = FirstDifference(
            PrettyXml(part->second), ReadAll(golden + QString::fromLatin1(name).section('/', -1)));
        EXPECT_TRUE(difference.isEmpty()) << name << ": " << difference.toStdString();
    }
    // The start-up's checks come first in the log, then the statement's texts.
    const QList<QByteArray> lines = ReadAll(log).split('\n');
    ASSERT_GT(lines.size(), 3);
    EXPECT_TRUE(lines[0].contains("DatabasePropertyEx") && lines[1].contains("From 票据类型") &&
                lines[2].contains("From 职能部门new"));
    EXPECT_EQ(lines.mid(3).join('\n'), ReadAll(golden + "statement.sql"));
}

INSTANTIATE_TEST_SUITE_P(Rows, FreeTdsStatements, ::testing::ValuesIn(kRows),
                         [](const auto& info) { return std::string(info.param.name); });

}  // namespace
