#include "db/SqlDialect.h"

#include <gtest/gtest.h>

#include "core/RuntimeError.h"
#include "support/TestDatabase.h"

using namespace yunqi;

// Readable texts in failure reports.
static void PrintTo(const QString& text, std::ostream* os) { *os << text.toStdString(); }

namespace {

QStringList Rows(DatabaseSession& session, const QString& sql) {
    QStringList rows;
    for (Recordset rs = session.Open(sql); !rs.AtEnd(); rs.MoveNext()) {
        QStringList fields;
        for (int i = 0; i < rs.FieldCount(); ++i)
            fields << (rs.IsNull(i) ? QStringLiteral("Null") : rs.Value(i).toString());
        rows << fields.join(QLatin1Char('|'));
    }
    return rows;
}

}  // namespace

TEST(SqlDialectTest, DateStyle112) {
    EXPECT_EQ(AdaptToSQLite("Where Convert(Char(8),开票日期,112) Between '1' And '2'"),
              "Where strftime('%Y%m%d',开票日期) Between '1' And '2'");
    EXPECT_EQ(AdaptToSQLite("x CONVERT(char(6), 票据.收款日期 ,112)<y"),
              "x strftime('%Y%m',票据.收款日期)<y");
    EXPECT_EQ(AdaptToSQLite("convert ( CHAR ( 8 ) ,\n收款日期,\t112 )"),
              "strftime('%Y%m%d',收款日期)");
    // Brackets and commas inside the value, and a Convert inside a Convert.
    EXPECT_EQ(AdaptToSQLite("Convert(Char(8),Coalesce(收款日期,开票日期),112)"),
              "strftime('%Y%m%d',Coalesce(收款日期,开票日期))");
    EXPECT_EQ(AdaptToSQLite("Convert(Char(6),Convert(Char(8),a,112),112)"),
              "strftime('%Y%m',strftime('%Y%m%d',a))");
    // Other widths and styles are not ours to guess.
    EXPECT_EQ(AdaptToSQLite("Convert(Char(10),a,120)"), "Convert(Char(10),a,120)");
    EXPECT_EQ(AdaptToSQLite("Convert(varchar(8),a,112)"), "Convert(varchar(8),a,112)");
}

TEST(SqlDialectTest, LenAndLiteralsLeftAlone) {
    EXPECT_EQ(AdaptToSQLite("Order by len(职能部门编号),职能部门编号"),
              "Order by length(职能部门编号),职能部门编号");
    EXPECT_EQ(AdaptToSQLite("Select LEN (a), x.len(b), lenx(c) From t"),
              "Select length (a), x.len(b), lenx(c) From t");
    const QString literals =
        "Select 1 From t Where memo='len(x) Convert(Char(8),d,112) In ()' And n='it''s In ()'";
    EXPECT_EQ(AdaptToSQLite(literals), literals);
}

TEST(SqlDialectTest, EmptyInListRaisesTheServersError) {
    for (const QString sql : {"Select 1 Where x In ( )", "Select 1 Where x in()",
                              "Select 1 Where 票据类型代号 IN (\n)"}) {
        try {
            AdaptToSQLite(sql);
            ADD_FAILURE() << sql.toStdString();
        } catch (const RuntimeError& e) {
            EXPECT_EQ(e.number(), 102);
            EXPECT_EQ(e.description(), "Incorrect syntax near ')'.");
        }
    }
    EXPECT_NO_THROW(AdaptToSQLite("Select 1 Where x In ('01','02')"));
}

TEST(SqlDialectTest, OnNamesBoundAsTheJoinsGo) {
    // dh is setupsfxm's when its join is read, though 税控盘收费项目设置 has DH too.
    EXPECT_EQ(
        AdaptToSQLite("Select 1 From 票据开票数据 inner join setupsfxm on 收费项目代号=dh"
                      " Inner Join 税控盘收费项目设置 ON setupsfxm.dh = 税控盘收费项目设置.DH"),
        "Select 1 From 票据开票数据 inner join setupsfxm on 收费项目代号=setupsfxm.dh"
        " Inner Join 税控盘收费项目设置 ON setupsfxm.dh = 税控盘收费项目设置.DH");
    // Aliases, derived tables and brackets; a name only one table has stays bare.
    EXPECT_EQ(
        AdaptToSQLite("Select 1 From setupsfxm s Left Join (Select DH As 代号 From "
                      "税控盘收费项目设置) As B1 On (dh = B1.代号 Or 代号 Is Null) Inner Join "
                      "税控盘收费项目设置 T On T.DH = s.dh Where dh=''"),
        "Select 1 From setupsfxm s Left Join (Select DH As 代号 From 税控盘收费项目设置) "
        "As B1 On (s.dh = B1.代号 Or 代号 Is Null) Inner Join 税控盘收费项目设置 T On "
        "T.DH = s.dh Where dh=''");
    // The same rule inside a derived table.
    EXPECT_EQ(
        AdaptToSQLite(
            "Select * From (Select xm From setupsfxm join 票据开票数据 on "
            "dh=收费项目代号 join 税控盘收费项目设置 on 税控盘收费项目设置.DH=收费项目代号) A"),
        "Select * From (Select xm From setupsfxm join 票据开票数据 on "
        "setupsfxm.dh=收费项目代号 join 税控盘收费项目设置 on 税控盘收费项目设置.DH=收费项目代号) "
        "A");
}

