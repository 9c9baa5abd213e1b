#include "db/SqlDialect.h"

#include <gtest/gtest.h>

using namespace yunqi;

// Readable texts in failure reports.
static void PrintTo(const QString& text, std::ostream* os) { *os << text.toStdString(); }

// The statements' own texts run through the dialect in every golden statement;
// these are the rules one by one.
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
