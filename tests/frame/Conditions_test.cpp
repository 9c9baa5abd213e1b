#include "frame/Conditions.h"

#include <gtest/gtest.h>

#include "core/Dialogs.h"
#include "support/TestDatabase.h"

using namespace yunqi;

using namespace Conditions;

namespace {

class ConditionsDatabase : public ::testing::Test {
  protected:
    void SetUp() override { SetAppDialogs(&dialogs); }
    void TearDown() override { SetAppDialogs(nullptr); }

    QStringList Departments() { return LoadDepartments(*db.Session()); }

    TestDatabase db;
    RecordingDialogs dialogs;
};

}  // namespace

TEST_F(ConditionsDatabase, DepartmentsInForceByCodeLengthThenCode) {
    db.Department("10", "S10", "十区");
    db.Department("2", "S2", "南区");
    db.Department("003", "S3", "西区");
    db.Department("9", "S9", "旧区", "2020-01-01 00:00:00");
    db.Department("11", "S11", "北区");
    EXPECT_EQ(Departments(),
              (QStringList{"2 南区【S2】", "10 十区【S10】", "11 北区【S11】", "003 西区【S3】"}));
    EXPECT_TRUE(dialogs.messages.empty());
}

TEST_F(ConditionsDatabase, SiteNameOnOneLineAndBlanksKeepTheCodes) {
    db.Department("1", "S1", "东区\r\n一期\r\n");
    db.Department("2", "S2", "西区 二期");
    db.Department("3", "S3", "北\n区");
    const QStringList entries = Departments();
    ASSERT_EQ(entries.size(), 3);
    EXPECT_EQ(entries[0], "1 东区一期【S1】");
    EXPECT_EQ(entries[1], "2 西区 二期【S2】");
    EXPECT_EQ(entries[2], "3 北\n区【S3】");  // only pairs go
    EXPECT_EQ(DeptCodeOf(entries[1]), "2");
    EXPECT_EQ(SiteCodeOf(entries[1]), "S2");
    EXPECT_EQ(TitleCaption(entries[1], "增值税开票明细表"), "【西区 二期】增值税开票明细表");
}

TEST_F(ConditionsDatabase, AFailureShowsItsNumberAndKeepsTheEntriesRead) {
    db.Department("1", "S1", "东区");
    db.Department("2", "S2", QString());
    db.Department("3", "S3", "北区");
    EXPECT_EQ(Departments(), QStringList{"1 东区【S1】"});
    ASSERT_EQ(dialogs.messages.size(), 1u);
    EXPECT_EQ(dialogs.messages[0].text, "错误码: 94 错误描述: Invalid use of Null");
    EXPECT_EQ(dialogs.messages[0].title, "系统提示");
    EXPECT_EQ(dialogs.messages[0].icon, MsgIcon::Information);
}

TEST_F(ConditionsDatabase, InvoiceTypesWithoutFixedAmountQuotedInCodeOrder) {
    db.Exec(
        "INSERT INTO 票据类型 VALUES ('02','增值税普通发票',0),('01','增值税专用发票',0),"
        "('09','定额发票',1),('04','收据',NULL),('03','增值税电子发票',0)");
    EXPECT_EQ(LoadInvoiceTypes(*db.Session()), "'01','02','03'");
    db.Exec("DELETE FROM 票据类型 WHERE 定额 = 0");
    EXPECT_EQ(LoadInvoiceTypes(*db.Session()), "");
}

TEST(ConditionsEntry, CodesAndTitleFromTheEntryText) {
    const QString entry = "0105 滨江 花园【G7】";
    EXPECT_EQ(DeptCodeOf(entry), "0105");
    EXPECT_EQ(SiteCodeOf(entry), "G7");
    EXPECT_EQ(DepartmentOf(entry), "滨江 花园");
    EXPECT_EQ(EntryBeforeBracket(entry), "0105 滨江 花园");
    EXPECT_EQ(TitleCaption(entry, "增值税预开票明细表"), "【滨江 花园】增值税预开票明细表");
    EXPECT_EQ(SiteCodeOf("5 区【】"), "");
}

TEST(ConditionsEntry, BracketsInsideTheNameWinOverTheSiteCode) {
    // The first "【" and the first "】" after it count, wherever they stand.
    const QString entry = "7 A【B】C【S7】";
    EXPECT_EQ(SiteCodeOf(entry), "B");
    EXPECT_EQ(DepartmentOf(entry), "A");
    EXPECT_EQ(DeptCodeOf(entry), "7");
}

TEST(ConditionsChecks, DepartmentFirstThenDates) {
    const QDate day(2024, 5, 1);
    EXPECT_EQ(CheckConditions(false, day, day.addDays(-1)), ConditionProblem::NoDepartment);
    EXPECT_EQ(CheckConditions(true, day, day.addDays(-1)), ConditionProblem::EndBeforeStart);
    EXPECT_EQ(CheckConditions(true, day, day), std::nullopt);
    EXPECT_EQ(CheckConditions(true, day, day.addDays(1)), std::nullopt);
}
