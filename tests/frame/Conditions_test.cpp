#include "frame/Conditions.h"

#include <gtest/gtest.h>

#include "frame/Dialogs.h"
#include "support/TestDatabase.h"

TEST(ConditionsTest, DepartmentListLeavesOutTerminatedAndOrdersByLength) {
    TestDatabase db;
    db.Exec(
        "INSERT INTO 职能部门new VALUES ('10','十部',NULL),('2','二部',NULL),"
        "('01','一部',NULL),('03','三部','2020-01-01 00:00:00'),('7','七部',NULL)");
    db.Exec(
        "INSERT INTO 设置管理处 VALUES ('10','GY10','十区'),('2','GY2','二区\r\n北'),"
        "('01','GY01','云栖 商务'),('03','GY03','三区'),('7','GY7',NULL)");
    auto session = db.Session();
    RecordingDialogs dialogs;
    SetAppDialogs(&dialogs);
    const QStringList entries = Conditions::LoadDepartments(*session);
    SetAppDialogs(nullptr);
    // A Null name stops the list with the report form of the error.
    ASSERT_EQ(entries, (QStringList{"2 二区北【GY2】"}));
    ASSERT_EQ(dialogs.messages.size(), 1u);
    EXPECT_EQ(dialogs.messages[0].text, "错误码: 94 错误描述: Invalid use of Null");
    EXPECT_EQ(dialogs.messages[0].title, "系统提示");

    db.Exec("UPDATE 设置管理处 SET gyd_name = '七区' WHERE 对应部门代号 = '7'");
    EXPECT_EQ(Conditions::LoadDepartments(*session),
              (QStringList{"2 二区北【GY2】", "7 七区【GY7】", "01 云栖 商务【GY01】",
                           "10 十区【GY10】"}));
    const QString entry = "01 云栖 商务【GY01】";
    EXPECT_EQ(Conditions::DeptCodeOf(entry), "01");
    EXPECT_EQ(Conditions::SiteCodeOf(entry), "GY01");
    EXPECT_EQ(Conditions::TitleCaption(entry, "增值税开票明细表"), "【云栖 商务】增值税开票明细表");
    EXPECT_EQ(Conditions::EntryBeforeBracket(entry), "01 云栖 商务");
}

TEST(ConditionsTest, InvoiceTypesAndTheTwoChecks) {
    TestDatabase db;
    db.Exec("INSERT INTO 票据类型 VALUES ('03','电子发票',0),('01','专用发票',0),('09','定额',1)");
    auto session = db.Session();
    EXPECT_EQ(Conditions::LoadInvoiceTypes(*session), "'01','03'");

    using Conditions::CheckConditions;
    using Conditions::ConditionProblem;
    const QDate d(2024, 5, 1);
    EXPECT_EQ(CheckConditions(false, d, d), ConditionProblem::NoDepartment);
    EXPECT_EQ(CheckConditions(true, d, d.addDays(-1)), ConditionProblem::EndBeforeStart);
    EXPECT_EQ(CheckConditions(false, d, d.addDays(-1)), ConditionProblem::NoDepartment);
    EXPECT_EQ(CheckConditions(true, d, d), std::nullopt);
    EXPECT_FALSE(Conditions::MessageOf(ConditionProblem::NoDepartment).isEmpty());
    EXPECT_NE(Conditions::MessageOf(ConditionProblem::NoDepartment),
              Conditions::MessageOf(ConditionProblem::EndBeforeStart));
}
