// The grid view alone, asked what it draws where: texts, alignments and
// colours of cells, the header merges, sizes, and the fixed rows held at the
// top while the body scrolls.
#include "frame/widgets/FlexGridView.h"

#include <gtest/gtest.h>

#include <QBrush>
#include <QHeaderView>

#include "frame/SplitRatios.h"
#include "frame/widgets/EventDriver.h"

using namespace yunqi;
using namespace yunqi::testing;

namespace {

// What the view draws at a cell's place: the role of the cell found there,
// from whichever of its two views covers the point.
QVariant Shown(const FlexGridView& view, int row, int col, int role) {
    const QPoint at = view.CellRect(row, col).center();
    const QTableView* views[] = {view.FixedRowsView(), &view};
    for (const QTableView* v : views) {
        if (!v->isVisible()) continue;
        const QPoint p = v->viewport()->mapFrom(&view, at);
        if (v->viewport()->rect().contains(p)) return v->indexAt(p).data(role);
    }
    return {};
}

// A shown view of a given size over a grid, inside a window.
struct Shell {
    explicit Shell(const FlexGrid& grid, QSize size = {400, 240}) {
        window.resize(size + QSize(20, 20));
        view = new FlexGridView(&window);
        view->setGeometry(QRect(QPoint(0, 0), size));
        view->SetGrid(grid);
        window.show();
        Settle();
    }
    QWidget window;
    FlexGridView* view;
};

}  // namespace

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
        EXPECT_EQ(FlexGridModel::AlignmentOf(c.code, QString::fromUtf8(c.text)), c.expected)
            << c.code << " " << c.text;
}

// Texts, alignments and back colours as drawn, fixed rows and column included.
TEST(FlexGridViewTest, EachCellShowsItsTextAlignmentAndBackColour) {
    FlexGrid grid(5, 4, 2, 1);
    const char* header[2][4] = {{"序", "金额", "方式", "备注"}, {"序", "元", "方式", "备注"}};
    for (int r = 0; r < 2; ++r)
        for (int c = 0; c < 4; ++c) grid.SetTextMatrix(r, c, QString::fromUtf8(header[r][c]));
    grid.SetFixedAlignment(1, FlexGrid::AlignCenterCenter);
    grid.SetCellAlignmentAt(1, 2, FlexGrid::AlignRightCenter);  // not for a fixed row
    grid.SetColAlignment(3, FlexGrid::AlignCenterCenter);
    grid.SetTextMatrix(2, 0, "1");
    grid.SetTextMatrix(2, 1, "100.00");
    grid.SetTextMatrix(2, 2, "现金");
    grid.SetTextMatrix(3, 1, "-5.50");
    grid.SetTextMatrix(3, 2, "合计");
    grid.SetCellAlignmentAt(3, 2, FlexGrid::AlignRightCenter);
    grid.SetCellBackColorAt(3, 1, 0xC0FFFF);  // blue-green-red
    grid.SetCellBackColorAt(4, 0, 0x0000FF);
    Shell shell(grid);
    const QColor button = shell.view->palette().color(QPalette::Button);

    const Qt::Alignment left = Qt::AlignLeft | Qt::AlignVCenter;
    const Qt::Alignment right = Qt::AlignRight | Qt::AlignVCenter;
    const Qt::Alignment centre = Qt::AlignHCenter | Qt::AlignVCenter;
    struct Case {
        const char* what;
        int row, col;
        const char* text;
        Qt::Alignment alignment;
        QColor back;  // invalid: nothing drawn behind the text
    };
    const Case cases[] = {
        {"heading, the fixed alignment", 0, 1, "金额", centre, button},
        {"heading, left by default", 0, 2, "方式", left, button},
        {"fixed row ignores a cell alignment", 1, 2, "方式", left, button},
        {"fixed column", 2, 0, "1", right, button},
        {"number at the general alignment", 2, 1, "100.00", right, {}},
        {"text at the general alignment", 2, 2, "现金", left, {}},
        {"column alignment", 2, 3, "", centre, {}},
        {"own back colour", 3, 1, "-5.50", right, QColor(0xFF, 0xFF, 0xC0)},
        {"own alignment before the column's", 3, 2, "合计", right, {}},
        {"own back colour in the fixed column", 4, 0, "", left, QColor(0xFF, 0, 0)},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        const FlexGridView& view = *shell.view;
        EXPECT_EQ(view.CellAt(view.CellRect(c.row, c.col).center()), std::make_pair(c.row, c.col));
        EXPECT_EQ(Shown(view, c.row, c.col, Qt::DisplayRole).toString(), QString::fromUtf8(c.text));
        EXPECT_EQ(Shown(view, c.row, c.col, Qt::TextAlignmentRole).toInt(), int(c.alignment));
        const QVariant back = Shown(view, c.row, c.col, Qt::BackgroundRole);
        if (c.back.isValid())
            EXPECT_EQ(back.value<QBrush>().color(), c.back);
        else
            EXPECT_EQ(back.value<QBrush>().style(), Qt::NoBrush);
    }
}