TEST(SqlDialectTest, OrderByBareNameBoundToTheSelectList) {
    EXPECT_EQ(AdaptToSQLite("Select 票据.票据编号 ,票据.入库单编号 From 票据 LEFT Join (Select "
                            "票据编号 From x) B1 On 1=1 Order by 票据.开票日期,票据编号"),
              "Select 票据.票据编号 ,票据.入库单编号 From 票据 LEFT Join (Select 票据编号 From x) "
              "B1 On 1=1 Order by 票据.开票日期,票据.票据编号");
    EXPECT_EQ(AdaptToSQLite("Select a.x, b.y From a, b Order by y DESC , x"),
              "Select a.x, b.y From a, b Order by b.y DESC , a.x");
    // Aliases and bare list names are SQLite's to bind, as are expressions.
    for (const QString sql :
         {"select a from t order by a desc", "Select t.a As b, u.b From t, u Order by b",
          "Select Distinct t.s As S税率 From t order by  S税率",
          "Select t.a From t Order by Upper(a)"})
        EXPECT_EQ(AdaptToSQLite(sql), sql);
}

TEST(SqlDialectTest, InvoiceShapedTextRunsOnSQLite) {
    TestDatabase db;
    db.Exec(
        "INSERT INTO 票据 (票据编号, 入库单编号, 开票日期, 收款日期, 金额, 付款人, 开票部门编号) "
        "VALUES ('1','S','2024-01-31 10:00:00','2024-02-01 09:00:00',10,'a','D'),"
        "('2','S','2024-02-02 00:00:00',NULL,20,'b','D'),"
        "('3','S','2024-03-01 00:00:00',NULL,30,'c','D')");
    db.Exec("INSERT INTO 票据开票数据 VALUES ('S','1','01',10,NULL),('S','2','01',20,1)");
    auto session = db.Session();
    EXPECT_EQ(
        Rows(
            *session,
            "Select 票据.票据编号, B1.净额 From 票据 LEFT Join (Select 票据开票数据.金额 - (Case "
            "When 票据开票数据.税额 Is Null Then 0 Else 票据开票数据.税额 End) as 净额, 票据编号, "
            "入库单编号 From 票据开票数据) B1 On 票据.票据编号 = B1.票据编号 And 票据.入库单编号 = "
            "B1.入库单编号 Where (Convert(Char(8),开票日期,112) Between '20240201' And "
            "'20240229' Or (Convert(Char(8),收款日期,112) Between '20240201' And '20240229' "
            "And CONVERT(char(8),开票日期,112)<CONVERT(char(8),收款日期,112))) Order by "
            "票据.开票日期,票据编号"),
        (QStringList{"1|10", "2|19"}));
}

TEST(SqlDialectTest, ReconciliationShapedTextsRunOnSQLite) {
    TestDatabase db;
    db.Exec(
        "INSERT INTO 票据 (票据编号, 入库单编号, 开票日期, 收款日期, 金额, 开票部门编号) VALUES "
        "('1','S','2024-02-03 10:00:00','2024-02-04 00:00:00',106,'D'),"
        "('2','S','2024-03-01 00:00:00',NULL,50,'D')");
    db.Exec("INSERT INTO 票据开票数据 VALUES ('S','1','01',106,6),('S','2','02',50,NULL)");
    db.Exec("INSERT INTO 票据入库单 VALUES ('S','P')");
    db.Exec("INSERT INTO 票据类型 VALUES ('P','普通发票',0)");
    db.Exec(
        "INSERT INTO setupsfxm VALUES ('01','物业费',0.06,'物业',''),('02','车位',0,'停车','')");
    db.Exec("INSERT INTO 税控盘收费项目设置 VALUES ('01',0.06,'G1'),('02',NULL,'G1')");
    auto session = db.Session();
    // The fee items of a year's months: 票据开票数据 joins setupsfxm on a bare dh.
    EXPECT_EQ(
        Rows(*session,
             "Select distinct 收费项目代号, 税控盘收费项目设置.税率,XM , 收费类别,显示名称"
             " From 票据 inner join 票据开票数据 on 票据.票据编号  =票据开票数据.票据编号 "
             "And 票据.入库单编号 = 票据开票数据.入库单编号 inner join 票据入库单 on "
             "票据.入库单编号 =票据入库单.入库单编号 inner join 票据类型 on "
             "票据入库单.票据类型编号 =票据类型.票据类型代号 inner join setupsfxm on "
             "收费项目代号=dh Inner Join 税控盘收费项目设置 ON setupsfxm.dh = "
             "税控盘收费项目设置.DH  where CONVERT(char(6),开票日期,112) between '202401' "
             "and '202403' and 作废日期 is null  And 开票部门编号 ='D' And 票据类型代号 In "
             "('P') And 税控盘收费项目设置.管理处 ='G1' group by  "
             "税控盘收费项目设置.税率,收费项目代号,xm,收费类别,显示名称 order by 收费项目代号"),
        (QStringList{"01|0.06|物业费|物业|", "02|Null|车位|停车|"}));
    // A month's figures: derived tables left-joined on the rate, Null rates as 100.
    EXPECT_EQ(Rows(*session,
                   "Select Distinct CASE WHEN A.税率 IS NULL THEN 100 else A.税率 END AS S税率 , "
                   "A1.普通发票 From 税控盘收费项目设置 A LEFT Join (Select SUM(票据开票数据.金额) "
                   "as 普通发票, 税控盘收费项目设置.税率 From 票据开票数据 Inner Join 票据  on "
                   "票据开票数据.入库单编号  =票据.入库单编号 and 票据开票数据.票据编号 = "
                   "票据.票据编号 Inner Join 税控盘收费项目设置 on 收费项目代号=dh Where "
                   "CONVERT(char(6),开票日期,112) ='202402' And 收费项目代号 in ('01','02') "
                   "group by 税控盘收费项目设置.税率) A1 On A.税率=A1.税率 Where (普通发票 Is Not "
                   "Null) order by  S税率"),
              (QStringList{"0.06|106"}));
}
