#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

#include "cli/StatementCli.h"
#include "reports/Reports.h"
#include "support/GoldenText.h"
#include "support/TestDatabase.h"
#include "support/ZipParts.h"

using namespace yunqi;

// What each statement writes for one small ledger: the SQL texts it sends
// and the CSV byte for byte, and the workbook's sheet and styles, one element
// a line, with the files under tests/fixtures/golden/<report>.
// YUNQI_UPDATE_GOLDEN=1 rewrites the files instead (review the diff!).
namespace {

enum class Output { SqlLog, Csv, Workbook };

struct GoldenCase {
    const ReportDefinition* report;
    Output output;
};

std::string NameOf(const GoldenCase& c) {
    static const char* const kOutputs[] = {"SqlLog", "Csv", "Workbook"};
    return c.report->command.toStdString() + '_' + kOutputs[int(c.output)];
}

void PrintTo(const GoldenCase& c, std::ostream* os) { *os << NameOf(c); }

// Every output of every report: a report without its fixtures fails.
std::vector<GoldenCase> Cases() {
    std::vector<GoldenCase> cases;
    for (const ReportDefinition* report : AllReports())
        for (Output output : {Output::SqlLog, Output::Csv, Output::Workbook})
            cases.push_back({report, output});
    return cases;
}

QByteArray ReadAll(const QString& path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

class GoldenStatements : public ::testing::TestWithParam<GoldenCase> {};

TEST_P(GoldenStatements, MatchesTheFixture) {
    const GoldenCase& c = GetParam();
    TestDatabase db;
    FillGoldenLedger(db);
    QTemporaryDir dir;
    const QString report = c.report->command;
    const QString csv = dir.filePath("out.csv"), log = dir.filePath("sql.log"),
                  xlsx = dir.filePath("out.xlsx");
    QStringList args{report, "--database", db.Path(), "--dept", "D1"};
    if (c.report->conditions == ConditionsKind::YearMonths)
        args += QStringList{"--year", "2024", "--months", "03-03"};
    else
        args +=
            QStringList{"--from", "2024-03-01", "--to", "2024-03-31", "--ratio", "07=66.7/33.3"};
    args << "--csv" << csv << "--sql-log" << log << "--xlsx" << xlsx;
    ASSERT_EQ(RunStatementCli(args), 0);
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
            // The one sheet under the library's default name, as the office's
            // macros and links look it up.
            const auto book = parts.find(QStringLiteral("xl/workbook.xml"));
            ASSERT_NE(book, parts.end());
            EXPECT_TRUE(book->second.contains("<sheet name=\"Sheet1\" sheetId=\"1\""))
                << book->second.toStdString();
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

INSTANTIATE_TEST_SUITE_P(Reports, GoldenStatements, ::testing::ValuesIn(Cases()),
                         [](const auto& info) { return NameOf(info.param); });

}  // namespace
