#include "shell/SqlDialect.h"

#include <gtest/gtest.h>

#include "frame/RuntimeError.h"
#include "support/TestDatabase.h"

TEST(SqlDialectTest, RewritesWhatSQLiteLacks) {
    EXPECT_EQ(AdaptToSQLite("Where Convert(Char(8),开票日期,112) Between '1' And '2'"),
              "Where strftime('%Y%m%d',开票日期) Between '1' And '2'");
    EXPECT_EQ(AdaptToSQLite("x CONVERT(char(6), 票据.收款日期 ,112)<y"),
              "x strftime('%Y%m',票据.收款日期)<y");
    EXPECT_EQ(AdaptToSQLite("Order by len(职能部门编号),职能部门编号"),
              "Order by length(职能部门编号),职能部门编号");
    // A bare ORDER BY name is qualified as the select list has it.
    EXPECT_EQ(AdaptToSQLite("Select 票据.票据编号 ,票据.入库单编号 From 票据 LEFT Join (Select "
                            "票据编号 From x) B1 On 1=1 Order by 票据.开票日期,票据编号"),
              "Select 票据.票据编号 ,票据.入库单编号 From 票据 LEFT Join (Select 票据编号 From x) "
              "B1 On 1=1 Order by 票据.开票日期,票据.票据编号");
    EXPECT_EQ(AdaptToSQLite("select a from t order by a desc"), "select a from t order by a desc");
    try {
        AdaptToSQLite("Select 1 Where x In ( )");
        FAIL();
    } catch (const RuntimeError& e) {
        EXPECT_EQ(e.number(), 102);
        EXPECT_EQ(e.description(), "Incorrect syntax near ')'.");
    }
}

TEST(SqlDialectTest, ReportShapedTextRunsOnSQLite) {
    TestDatabase db;
    db.Exec(
        "INSERT INTO 票据 (票据编号, 入库单编号, 开票日期, 收款日期, 金额, 付款人, 开票部门编号) "
        "VALUES ('1','S','2024-01-31 10:00:00','2024-02-01 09:00:00',10,'a','D'),"
        "('2','S','2024-02-02 00:00:00',NULL,20,'b','D'),"
        "('3','S','2024-03-01 00:00:00',NULL,30,'c','D')");
    db.Exec("INSERT INTO 票据开票数据 VALUES ('S','1','01',10,NULL),('S','2','01',20,1)");
    auto session = db.Session();
    Recordset rs = session->Open(
        "Select 票据.票据编号, B1.净额 From 票据 LEFT Join (Select 票据开票数据.金额 - (Case When "
        "票据开票数据.税额 Is Null Then 0 Else 票据开票数据.税额 End) as 净额, 票据编号, "
        "入库单编号 "
        "From 票据开票数据) B1 On 票据.票据编号 = B1.票据编号 And 票据.入库单编号 = B1.入库单编号 "
        "Where (Convert(Char(8),开票日期,112) Between '20240201' And '20240229' Or "
        "(Convert(Char(8),收款日期,112) Between '20240201' And '20240229' And "
        "CONVERT(char(8),开票日期,112)<CONVERT(char(8),收款日期,112))) Order by "
        "票据.开票日期,票据编号");
    QStringList got;
    for (; !rs.AtEnd(); rs.MoveNext()) got << rs.Value(0).toString() + "=" + rs.Value(1).toString();
    EXPECT_EQ(got, (QStringList{"1=10", "2=19"}));
}
