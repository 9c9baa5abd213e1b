#include "cli/StatementOptions.h"

#include <gtest/gtest.h>

#include "cli/BatchOptions.h"
#include "reports/Reports.h"

using namespace yunqi;

namespace {

QString Problem(const QStringList& args, ConditionsKind kind) {
    QString problem;
    const auto o = ParseStatementOptions(args, kind, problem);
    return o ? QString() : problem;
}

const QStringList kWindow{"--dept", "01", "--from", "2024-01-01", "--to", "2024-12-31"};
const QStringList kMonths{"--dept", "01", "--year", "2024", "--months", "01-06"};

}  // namespace

TEST(StatementOptionsTest, TheReconciliationShape) {
    QString problem;
    const auto o = ParseStatementOptions(
        kMonths + QStringList{"--database", "d.sqlite", "--csv", "-", "--xlsx", "r.xlsx"},
        ConditionsKind::YearMonths, problem);
    ASSERT_TRUE(o) << problem.toStdString();
    EXPECT_EQ(o->year, "2024");
    EXPECT_EQ(o->fromMonth, "01");
    EXPECT_EQ(o->toMonth, "06");
    EXPECT_EQ(o->dept, "01");
    EXPECT_EQ(o->database, "d.sqlite");
    EXPECT_EQ(o->csv, "-");
    EXPECT_EQ(o->xlsx, "r.xlsx");
    EXPECT_FALSE(o->from.isValid());
    // The order of the months is the window's check, not the parser's.
    EXPECT_EQ(Problem({"--dept", "01", "--year", "2024", "--months", "12-01"},
                      ConditionsKind::YearMonths),
              QString());
}

// The mistakes every command shares are CommandLine_test's; these are the
// statements' own shapes.
TEST(StatementOptionsTest, EachProblemNamesItsOption) {
    struct Case {
        QStringList args;
        ConditionsKind kind;
        const char* problem;
    };
    const ConditionsKind W = ConditionsKind::DateWindow, M = ConditionsKind::YearMonths;
    const Case cases[] = {
        {{"--dept", "01", "--year", "2024", "--months", "1-6"},
         M,
         "--months wants MM-MM, two months 01 to 12, not 1-6"},
        {{"--dept", "01", "--year", "2024", "--months", "01-13"},
         M,
         "--months wants MM-MM, two months 01 to 12, not 01-13"},
        {{"--dept", "01", "--year", "2024"}, M, "--months is required"},
        {{"--dept", "01", "--months", "01-02"}, M, "--year is required"},
        {kMonths + QStringList{"--from", "2024-01-01"}, M,
         "--from belongs to the date-window statements; this command takes --year and --months"},
        {kMonths + QStringList{"--ratio", "007=70/30"}, M,
         "--ratio belongs to the date-window statements; this command takes --year and --months"},
        {kWindow + QStringList{"--months", "01-02"}, W,
         "--months belongs to the reconciliation; this command takes --from and --to"},
        {kWindow + QStringList{"--from", "2024-02-30"}, W, "--from given twice"},
        {kWindow + QStringList{"--ratio", "007"}, W, "--ratio wants ITEMCODE=DEV/PROP, not 007"},
        {kWindow + QStringList{"--ratio", "007=60/40/0"}, W,
         "--ratio 007=60/40/0: the 物业 share 40/0 is no number"},
        {kWindow + QStringList{"--ratio", "007=60/inf"}, W,
         "--ratio 007=60/inf: the 物业 share inf is no number"},
        {kWindow + QStringList{"--ratio", "7=60/40", "--ratio", "7=50/50"}, W,
         "--ratio for item 7 given twice"},
        {kWindow + QStringList{"--xlsx", "--csv", "a"}, W, "--xlsx needs a value"},
        {QStringList{"-"} + kWindow, W, "unexpected argument -"},
        {kWindow + QStringList{"--timeout", "0"}, W,
         "--timeout wants a whole number of seconds from 1 to 2147483647, not 0"},
        {kMonths + QStringList{"--timeout", "-1"}, M,
         "--timeout wants a whole number of seconds from 1 to 2147483647, not -1"},
        {kWindow + QStringList{"--timeout", "1.5"}, W,
         "--timeout wants a whole number of seconds from 1 to 2147483647, not 1.5"},
        {kMonths + QStringList{"--timeout", "2147483648"}, M,
         "--timeout wants a whole number of seconds from 1 to 2147483647, not 2147483648"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(Problem(c.args, c.kind), QString::fromUtf8(c.problem))
            << c.args.join(' ').toStdString();
    // Ratios of two items, and a 开发商 share as typed (it is summed and shown only).
    QString problem;
    const auto o =
        ParseStatementOptions(kWindow + QStringList{"--ratio", "007=60%/40", "--ratio",
                                                    "008= 55 / 45 ", "--timeout", "172800"},
                              problem);
    ASSERT_TRUE(o) << problem.toStdString();
    EXPECT_EQ(o->timeout, 172800);  // two days: longer than a day is allowed
    EXPECT_EQ(ParseStatementOptions(kWindow, problem)->timeout, 0);  // none by default
    ASSERT_EQ(o->ratios.size(), 2u);
    EXPECT_EQ(o->ratios[0].developer, "60%");
    EXPECT_EQ(o->ratios[1].property, " 45 ");
}

TEST(BatchOptionsTest, ValuesAndTheBatchsOwnShapes) {
    const QStringList base{"--month", "2024-02", "--out", "o"};
    // "--report wants invoice, preinvoice, parking or reconciliation, not invoices"
    QStringList commands;
    for (const ReportDefinition* report : AllReports()) commands << report->command;
    const QString last = commands.takeLast();
    const QByteArray reportProblem =
        ("--report wants " + commands.join(", ") + " or " + last + ", not invoices").toUtf8();
    const std::pair<QStringList, const char*> cases[] = {
        {{"--jobs", "257"}, "--jobs wants a number from 1 to 256, not 257"},
        {{"--report", "invoices"}, reportProblem.constData()},
        {{"--ratio", "7=60/x"}, "--ratio 7=60/x: the 物业 share x is no number"},
        {{"--ratio", "7=60/40", "--ratio", "7=50/50"}, "--ratio for item 7 given twice"},
        {{"--timeout", "abc"},
         "--timeout wants a whole number of seconds from 1 to 2147483647, not abc"},
    };
    for (const auto& [extra, message] : cases) {
        QString problem;
        EXPECT_FALSE(ParseBatchOptions(base + extra, problem));
        EXPECT_EQ(problem, QString::fromUtf8(message));
    }
    QString problem;
    const auto o = ParseBatchOptions(base + QStringList{"--dept", "A", "--dept", "B", "--csv",
                                                        "--csv", "--jobs", "3", "--timeout", "90"},
                                     problem);
    ASSERT_TRUE(o) << problem.toStdString();
    EXPECT_EQ(o->month, QDate(2024, 2, 1));
    EXPECT_EQ(o->depts, QStringList({"A", "B"}));
    EXPECT_TRUE(o->csv);  // a flag may be repeated, as before
    EXPECT_EQ(o->jobs, 3);
    EXPECT_EQ(o->timeout, 90);
    EXPECT_FALSE(o->force);
}
