// The grid view alone: the fixed rows held at the top, the alignments.
#include "frame/widgets/FlexGridView.h"

#include <gtest/gtest.h>

#include "frame/SplitRatios.h"
#include "frame/widgets/EventDriver.h"

using namespace yunqi;
using namespace yunqi::testing;

TEST(FlexGridViewTest, GeneralAlignmentPutsNumbersRightAndTextLeft) {
    struct Case {
        int code;
        const char* text;
        Qt::Alignment expected;
    };
    const Qt::Alignment left = Qt::AlignLeft | Qt::AlignVCenter;
    const Qt::Alignment right = Qt::AlignRight | Qt::AlignVCenter;
    const Case cases[] = {
        {FlexGrid::AlignGeneral, "100.00", right},
        {FlexGrid::AlignGeneral, "-0.00", right},
        {FlexGrid::AlignGeneral, " 12 ", right},
        {FlexGrid::AlignGeneral, "7", right},
        {FlexGrid::AlignGeneral, "现金", left},
        {FlexGrid::AlignGeneral, "合  计", left},
        {FlexGrid::AlignGeneral, "2024-03-10", left},
        {FlexGrid::AlignGeneral, "70%", left},
        {FlexGrid::AlignGeneral, "", left},
        {FlexGrid::AlignLeftCenter, "100.00", left},
        {FlexGrid::AlignCenterCenter, "1", Qt::AlignHCenter | Qt::AlignVCenter},
        {FlexGrid::AlignRightCenter, "甲", right},
        {FlexGrid::AlignLeftTop, "甲", Qt::AlignLeft | Qt::AlignTop},
        {FlexGrid::AlignRightBottom, "甲", Qt::AlignRight | Qt::AlignBottom},
    };
    for (const Case& c : cases)
        EXPECT_EQ(FlexGridView::AlignmentOf(c.code, QString::fromUtf8(c.text)), c.expected)
            << c.code << " " << c.text;
}

// MSFlexGrid2 with more parking items than it can show: its heading row
// stays while the rows scroll, and scrolls sideways with them.
TEST(FlexGridViewTest, SplitRatioHeadingStaysWhileTheRowsScroll) {
    FlexGrid grid = SplitRatios::NewGrid();
    FeeItemList items(1);
    for (int i = 1; i <= 20; ++i) {
        FeeItem item;
        item.ItemCode = QString("P%1").arg(i);
        item.ItemName = QString("停车费%1").arg(i);
        item.Category = "停车收费";
        items.push_back(item);
    }
    SplitRatios::Fill(grid, items);
    QWidget window;
    window.resize(400, 300);
    FlexGridView view(&window);
    view.setGeometry(7, 124, 286, 118);  // the design box of MSFlexGrid2
    view.SetGrid(grid);
    window.show();
    Settle();

    const QPoint heading = view.CellRect(0, 1).center();
    EXPECT_EQ(view.CellAt(heading), std::make_pair(0, 1));
    const QRect firstRow = view.CellRect(1, 1);
    EXPECT_EQ(firstRow.top(), view.CellRect(0, 1).top() + view.FixedRowsView()->rowHeight(0));
    ScrollByClicks(view.verticalScrollBar(), 2);
    ASSERT_GT(view.verticalScrollBar()->value(), 0);
    EXPECT_EQ(view.CellAt(heading), std::make_pair(0, 1));
    EXPECT_GT(view.CellAt(firstRow.center()).first, 1);

    ScrollByClicks(view.horizontalScrollBar(), 2);
    ASSERT_GT(view.horizontalScrollBar()->value(), 0);
    EXPECT_EQ(view.CellRect(0, 3).left(), view.CellRect(5, 3).left());
    EXPECT_EQ(view.CellRect(0, 3).width(), view.CellRect(5, 3).width());
}

TEST(FlexGridViewTest, ClicksReportTheCellFixedRowsIncluded) {
    FlexGrid grid(4, 3, 2, 1);
    grid.SetTextMatrix(0, 1, "甲");
    grid.SetTextMatrix(0, 2, "甲");
    grid.SetMergeRow(0, true);
    grid.SetMergeCells(FlexGrid::MergeRestrictColumns);
    QWidget window;
    window.resize(400, 300);
    FlexGridView view(&window);
    view.setGeometry(0, 0, 300, 200);
    view.SetGrid(grid);
    window.show();
    Settle();
    std::vector<std::pair<int, int>> clicks;
    QObject::connect(&view, &FlexGridView::CellClicked,
                     [&](int r, int c) { clicks.emplace_back(r, c); });
    ClickCell(&view, 0, 2);
    ClickCell(&view, 1, 1);
    ClickCell(&view, 3, 2);
    ASSERT_EQ(clicks.size(), 3u);
    EXPECT_EQ(clicks[0], std::make_pair(0, 1));  // the merged heading is one cell
    EXPECT_EQ(clicks[1], std::make_pair(1, 1));
    EXPECT_EQ(clicks[2], std::make_pair(3, 2));
    EXPECT_EQ(view.FixedRowsView()->columnSpan(0, 1), 2);
}

TEST(FlexGridViewTest, ACellsOwnAlignmentGoesBeforeItsColumns) {
    FlexGrid grid;
    grid.SetRows(4);
    grid.SetCols(2);
    grid.SetFixedRows(2);
    grid.SetColAlignment(1, FlexGrid::AlignLeftCenter);
    grid.SetTextMatrix(2, 1, "现金");
    grid.SetTextMatrix(3, 1, "现金");
    grid.SetCellAlignmentAt(3, 1, FlexGrid::AlignRightCenter);
    FlexGridView view;
    view.SetGrid(grid);
    view.Refresh();
    EXPECT_EQ(view.item(2, 1)->textAlignment(), int(Qt::AlignLeft | Qt::AlignVCenter));
    EXPECT_EQ(view.item(3, 1)->textAlignment(), int(Qt::AlignRight | Qt::AlignVCenter));
}