// The header of a detail statement: 序 and 日期 down both rows, 费用 across
// its items. Written again, the merges follow the new texts.
TEST(FlexGridViewTest, HeaderMergesAreSpansOfTheFixedRows) {
    FlexGrid grid(6, 6, 2, 1);
    const char* header[2][6] = {{"序", "日期", "费用", "费用", "费用", "合计"},
                                {"序", "日期", "物业", "停车", "水电", "合计"}};
    for (int r = 0; r < 2; ++r)
        for (int c = 0; c < 6; ++c) grid.SetTextMatrix(r, c, QString::fromUtf8(header[r][c]));
    for (int r = 2; r < 6; ++r) grid.SetTextMatrix(r, 2, "费用");  // the body never merges
    grid.SetMergeCells(FlexGrid::MergeRestrictColumns);
    grid.SetMergeRow(0, true);
    for (int c : {0, 1, 2, 5}) grid.SetMergeCol(c, true);
    Shell shell(grid, {500, 200});
    const FlexGridView& view = *shell.view;

    struct Case {
        int row, col, rowSpan, colSpan;
    };
    auto check = [&](std::initializer_list<Case> cases) {
        for (const Case& c : cases) {
            SCOPED_TRACE(::testing::Message() << c.row << "," << c.col);
            EXPECT_EQ(view.FixedRowsView()->rowSpan(c.row, c.col), c.rowSpan);
            EXPECT_EQ(view.FixedRowsView()->columnSpan(c.row, c.col), c.colSpan);
            // Every cell under the span is drawn as its top left one.
            for (int r = c.row; r < c.row + c.rowSpan; ++r)
                for (int k = c.col; k < c.col + c.colSpan; ++k)
                    EXPECT_EQ(view.CellAt(view.CellRect(r, k).center()),
                              std::make_pair(c.row, c.col));
        }
        for (int r = 2; r < 6; ++r) EXPECT_EQ(view.columnSpan(r, 2), 1);
        EXPECT_EQ(view.CellAt(view.CellRect(3, 3).center()), std::make_pair(3, 3));
    };
    check({{0, 0, 2, 1}, {0, 1, 2, 1}, {0, 2, 1, 3}, {1, 2, 1, 1}, {1, 3, 1, 1}, {0, 5, 2, 1}});

    grid.SetTextMatrix(0, 4, "其他");
    grid.SetTextMatrix(0, 1, "时间");
    shell.view->Refresh();
    check({{0, 0, 2, 1}, {0, 1, 1, 1}, {1, 1, 1, 1}, {0, 2, 1, 2}, {0, 4, 1, 1}, {0, 5, 2, 1}});
}

TEST(FlexGridViewTest, WidthsAndHeightsInPixelsAtFifteenTwipsEach) {
    struct Size {
        int twips, pixels;
    };
    const Size widths[] = {{960, 64}, {1000, 66}, {14, 0}, {1500, 100}, {2985, 199}};
    FlexGrid grid(6, 6, 2, 1);
    for (int c = 0; c < 5; ++c) grid.SetColWidth(c, widths[c].twips);
    grid.SetRowHeight(0, 450);
    grid.SetRowHeight(3, 600);
    Shell shell(grid, {700, 300});
    const FlexGridView& view = *shell.view;
    // From one cell's start to the next, in the header and in the body.
    for (int c = 0; c < 5; ++c) {
        SCOPED_TRACE(widths[c].twips);
        for (int r : {0, 4})
            EXPECT_EQ(view.CellRect(r, c + 1).left() - view.CellRect(r, c).left(),
                      widths[c].pixels);
    }
    // The standard 300 twips elsewhere, unless the font needs more.
    const int standard = std::max(20, view.verticalHeader()->minimumSectionSize());
    const int heights[] = {30, standard, standard, 40, standard};
    for (int r = 0; r < 5; ++r) {
        SCOPED_TRACE(r);
        EXPECT_EQ(view.CellRect(r + 1, 1).top() - view.CellRect(r, 1).top(), heights[r]);
    }
}

