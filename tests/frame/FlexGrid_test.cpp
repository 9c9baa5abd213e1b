#include "frame/FlexGrid.h"

#include <gtest/gtest.h>

#include <QStringList>
#include <algorithm>
#include <functional>

#include "core/RuntimeError.h"

using namespace yunqi;

namespace {

long ErrorNumberOf(const std::function<void()>& call) {
    try {
        call();
    } catch (const RuntimeError& e) {
        return e.number();
    }
    return 0;
}

bool HasSpan(const std::vector<FlexGrid::Span>& spans, int row, int col, int rowSpan, int colSpan) {
    return std::any_of(spans.begin(), spans.end(), [&](const FlexGrid::Span& s) {
        return s.row == row && s.col == col && s.rowSpan == rowSpan && s.colSpan == colSpan;
    });
}

// Two header rows as the ticket statements lay them.
FlexGrid Header(const QStringList& top, const QStringList& bottom) {
    FlexGrid g(2, int(top.size()), 2, 1);
    g.SetMergeCells(FlexGrid::MergeRestrictColumns);
    for (int c = 0; c < top.size(); ++c) {
        g.SetTextMatrix(0, c, top[c]);
        g.SetTextMatrix(1, c, bottom[c]);
    }
    g.SetMergeRow(0, true);
    return g;
}

}  // namespace

TEST(FlexGridState, StartsAsTheControlDoes) {
    FlexGrid g;
    EXPECT_EQ(g.Rows(), 2);
    EXPECT_EQ(g.Cols(), 2);
    EXPECT_EQ(g.FixedRows(), 1);
    EXPECT_EQ(g.FixedCols(), 1);
    EXPECT_EQ(g.Row(), 0);
    EXPECT_EQ(g.TextMatrix(1, 1), "");
    EXPECT_EQ(g.RowHeight(1), FlexGrid::kStandardRowHeight);
    EXPECT_EQ(g.ColWidth(1), FlexGrid::kStandardColWidth);
    EXPECT_EQ(g.CellBackColorAt(1, 1), -1);
    EXPECT_EQ(g.MergeCells(), FlexGrid::MergeNever);
}

TEST(FlexGridState, RowsGrowKeepingTextAndComeBackBlank) {
    FlexGrid g(2, 3);
    g.SetTextMatrix(0, 2, "头");
    g.SetTextMatrix(1, 1, "甲");
    g.SetRows(4);
    g.SetTextMatrix(3, 2, "乙");
    g.SetRowHeight(3, 600);
    g.SetCellBackColorAt(3, 0, 0xFFC0C0);
    g.SetRow(3);
    g.SetCol(2);
    g.SetCellAlignment(FlexGrid::AlignRightCenter);
    EXPECT_EQ(g.CellAlignmentAt(3, 2), FlexGrid::AlignRightCenter);
    EXPECT_EQ(g.CellAlignmentAt(3, 1), -1);
    EXPECT_EQ(g.TextMatrix(0, 2), "头");
    EXPECT_EQ(g.TextMatrix(1, 1), "甲");
    EXPECT_EQ(g.TextMatrix(2, 1), "");

    // A page fill starts from the header again: the old rows must not show through.
    g.SetRows(2);
    g.SetRows(4);
    EXPECT_EQ(g.TextMatrix(1, 1), "甲");
    EXPECT_EQ(g.TextMatrix(3, 2), "");
    EXPECT_EQ(g.RowHeight(3), FlexGrid::kStandardRowHeight);
    EXPECT_EQ(g.CellBackColorAt(3, 0), -1);
    EXPECT_EQ(g.CellAlignmentAt(3, 2), -1);
}

TEST(FlexGridState, ColsGrowKeepingEachCellInPlace) {
    FlexGrid g(3, 2);
    g.SetTextMatrix(0, 0, "a");
    g.SetTextMatrix(0, 1, "b");
    g.SetTextMatrix(2, 1, "c");
    g.SetCellBackColorAt(2, 1, 0xC0E0FF);
    g.SetCellAlignmentAt(2, 1, FlexGrid::AlignRightCenter);
    g.SetColWidth(1, 1400);
    g.SetCols(5);
    EXPECT_EQ(g.TextMatrix(0, 0), "a");
    EXPECT_EQ(g.TextMatrix(0, 1), "b");
    EXPECT_EQ(g.TextMatrix(2, 1), "c");
    EXPECT_EQ(g.CellBackColorAt(2, 1), 0xC0E0FF);
    EXPECT_EQ(g.CellAlignmentAt(2, 1), FlexGrid::AlignRightCenter);
    EXPECT_EQ(g.TextMatrix(0, 2), "");
    EXPECT_EQ(g.ColWidth(1), 1400);

    g.SetColWidth(4, 3800);
    g.SetMergeCol(4, true);
    g.SetCols(3);
    g.SetCols(5);
    EXPECT_EQ(g.TextMatrix(2, 1), "c");
    EXPECT_EQ(g.ColWidth(4), FlexGrid::kStandardColWidth);
    EXPECT_FALSE(g.MergeCol(4));
}

