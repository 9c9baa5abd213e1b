#include "frame/Pager.h"

#include <gtest/gtest.h>

#include "core/RuntimeError.h"

using namespace yunqi;

using namespace Pager;

TEST(PagerArithmetic, PageSizeRoundsAfterTakingTheHeaderRowOff) {
    EXPECT_EQ(PageSizeFor(7500, 300), 24);
    EXPECT_EQ(PageSizeFor(7000, 300), 22);  // 22.33
    // 21.5 and 20.5: rounding before subtracting would give 21 both times.
    EXPECT_EQ(PageSizeFor(6750, 300), 22);
    EXPECT_EQ(PageSizeFor(6450, 300), 20);
    EXPECT_EQ(PageSizeFor(600, 300), 1);
}

TEST(PagerArithmetic, PageCountAddsAPageOnlyForARemainder) {
    EXPECT_EQ(PageCountOf(10, 5), 2);
    EXPECT_EQ(PageCountOf(11, 5), 3);
    EXPECT_EQ(PageCountOf(22, 22), 1);
    EXPECT_EQ(PageCountOf(23, 22), 2);
    EXPECT_EQ(PageCountOf(1, 22), 1);
    EXPECT_EQ(PageCountOf(0, 22), 0);
    try {
        PageCountOf(3, 0);
        ADD_FAILURE() << "no error for a page size of 0";
    } catch (const RuntimeError& e) {
        EXPECT_EQ(e.number(), 11);
    }
}

TEST(PagerArithmetic, FirstRowOfAPageCountsAcrossPages) {
    EXPECT_EQ(FirstRowOf(1, 22), 1);
    EXPECT_EQ(FirstRowOf(3, 22), 45);
}

TEST(PagerText, PadsToTwoDigitsWithoutCutting) {
    EXPECT_EQ(PageText(1, 3), "第 01 页 共 03 页");
    EXPECT_EQ(PageText(12, 123), "第 12 页 共 123 页");
    EXPECT_EQ(PageText(123, 123), "第 123 页 共 123 页");
    EXPECT_EQ(EmptyPageText(), "第 00 页 共 00 页");
    EXPECT_EQ(PageText(0, 0), EmptyPageText());
}

TEST(PagerImages, StayInsideTheStatement) {
    EXPECT_EQ(TargetPage(PagerImage::First, 3, 5), 1);
    EXPECT_EQ(TargetPage(PagerImage::Last, 3, 5), 5);
    EXPECT_EQ(TargetPage(PagerImage::Previous, 3, 5), 2);
    EXPECT_EQ(TargetPage(PagerImage::Previous, 2, 5), 1);
    EXPECT_EQ(TargetPage(PagerImage::Previous, 1, 5), 1);
    EXPECT_EQ(TargetPage(PagerImage::Previous, 0, 5), 1);
    EXPECT_EQ(TargetPage(PagerImage::Next, 3, 5), 4);
    EXPECT_EQ(TargetPage(PagerImage::Next, 5, 5), 5);
    EXPECT_EQ(TargetPage(PagerImage::Next, 1, 1), 1);
    // A page beyond the count (left by a resize) goes back to the last.
    EXPECT_EQ(TargetPage(PagerImage::Next, 7, 5), 5);
}

TEST(PagerImages, ToolTips) {
    EXPECT_EQ(ToolTipOf(PagerImage::First), "首页");
    EXPECT_EQ(ToolTipOf(PagerImage::Previous), "上一页");
    EXPECT_EQ(ToolTipOf(PagerImage::Next), "下一页");
    EXPECT_EQ(ToolTipOf(PagerImage::Last), "尾页");
}

TEST(PagerPageText, NumericValueRoundedTiesToEven) {
    EXPECT_EQ(PageFromText("2", 3), 2);
    EXPECT_EQ(PageFromText(" 3页", 3), 3);
    EXPECT_EQ(PageFromText("2.5", 3), 2);
    EXPECT_EQ(PageFromText("3.5", 4), 4);
    EXPECT_EQ(PageFromText("1.5", 4), 2);
    // The range is checked before rounding.
    EXPECT_EQ(PageFromText("0.4", 3), 0);
}

TEST(PagerPageText, NothingOutsideOneToPageCount) {
    EXPECT_FALSE(PageFromText("0", 3));
    EXPECT_FALSE(PageFromText("abc", 3));
    EXPECT_FALSE(PageFromText("", 3));
    EXPECT_FALSE(PageFromText("-1", 3));
    EXPECT_FALSE(PageFromText("4", 3));
    EXPECT_FALSE(PageFromText("3.5", 3));
    EXPECT_FALSE(PageFromText("1", 0));  // before any run
}
