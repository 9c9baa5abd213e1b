#include "reports/invoice/InvoiceStatementFixture.h"

using namespace yunqi;

// The texts go to the server as they stand; every blank is part of them.
namespace {

const char kExtraction[] =
    "Select distinct 收费项目代号, setupsfxm.税率,XM , 收费类别,显示名称"
    " From 票据"
    " inner join 票据开票数据 on 票据.票据编号  =票据开票数据.票据编号 And 票据.入库单编号 = "
    "票据开票数据.入库单编号"
    " inner join 票据入库单 on 票据.入库单编号 =票据入库单.入库单编号"
    " inner join setupsfxm on 收费项目代号=dh"
    " Where  (作废日期 Is Null Or 作废日期 Is Not Null)"
    " And (Convert(Char(8),开票日期,112) Between '20240101' And '20241231'"
    " Or (Convert(Char(8),收款日期,112) Between '20240101' And '20241231' And "
    "CONVERT(char(8),开票日期,112)<CONVERT(char(8),收款日期,112)))"
    " And 开票部门编号 ='D1'"
    " group by  setupsfxm.税率,收费项目代号,xm,收费类别,显示名称"
    " order by 收费项目代号";

const char kStatistics[] =
    "Select 票据.票据编号 ,票据.入库单编号 , 票据类型.票据类型 ,开票日期, 收款日期, 作废日期, "
    "票据.金额, 收款方式, 付款人, 地址, 票据.被换票票据编号 "
    " ,B1.物业费 , B1.物业费税额"
    " ,B2.停车费KFS ,B2.停车费WY , B2.停车费税额"
    " From 票据"
    " inner join 票据入库单 on 票据.入库单编号 =票据入库单.入库单编号"
    " inner join 票据类型 on 票据入库单.票据类型编号 =票据类型.票据类型代号"
    " LEFT Join ("
    "Select  票据开票数据.金额 - (Case When 票据开票数据.税额 Is Null Then 0 Else "
    "票据开票数据.税额 "
    "End) as 物业费 , 票据开票数据.税额 as 物业费税额, 票据开票数据.票据编号 , "
    "票据开票数据.入库单编号"
    " From 票据开票数据"
    " Inner Join 票据  on 票据开票数据.入库单编号  =票据.入库单编号 and 票据开票数据.票据编号 = "
    "票据.票据编号"
    " Inner Join 票据入库单 on 票据开票数据.入库单编号 =票据入库单.入库单编号"
    " Inner Join 票据类型 on 票据入库单.票据类型编号 =票据类型.票据类型代号"
    " Where  (作废日期 Is Null Or 作废日期 Is Not Null)"
    " And (Convert(Char(8),开票日期,112) Between '20240101' And '20241231'"
    " Or (Convert(Char(8),收款日期,112) Between '20240101' And '20241231' And "
    "CONVERT(char(8),开票日期,112)<CONVERT(char(8),收款日期,112)))"
    " And 收费项目代号 in ('01')"
    " And 开票部门编号 ='D1'"
    " And 票据类型代号 In ('01','02','03','04')"
    ") B1 On 票据.票据编号 = B1.票据编号 And 票据.入库单编号 = B1.入库单编号"
    " LEFT Join ("
    "Select (票据开票数据.金额-(Case When 票据开票数据.税额 Is Null Then 0 Else 票据开票数据.税额 "
    "End)) * 0.333 as 停车费WY,"
    " (票据开票数据.金额 - (Case When 票据开票数据.税额 Is Null Then 0 Else 票据开票数据.税额 "
    "End)) "
    "As 停车费KFS,"
    " 票据开票数据.税额 as 停车费税额, 票据开票数据.票据编号 , 票据开票数据.入库单编号"
    " From 票据开票数据"
    " Inner Join 票据  on 票据开票数据.入库单编号  =票据.入库单编号 and 票据开票数据.票据编号 = "
    "票据.票据编号"
    " Inner Join 票据入库单 on 票据开票数据.入库单编号 =票据入库单.入库单编号"
    " Inner Join 票据类型 on 票据入库单.票据类型编号 =票据类型.票据类型代号"
    " Where  (作废日期 Is Null Or 作废日期 Is Not Null)"
    " And (Convert(Char(8),开票日期,112) Between '20240101' And '20241231'"
    " Or (Convert(Char(8),收款日期,112) Between '20240101' And '20241231' And "
    "CONVERT(char(8),开票日期,112)<CONVERT(char(8),收款日期,112)))"
    " And 收费项目代号 in ('02')"
    " And 开票部门编号 ='D1'"
    " And 票据类型代号 In ('01','02','03','04')"
    ") B2 On 票据.票据编号 = B2.票据编号 And 票据.入库单编号 = B2.入库单编号"
    " Where 票据.开票部门编号 ='D1'"
    " And 票据类型代号 In ('01','02','03','04')"
    " And (物业费 Is Not Null Or 停车费KFS Is Not Null)"
    " And (Convert(Char(8),开票日期,112) Between '20240101' And '20241231'"
    " Or (Convert(Char(8),收款日期,112) Between '20240101' And '20241231' And "
    "CONVERT(char(8),开票日期,112)<CONVERT(char(8),收款日期,112)))"
    " Order by 票据.开票日期,票据编号";

}  // namespace

class InvoiceStatementSql : public InvoiceLedger {};

TEST_F(InvoiceStatementSql, TextsAreExactForOneOrdinaryAndOneParkingItem) {
    Paid("1", "S1", "2024-03-01", "01", 106, "6");
    Paid("2", "S1", "2024-03-02", "02", 105, "5");
    std::vector<QString> sent;
    session = db.Session();
    session->SetSqlLog([&](const QString& sql) { sent.push_back(sql); });
    InvoiceStatement statement(*session);

    EXPECT_EQ(InvoiceStatement::FeeItemSql(conditions), QString::fromUtf8(kExtraction));
    statement.ExtractFeeItems(conditions, grid2, grid1);
    ASSERT_EQ(grid2.Rows(), 2);
    grid2.SetTextMatrix(1, SplitRatios::kDeveloperCol, QStringLiteral("66.7"));
    grid2.SetTextMatrix(1, SplitRatios::kPropertyCol, QStringLiteral("33.3"));
    EXPECT_EQ(statement.StatisticsSql(conditions, grid2), QString::fromUtf8(kStatistics));

    // What is sent is the same text, before any rewrite for the engine.
    statement.BuildGridHeader(grid1, grid2);
    ASSERT_TRUE(statement.RunStatistics(conditions, grid2, 100));
    ASSERT_GE(sent.size(), 3u);
    EXPECT_EQ(sent[0], QString::fromUtf8(kExtraction));
    EXPECT_EQ(sent[1], QString::fromUtf8(kStatistics));
    EXPECT_EQ(sent[2], QStringLiteral("Select * From 收款方式列表"));
}

TEST_F(InvoiceStatementSql, RatioTextFollowsThePropertyCell) {
    Paid("2", "S1", "2024-03-02", "02", 105, "5");
    session = db.Session();
    InvoiceStatement statement(*session);
    statement.ExtractFeeItems(conditions, grid2, grid1);
    for (const auto& [cell, text] : std::vector<std::pair<QString, QString>>{
             {"30", " * 0.3 as"}, {"100", " * 1 as"}, {"0", " * 0 as"}, {"12.5", " * 0.125 as"}}) {
        grid2.SetTextMatrix(1, SplitRatios::kPropertyCol, cell);
        EXPECT_TRUE(statement.StatisticsSql(conditions, grid2).contains(text))
            << cell.toStdString();
    }
}
