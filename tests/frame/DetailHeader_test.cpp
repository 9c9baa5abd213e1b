#include "frame/DetailHeader.h"

#include <gtest/gtest.h>

#include "frame/SplitRatios.h"
#include "reports/invoice/InvoiceStatementFixture.h"

namespace {

QStringList Row(const FlexGrid& g, int r) {
    QStringList out;
    for (int c = 0; c < g.Cols(); ++c) out << g.TextMatrix(r, c);
    return out;
}

}  // namespace

TEST(DetailHeaderTest, TaxHeadingIsThePlainPercent) {
    EXPECT_EQ(DetailHeader::TaxHeading(0.05), "税额5%");
    EXPECT_EQ(DetailHeader::TaxHeading(0), "税额0%");
    EXPECT_EQ(DetailHeader::TaxHeading(0.13), "税额13%");
    EXPECT_EQ(DetailHeader::TaxHeading(0.035), "税额3.5%");
}

class InvoiceHeader : public InvoiceLedger {};

TEST_F(InvoiceHeader, DefaultHeaderKeepsItsTwoWidthQuirks) {
    session = db.Session();
    InvoiceStatement statement(*session);
    statement.InitGridHeader(grid1);
    ASSERT_EQ(grid1.Cols(), 9);
    EXPECT_EQ(Row(grid1, 0), (QStringList{"序", "开票日期", "增值税发票", "增值税发票",
                                          "增值税发票", "收据", "合计", "收款方式", "付款人"}));
    EXPECT_EQ(Row(grid1, 1), (QStringList{"序", "开票日期", "专用发票", "普通发票", "电子发票",
                                          "收据", "合计", "收款方式", "付款人"}));
    EXPECT_EQ(grid1.ColWidth(6), 900);
    EXPECT_EQ(grid1.ColWidth(7), 900);
    EXPECT_EQ(grid1.ColWidth(8), 1200);
    EXPECT_EQ(grid1.ColWidth(5), 2000);
}

TEST_F(InvoiceHeader, ItemsLayTheirColumnsAndSpans) {
    Paid("1", "S1", "2024-03-01", "01", 106, "6");
    Paid("2", "S1", "2024-03-02", "02", 105, "5");
    session = db.Session();
    InvoiceStatement statement(*session);
    statement.InitGridHeader(grid1);
    statement.ExtractFeeItems(conditions, grid2, grid1);
    EXPECT_EQ(statement.FeeColumnCount(), 5);
    ASSERT_EQ(grid1.Cols(), 14);
    EXPECT_EQ(Row(grid1, 0).mid(6), (QStringList{"物业费", "物业费", "停车费", "停车费", "停车费",
                                                 "合计", "收款方式", "付款人"}));
    EXPECT_EQ(Row(grid1, 1).mid(6), (QStringList{"金额", "税额6%", "开发商70%", "物业30%", "税额5%",
                                                 "合计", "收款方式", "付款人"}));
    EXPECT_EQ(grid1.ColWidth(0), 500);
    EXPECT_EQ(grid1.ColWidth(7), 1200);
    EXPECT_EQ(grid1.ColWidth(11), 1400);
    EXPECT_EQ(grid1.ColWidth(12), 900);
    EXPECT_EQ(grid1.ColWidth(13), 3800);
    EXPECT_EQ(grid1.MergeCells(), FlexGrid::MergeRestrictColumns);

    // Bands across row 0, and the marked columns down both rows.
    std::set<std::tuple<int, int, int, int>> spans;
    for (const auto& s : grid1.MergedSpans()) spans.insert({s.row, s.col, s.rowSpan, s.colSpan});
    EXPECT_TRUE(spans.count({0, 2, 1, 3}));   // 增值税发票
    EXPECT_TRUE(spans.count({0, 6, 1, 2}));   // 物业费
    EXPECT_TRUE(spans.count({0, 8, 1, 3}));   // 停车费
    EXPECT_TRUE(spans.count({0, 0, 2, 1}));   // 序
    EXPECT_TRUE(spans.count({0, 13, 2, 1}));  // 付款人
    EXPECT_FALSE(spans.count({0, 6, 2, 1}));  // fee columns don't merge down

    // A changed ratio shows at the next build.
    grid2.SetTextMatrix(1, 2, "60");
    grid2.SetTextMatrix(1, 3, "40");
    EXPECT_EQ(grid1.TextMatrix(1, 8), "开发商70%");
    statement.BuildGridHeader(grid1, grid2);
    EXPECT_EQ(grid1.TextMatrix(1, 8), "开发商60%");
    EXPECT_EQ(grid1.TextMatrix(1, 9), "物业40%");
}
