#include "frame/FlexGrid.h"

#include <gtest/gtest.h>

#include <QStringList>
#include <algorithm>
#include <functional>
#include <tuple>

#include "core/RuntimeError.h"
#include "support/ErrorNumber.h"

using namespace yunqi;

// A new grid is the control's: two by two, one fixed row and column, no merging.
TEST(FlexGridState, StartsAsTheControlDoes) {
    FlexGrid g;
    EXPECT_EQ(
        std::make_tuple(g.Rows(), g.Cols(), g.FixedRows(), g.FixedCols(), g.Row(), g.MergeCells()),
        std::make_tuple(2, 2, 1, 1, 0, int(FlexGrid::MergeNever)));
}

// Growing keeps every cell in place; what shrinks away comes back blank, so
// that a page fill, which starts from the header again, shows no old row.
TEST(FlexGridState, ResizingKeepsCellsInPlaceAndLostOnesComeBackBlank) {
    FlexGrid g(3, 2);
    // Text, back colour, own alignment, row height, column width, column merge.
    auto cell = [&](int r, int c) {
        return std::make_tuple(g.TextMatrix(r, c), g.CellBackColorAt(r, c), g.CellAlignmentAt(r, c),
                               g.RowHeight(r), g.ColWidth(c), g.MergeCol(c));
    };
    auto set = [&](int r, int c, const QString& text, long back, int height, int width) {
        g.SetTextMatrix(r, c, text);
        g.SetCellBackColorAt(r, c, back);
        g.SetCellAlignmentAt(r, c, FlexGrid::AlignRightCenter);
        g.SetRowHeight(r, height);
        g.SetColWidth(c, width);
        g.SetMergeCol(c, true);
    };
    const int row = FlexGrid::kStandardRowHeight, col = FlexGrid::kStandardColWidth;
    g.SetTextMatrix(0, 1, "头");
    set(2, 1, "甲", 0xC0E0FF, 450, 1400);
    g.SetRows(5);
    g.SetCols(4);
    EXPECT_EQ(cell(2, 1),
              std::make_tuple("甲", 0xC0E0FF, int(FlexGrid::AlignRightCenter), 450, 1400, true));
    EXPECT_EQ(cell(2, 0), std::make_tuple("", -1, -1, 450, col, false));
    EXPECT_EQ(cell(4, 3), std::make_tuple("", -1, -1, row, col, false));

    set(4, 3, "乙", 0xFFC0C0, 600, 3800);
    g.SetRows(2);
    g.SetCols(3);
    g.SetRows(5);
    g.SetCols(4);
    EXPECT_EQ(g.TextMatrix(0, 1), "头");
    EXPECT_EQ(cell(4, 3), std::make_tuple("", -1, -1, row, col, false));
}

TEST(FlexGridState, CurrentCellFollowsShrinkAndIsChecked) {
    FlexGrid g(5, 4);
    g.SetRow(4);
    g.SetCol(3);
    g.SetText("当前");
    EXPECT_EQ(g.TextMatrix(4, 3), "当前");
    g.SetCellAlignment(FlexGrid::AlignRightCenter);
    EXPECT_EQ(g.CellAlignmentAt(4, 3), FlexGrid::AlignRightCenter);
    g.SetRows(3);
    g.SetCols(2);
    EXPECT_EQ(std::make_pair(g.Row(), g.Col()), std::make_pair(2, 1));

    EXPECT_EQ(test::ErrorNumberOf([&] { g.SetRow(3); }), 30009);
    EXPECT_EQ(test::ErrorNumberOf([&] { g.SetCol(-1); }), 30010);
    EXPECT_EQ(test::ErrorNumberOf([&] { g.TextMatrix(3, 0); }), 381);
    EXPECT_EQ(test::ErrorNumberOf([&] { g.SetTextMatrix(0, 2, "x"); }), 381);
    EXPECT_EQ(test::ErrorNumberOf([&] { g.ColWidth(2); }), 381);
    EXPECT_EQ(test::ErrorNumberOf([&] { g.SetRowHeight(3, 600); }), 381);
}

// Two header rows as the ticket statements lay them, row 0 marked: equal
// neighbours merge across it, and down a marked column unless a band holds
// the cell; body rows never merge.
TEST(FlexGridMerge, SpansOfTheHeaderRows) {
    struct Case {
        const char* name;
        QStringList top, bottom;
        std::vector<int> mergeCols;
        std::vector<std::tuple<int, int, int, int>> spans;  // row, col, rows, cols
        int mode = FlexGrid::MergeRestrictColumns;
    };
    const Case cases[] = {
        {"invoice header",
         {"序", "增值税发票", "增值税发票", "增值税发票", "收据", "物业费", "物业费"},
         {"序", "专用发票", "普通发票", "电子发票", "收据", "金额", "税额6%"},
         {0, 4},
         {{0, 0, 2, 1}, {0, 1, 1, 3}, {0, 4, 2, 1}, {0, 5, 1, 2}}},
        {"unmarked column, unmarked row", {"序", "甲", "乙"}, {"序", "甲", "甲"}, {}, {}},
        {"one marked column", {"序", "甲", "乙"}, {"序", "甲", "甲"}, {0}, {{0, 0, 2, 1}}},
        {"merging off", {"序", "甲", "乙"}, {"序", "甲", "甲"}, {0}, {}, FlexGrid::MergeNever},
        {"a cell in a band does not merge down",
         {"收据", "收据", "合计"},
         {"收据", "金额", "合计"},
         {0, 2},
         {{0, 0, 1, 2}, {0, 2, 2, 1}}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        FlexGrid g(4, int(c.top.size()), 2, 1);
        g.SetMergeCells(c.mode);
        // Body rows equal to the header and each other, one marked.
        for (int col = 0; col < c.top.size(); ++col)
            for (int r = 0; r < 4; ++r) g.SetTextMatrix(r, col, r ? c.bottom[col] : c.top[col]);
        for (int r : {0, 2}) g.SetMergeRow(r, true);
        for (int col : c.mergeCols) g.SetMergeCol(col, true);
        decltype(c.spans) spans;
        for (const FlexGrid::Span& s : g.MergedSpans())
            spans.emplace_back(s.row, s.col, s.rowSpan, s.colSpan);
        std::sort(spans.begin(), spans.end());
        EXPECT_EQ(spans, c.spans);
    }
}
