#include "frame/SplitRatios.h"

#include <gtest/gtest.h>

#include "frame/RuntimeError.h"

namespace {
FeeItem Item(const char* code, const char* name, const char* category) {
    FeeItem f;
    f.ItemCode = QString("'%1'").arg(code);
    f.ItemName = name;
    f.Category = category;
    return f;
}
}  // namespace

TEST(SplitRatiosTest, FillResetsToSeventyThirtyPerParkingItem) {
    FlexGrid grid = SplitRatios::NewGrid();
    ASSERT_EQ(grid.Cols(), 5);
    EXPECT_EQ(grid.ColWidth(4), 0);
    FeeItemList items{FeeItem{}, Item("01", "物业费", "物业"), Item("07", "停车费", "停车收费"),
                      Item("08", "临停", "临时停车")};
    SplitRatios::Fill(grid, items);
    ASSERT_EQ(grid.Rows(), 3);
    EXPECT_EQ(grid.TextMatrix(1, 0), "1");
    EXPECT_EQ(grid.TextMatrix(1, 1), "停车费");
    EXPECT_EQ(grid.TextMatrix(2, 1), "临停");
    EXPECT_EQ(grid.TextMatrix(2, 2), "70");
    EXPECT_EQ(grid.TextMatrix(2, 3), "30");
    EXPECT_EQ(grid.TextMatrix(2, 4), "'08'");
    grid.SetTextMatrix(1, 2, "60");
    SplitRatios::Fill(grid, items);
    EXPECT_EQ(grid.TextMatrix(1, 2), "70");
    SplitRatios::Fill(grid, FeeItemList{FeeItem{}});
    EXPECT_EQ(grid.Rows(), 1);
}

TEST(SplitRatiosTest, RatioTextAndTheSumRule) {
    FlexGrid grid = SplitRatios::NewGrid();
    SplitRatios::Fill(grid, FeeItemList{FeeItem{}, Item("07", "停车费", "停车")});
    for (const auto& [cell, text] : std::vector<std::pair<QString, QString>>{
             {"30", "0.3"}, {"33.3", "0.333"}, {"100", "1"}, {"0", "0"}}) {
        grid.SetTextMatrix(1, 3, cell);
        EXPECT_EQ(SplitRatios::RatioText(grid, 1), text);
    }
    grid.SetTextMatrix(1, 3, "三十");
    try {
        SplitRatios::RatioText(grid, 1);
        FAIL();
    } catch (const RuntimeError& e) {
        EXPECT_EQ(e.number(), 13);
    }
    grid.SetTextMatrix(1, 2, "60");
    grid.SetTextMatrix(1, 3, "40");
    EXPECT_TRUE(SplitRatios::SumIsHundred(grid, 1));
    grid.SetTextMatrix(1, 3, "30");
    EXPECT_FALSE(SplitRatios::SumIsHundred(grid, 1));
    grid.SetTextMatrix(1, 2, "66.7");
    grid.SetTextMatrix(1, 3, "33.3");
    EXPECT_TRUE(SplitRatios::SumIsHundred(grid, 1));
}