TEST(FlexGridState, CurrentCellFollowsShrinkAndIsChecked) {
    FlexGrid g(5, 4);
    g.SetRow(4);
    g.SetCol(3);
    g.SetText("当前");
    EXPECT_EQ(g.TextMatrix(4, 3), "当前");
    EXPECT_EQ(g.Text(), "当前");
    g.SetRows(3);
    g.SetCols(2);
    EXPECT_EQ(g.Row(), 2);
    EXPECT_EQ(g.Col(), 1);

    EXPECT_EQ(ErrorNumberOf([&] { g.SetRow(3); }), 30009);
    EXPECT_EQ(ErrorNumberOf([&] { g.SetCol(-1); }), 30010);
    EXPECT_EQ(ErrorNumberOf([&] { g.TextMatrix(3, 0); }), 381);
    EXPECT_EQ(ErrorNumberOf([&] { g.SetTextMatrix(0, 2, "x"); }), 381);
    EXPECT_EQ(ErrorNumberOf([&] { g.ColWidth(2); }), 381);
    EXPECT_EQ(ErrorNumberOf([&] { g.SetRowHeight(3, 600); }), 381);
}

TEST(FlexGridState, AlignmentOfCellsAndOfFixedCellsAreSeparate) {
    FlexGrid g(2, 3);
    g.SetFixedAlignment(1, FlexGrid::AlignCenterCenter);
    g.SetColAlignment(1, FlexGrid::AlignRightCenter);
    EXPECT_EQ(g.FixedAlignment(1), FlexGrid::AlignCenterCenter);
    EXPECT_EQ(g.ColAlignment(1), FlexGrid::AlignRightCenter);
    EXPECT_EQ(g.ColAlignment(2), FlexGrid::AlignGeneral);
    g.SetRowHeight(1, 600);
    EXPECT_EQ(g.RowHeight(1), 600);
    EXPECT_EQ(g.RowHeight(0), FlexGrid::kStandardRowHeight);
}

TEST(FlexGridMerge, BandsAcrossTheMarkedRowAndColumnsDownBothHeaderRows) {
    FlexGrid g =
        Header({"序", "增值税发票", "增值税发票", "增值税发票", "收据", "物业费", "物业费"},
               {"序", "专用发票", "普通发票", "电子发票", "收据", "金额", "税额6%"});
    for (int c : {0, 4}) g.SetMergeCol(c, true);
    const auto spans = g.MergedSpans();
    EXPECT_TRUE(HasSpan(spans, 0, 1, 1, 3));
    EXPECT_TRUE(HasSpan(spans, 0, 5, 1, 2));
    EXPECT_TRUE(HasSpan(spans, 0, 0, 2, 1));
    EXPECT_TRUE(HasSpan(spans, 0, 4, 2, 1));
    EXPECT_EQ(spans.size(), 4u);
}

TEST(FlexGridMerge, NothingMergesUnmarkedOrWhenOff) {
    // Row 1 is not marked, so its equal neighbours stay apart; column 1 is
    // not marked, so its equal cells stay apart.
    FlexGrid g = Header({"序", "甲", "乙"}, {"序", "甲", "甲"});
    EXPECT_TRUE(g.MergedSpans().empty());
    g.SetMergeCol(0, true);
    EXPECT_EQ(g.MergedSpans().size(), 1u);
    g.SetMergeCells(FlexGrid::MergeNever);
    EXPECT_TRUE(g.MergedSpans().empty());
}

TEST(FlexGridMerge, ACellInABandDoesNotMergeDown) {
    // Two items of one name side by side make one band; a marked column
    // inside it still doesn't span the two rows.
    FlexGrid g = Header({"收据", "收据", "合计"}, {"收据", "金额", "合计"});
    g.SetMergeCol(0, true);
    g.SetMergeCol(2, true);
    const auto spans = g.MergedSpans();
    EXPECT_TRUE(HasSpan(spans, 0, 0, 1, 2));
    EXPECT_TRUE(HasSpan(spans, 0, 2, 2, 1));
    EXPECT_EQ(spans.size(), 2u);
}

TEST(FlexGridMerge, BodyRowsNeverMerge) {
    FlexGrid g = Header({"序", "付款人"}, {"序", "付款人"});
    g.SetMergeCol(1, true);
    g.SetRows(4);
    g.SetTextMatrix(2, 1, "甲");
    g.SetTextMatrix(3, 1, "甲");
    g.SetMergeRow(2, true);
    const auto spans = g.MergedSpans();
    EXPECT_EQ(spans.size(), 1u);
    EXPECT_TRUE(HasSpan(spans, 0, 1, 2, 1));
}
