#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

#include "cli/StatementCli.h"
#include "support/GoldenText.h"
#include "support/TestDatabase.h"
#include "support/ZipParts.h"

using namespace yunqi;

// What each statement writes for one small ledger: the SQL texts it sends
// and the CSV byte for byte, and the workbook's sheet and styles, one element
// a line, with the files under tests/fixtures/golden/<report>.
// YUNQI_UPDATE_GOLDEN=1 rewrites the files instead (review the diff!).
namespace {

// Department D1 in March 2024: an ordinary item 01 and a parking item 07 at
// 33.3 %; paid, pre-invoiced, paid-later, voided, receipt and two-line tickets.
// Both items are set up for the tax device of D1's site, so the
// reconciliation has rows at two rates.
void FillLedger(TestDatabase& db) {
    db.Exec("INSERT INTO 职能部门new VALUES ('D1','一部',NULL)");
    db.Exec("INSERT INTO 设置管理处 VALUES ('D1','GY01','云栖苑')");
    db.Exec("INSERT INTO 税控盘收费项目设置 VALUES ('01',0.06,'GY01'),('07',0.05,'GY01')");
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

enum class Output { SqlLog, Csv, Workbook };

struct GoldenCase {
    const char* name;
    const char* report;
    Output output;
};

void PrintTo(const GoldenCase& c, std::ostream* os) { *os << c.name; }

const GoldenCase kCases[] = {
    {"InvoiceSqlLog", "invoice", Output::SqlLog},
    {"InvoiceCsv", "invoice", Output::Csv},
    {"InvoiceWorkbook", "invoice", Output::Workbook},
    {"PreInvoiceSqlLog", "preinvoice", Output::SqlLog},
    {"PreInvoiceCsv", "preinvoice", Output::Csv},
    {"PreInvoiceWorkbook", "preinvoice", Output::Workbook},
    {"ParkingSqlLog", "parking", Output::SqlLog},
    {"ParkingCsv", "parking", Output::Csv},
    {"ParkingWorkbook", "parking", Output::Workbook},
    {"ReconciliationSqlLog", "reconciliation", Output::SqlLog},
    {"ReconciliationCsv", "reconciliation", Output::Csv},
    {"ReconciliationWorkbook", "reconciliation", Output::Workbook},
};

// Run as reproducible builds run. The library still takes 0 for "now" in
// docProps/core.xml, which is why that part isn't compared.
class FixedCreationTime {
  public:
    FixedCreationTime()
        : old_(qgetenv("SOURCE_DATE_EPOCH")), had_(qEnvironmentVariableIsSet("SOURCE_DATE_EPOCH")) {
        qputenv("SOURCE_DATE_EPOCH", "0");
    }
    ~FixedCreationTime() {
        if (had_)
            qputenv("SOURCE_DATE_EPOCH", old_);
        else
            qunsetenv("SOURCE_DATE_EPOCH");
    }

  private:
    QByteArray old_;
    bool had_;
};

QByteArray ReadAll(const QString& path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

class GoldenStatements : public ::testing::TestWithParam<GoldenCase> {};

TEST_P(GoldenStatements, MatchesTheFixture) {
    const GoldenCase& c = GetParam();
    TestDatabase db;
    FillLedger(db);
    QTemporaryDir dir;
    const QString report = QString::fromLatin1(c.report);
    const QString csv = dir.filePath("out.csv"), log = dir.filePath("sql.log"),
                  xlsx = dir.filePath("out.xlsx");
    QStringList args{report, "--database", db.Path(), "--dept", "D1"};
    // The reconciliation runs over months of a year, the others over a date window.
    if (report == QLatin1String("reconciliation"))
        args += QStringList{"--year", "2024", "--months", "03-03"};
    else
        args +=
            QStringList{"--from", "2024-03-01", "--to", "2024-03-31", "--ratio", "07=66.7/33.3"};
    args << "--csv" << csv << "--sql-log" << log << "--xlsx" << xlsx;
    {
        FixedCreationTime fixed;
        ASSERT_EQ(RunStatementCli(args), 0);
    }
    const QString golden = QStringLiteral(YUNQI_TEST_DIR "/fixtures/golden/") + report + '/';

    switch (c.output) {
        case Output::SqlLog:
            ExpectGolden(ReadAll(log), golden + "statement.sql");
            break;
        case Output::Csv:
            ExpectGolden(ReadAll(csv), golden + "statement.csv");
            break;
        case Output::Workbook: {
            QString problem;
            const auto parts = ReadZipParts(xlsx, &problem);
            ASSERT_FALSE(parts.empty()) << problem.toStdString();
            for (const char* name : {"xl/worksheets/sheet1.xml", "xl/styles.xml"}) {
                const auto part = parts.find(QString::fromLatin1(name));
                ASSERT_NE(part, parts.end()) << name;
                ExpectGolden(PrettyXml(part->second),
                             golden + QString::fromLatin1(name).section('/', -1));
            }
            // Texts are written in the cells today; a shared-strings part, once
            // there, is compared as well, and one that comes or goes fails.
            const QString shared = golden + "sharedStrings.xml";
            const auto strings = parts.find(QStringLiteral("xl/sharedStrings.xml"));
            if (strings != parts.end())
                ExpectGolden(PrettyXml(strings->second), shared);
            else if (qEnvironmentVariableIsSet("YUNQI_UPDATE_GOLDEN"))
                QFile::remove(shared);
            else
                EXPECT_FALSE(QFile::exists(shared)) << "the workbook holds no shared strings";
            break;
        }
    }
    if (const QByteArray keep = qgetenv("YUNQI_KEEP_LEDGER"); !keep.isEmpty())
        QFile::copy(db.Path(), QString::fromUtf8(keep));
}

INSTANTIATE_TEST_SUITE_P(Reports, GoldenStatements, ::testing::ValuesIn(kCases),
                         [](const auto& info) { return std::string(info.param.name); });

}  // namespace
