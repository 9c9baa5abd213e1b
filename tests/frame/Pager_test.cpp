#include "frame/Pager.h"

#include <gtest/gtest.h>

using Pager::PagerImage;

TEST(PagerTest, PageArithmetic) {
    EXPECT_EQ(Pager::PageSizeFor(5000, 200), 24);  // 25 - 1
    EXPECT_EQ(Pager::PageSizeFor(5100, 200), 24);  // 25.5 - 1 = 24.5: ties to even
    EXPECT_EQ(Pager::PageSizeFor(5300, 200), 26);  // 26.5 - 1 = 25.5: ties to even
    EXPECT_EQ(Pager::PageCountOf(22, 22), 1);
    EXPECT_EQ(Pager::PageCountOf(23, 22), 2);
    EXPECT_EQ(Pager::PageCountOf(0, 22), 0);
    EXPECT_EQ(Pager::FirstRowOf(1, 22), 1);
    EXPECT_EQ(Pager::FirstRowOf(3, 22), 45);
    EXPECT_EQ(Pager::PageText(1, 3), "第 01 页 共 03 页");
    EXPECT_EQ(Pager::PageText(12, 345), "第 12 页 共 345 页");
    EXPECT_EQ(Pager::EmptyPageText(), "第 00 页 共 00 页");
}

TEST(PagerTest, ImagesStopAtTheEnds) {
    EXPECT_EQ(Pager::TargetPage(PagerImage::First, 3, 5), 1);
    EXPECT_EQ(Pager::TargetPage(PagerImage::Previous, 3, 5), 2);
    EXPECT_EQ(Pager::TargetPage(PagerImage::Previous, 1, 5), 1);
    EXPECT_EQ(Pager::TargetPage(PagerImage::Next, 3, 5), 4);
    EXPECT_EQ(Pager::TargetPage(PagerImage::Next, 5, 5), 5);
    EXPECT_EQ(Pager::TargetPage(PagerImage::Last, 3, 5), 5);
    EXPECT_FALSE(Pager::ToolTipOf(PagerImage::First).isEmpty());
    EXPECT_NE(Pager::ToolTipOf(PagerImage::Next), Pager::ToolTipOf(PagerImage::Last));
}

TEST(PagerTest, PageTypedInTheBox) {
    EXPECT_EQ(Pager::PageFromText("2", 5), 2);
    EXPECT_EQ(Pager::PageFromText("2.5", 5), 2);
    EXPECT_EQ(Pager::PageFromText("3.5", 5), 4);
    EXPECT_EQ(Pager::PageFromText("0", 5), std::nullopt);
    EXPECT_EQ(Pager::PageFromText("abc", 5), std::nullopt);
    EXPECT_EQ(Pager::PageFromText("6", 5), std::nullopt);
}