TEST(FlexGridViewTest, WordWrapAndVisibleFollowTheGrid) {
    FlexGrid grid(4, 3, 2, 1);
    Shell shell(grid);
    FlexGridView& view = *shell.view;
    EXPECT_FALSE(view.wordWrap());
    grid.SetWordWrap(true);
    grid.SetVisible(false);
    view.Refresh();
    EXPECT_TRUE(view.wordWrap());
    EXPECT_TRUE(view.FixedRowsView()->wordWrap());
    EXPECT_TRUE(view.isHidden());
    grid.SetVisible(true);
    view.Refresh();
    EXPECT_FALSE(view.isHidden());
    // A view its window hid is the window's to show.
    view.hide();
    view.Refresh();
    EXPECT_TRUE(view.isHidden());
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
    EXPECT_EQ(Shown(view, 0, 1, Qt::DisplayRole).toString(), grid.TextMatrix(0, 1));
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
    Shell shell(grid, {300, 200});
    std::vector<std::pair<int, int>> clicks;
    QObject::connect(shell.view, &FlexGridView::CellClicked,
                     [&](int r, int c) { clicks.emplace_back(r, c); });
    ClickCell(shell.view, 0, 2);
    ClickCell(shell.view, 1, 1);
    ClickCell(shell.view, 3, 2);
    ASSERT_EQ(clicks.size(), 3u);
    EXPECT_EQ(clicks[0], std::make_pair(0, 1));  // the merged heading is one cell
    EXPECT_EQ(clicks[1], std::make_pair(1, 1));
    EXPECT_EQ(clicks[2], std::make_pair(3, 2));
}

// A write of the same shape keeps the place the user scrolled to; a new shape
// is taken whole. Between a write and the refresh the view may paint: rows
// the grid lost meanwhile show nothing.
TEST(FlexGridViewTest, RefreshAfterAWrite) {
    FlexGrid grid(40, 3, 2, 1);
    for (int r = 2; r < 40; ++r) grid.SetTextMatrix(r, 1, QString::number(r));
    Shell shell(grid, {300, 200});
    FlexGridView& view = *shell.view;
    ScrollByClicks(view.verticalScrollBar(), 2);
    const int scrolled = view.verticalScrollBar()->value();
    ASSERT_GT(scrolled, 0);
    const QPoint underHeader(view.CellRect(1, 1).center().x(), view.CellRect(1, 1).bottom() + 8);
    const int row = view.CellAt(underHeader).first;
    ASSERT_GT(row, 2);

    grid.SetTextMatrix(row, 1, "改");
    view.Refresh();
    EXPECT_EQ(view.verticalScrollBar()->value(), scrolled);
    EXPECT_EQ(Shown(view, row, 1, Qt::DisplayRole).toString(), "改");

    grid.SetRows(3);
    EXPECT_FALSE(view.model()->index(row, 1).data().isValid());
    view.grab();  // paints the rows it was told of, the grid has them no more
    view.Refresh();
    EXPECT_EQ(view.model()->rowCount(), 3);
    EXPECT_EQ(view.verticalScrollBar()->maximum(), 0);
}

// A page of 110,000 rows: the view reads the grid where it draws, so a cell
// written after the refresh shows at once, and the last row scrolls into
// view under the header.
TEST(FlexGridViewTest, AHundredAndTenThousandRowsAreReadNotCopied) {
    const int rows = 110'000 + 2;
    FlexGrid grid(2, 3, 2, 1);
    grid.SetTextMatrix(0, 1, "金额");
    grid.SetRows(rows);
    for (int r = 2; r < rows; ++r) grid.SetTextMatrix(r, 1, QString::number(r - 1));
    Shell shell(grid, {300, 200});
    FlexGridView& view = *shell.view;
    EXPECT_EQ(view.model()->rowCount(), rows);

    view.scrollToBottom();
    Settle();
    const int last = rows - 1;
    EXPECT_EQ(view.CellAt(view.CellRect(last, 1).center()), std::make_pair(last, 1));
    EXPECT_EQ(Shown(view, last, 1, Qt::DisplayRole).toString(), "110000");
    EXPECT_EQ(view.CellAt(view.CellRect(0, 1).center()), std::make_pair(0, 1));
    EXPECT_EQ(Shown(view, 0, 1, Qt::DisplayRole).toString(), "金额");

    grid.SetTextMatrix(last, 1, "合计");
    EXPECT_EQ(Shown(view, last, 1, Qt::DisplayRole).toString(), "合计");
}
