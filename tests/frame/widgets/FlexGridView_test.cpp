// The grid view alone, asked what it draws where: cells, sizes, header merges,
// and the fixed rows held at the top while the body scrolls.
#include "frame/widgets/FlexGridView.h"

#include <gtest/gtest.h>

#include <QBrush>
#include <QHeaderView>

#include "frame/widgets/EventDriver.h"

using namespace yunqi;
using namespace yunqi::testing;

namespace {

// What the view draws at a cell's place: the role of the cell found there,
// from whichever of its two views covers the point.
QVariant Shown(const FlexGridView& view, int row, int col, int role = Qt::DisplayRole) {
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
struct Shell : QWidget {
    Shell(const FlexGrid& grid, QSize size) : view(*new FlexGridView(this)) {
        resize(size + QSize(20, 20));
        view.setGeometry(QRect(QPoint(0, 0), size));
        view.SetGrid(grid);
        show();
        Settle();
    }
    FlexGridView& view;
};

std::pair<int, int> Cell(int row, int col) { return {row, col}; }

}  // namespace

// Texts, alignments and back colours as drawn, fixed rows and column included;
// widths and heights in pixels at fifteen twips each.
TEST(FlexGridViewTest, EachCellShowsItsTextAlignmentBackColourAndSize) {
    FlexGrid grid(6, 7, 2, 1);  // the last two columns only for their widths
    const char* texts[6][5] = {
        {"序", "金额", "方式", "备注", "附"}, {"序", "元", "方式", "备注", "附"},
        {"1", "100.00", "现金", "", "甲"},    {"", "-5.50", "合计", "", ""},
        {"", " 12 ", "70%", "", ""},          {"", "-0.00", "2024-03-10", "", ""}};
    for (int r = 0; r < 6; ++r)
        for (int c = 0; c < 5; ++c) grid.SetTextMatrix(r, c, QString::fromUtf8(texts[r][c]));
    grid.SetFixedAlignment(1, FlexGrid::AlignCenterCenter);
    grid.SetCellAlignmentAt(1, 2, FlexGrid::AlignRightCenter);  // not for a fixed row
    grid.SetColAlignment(3, FlexGrid::AlignCenterCenter);
    grid.SetColAlignment(4, FlexGrid::AlignRightBottom);
    grid.SetCellAlignmentAt(3, 2, FlexGrid::AlignRightCenter);
    grid.SetCellAlignmentAt(3, 4, FlexGrid::AlignLeftTop);
    grid.SetCellBackColorAt(3, 1, 0xC0FFFF);  // blue-green-red
    grid.SetCellBackColorAt(4, 0, 0x0000FF);
    const std::pair<int, int> widths[] = {{960, 64},   {1000, 66}, {1500, 100},
                                          {2985, 199}, {1200, 80}, {14, 0}};  // twips, pixels
    for (int c = 0; c < 6; ++c) grid.SetColWidth(c, widths[c].first);
    grid.SetRowHeight(0, 450);
    grid.SetRowHeight(3, 600);
    Shell shell(grid, {760, 300});
    FlexGridView& view = shell.view;
    const QColor button = view.palette().color(QPalette::Button);
    const Qt::Alignment left = Qt::AlignLeft | Qt::AlignVCenter,
                        right = Qt::AlignRight | Qt::AlignVCenter,
                        centre = Qt::AlignHCenter | Qt::AlignVCenter;
    // Row, column, alignment, back colour (invalid: nothing drawn behind the text).
    struct Case {
        int row, col;
        Qt::Alignment alignment;
        QColor back;
    };
    const Case cases[] = {
        // Headings: the fixed alignment, left by default, a cell's own ignored.
        {0, 1, centre, button},
        {0, 2, left, button},
        {1, 2, left, button},
        // The fixed column; the general alignment, numbers right and text left.
        {2, 0, right, button},
        {2, 1, right, {}},
        {2, 2, left, {}},
        {4, 1, right, {}},
        {4, 2, left, {}},
        {5, 1, right, {}},
        {5, 2, left, {}},
        // A column's alignment, a cell's own before it, the other codes; own back colours.
        {2, 3, centre, {}},
        {3, 2, right, {}},
        {2, 4, Qt::AlignRight | Qt::AlignBottom, {}},
        {3, 4, Qt::AlignLeft | Qt::AlignTop, {}},
        {3, 1, right, QColor(0xFF, 0xFF, 0xC0)},
        {4, 0, left, QColor(0xFF, 0, 0)}};
    for (const Case& c : cases) {
        SCOPED_TRACE(::testing::Message() << c.row << "," << c.col);
        EXPECT_EQ(Shown(view, c.row, c.col).toString(), QString::fromUtf8(texts[c.row][c.col]));
        EXPECT_EQ(Shown(view, c.row, c.col, Qt::TextAlignmentRole).toInt(), int(c.alignment));
        const QBrush back = Shown(view, c.row, c.col, Qt::BackgroundRole).value<QBrush>();
        EXPECT_EQ(back.style() == Qt::NoBrush ? QColor() : back.color(), c.back);
    }
    // From one cell's start to the next, in the header and in the body.
    for (int c = 0; c < 6; ++c)
        for (int r : {0, 4})
            EXPECT_EQ(view.CellRect(r, c + 1).left() - view.CellRect(r, c).left(),
                      widths[c].second);
    // The standard 300 twips elsewhere, unless the font needs more.
    const int standard = std::max(20, view.verticalHeader()->minimumSectionSize());
    const int heights[] = {30, standard, standard, 40, standard};
    for (int r = 0; r < 5; ++r)
        EXPECT_EQ(view.CellRect(r + 1, 1).top() - view.CellRect(r, 1).top(), heights[r]) << r;
}

// The header of a detail statement: 序 and 日期 down both rows, 费用 across
// its items; held at the top while the body scrolls, and moved sideways with
// it. Written again, the merges follow the new texts and the body stays where
// the user scrolled it. Word wrap and visibility follow the grid.
TEST(FlexGridViewTest, HeaderSpansStayWhileTheBodyScrollsAndTheViewFollowsTheGrid) {
    FlexGrid grid(40, 8, 2, 1);
    const char* header[2][8] = {{"序", "日期", "费用", "费用", "费用", "合计", "甲", "乙"},
                                {"序", "日期", "物业", "停车", "水电", "合计", "甲", "乙"}};
    for (int c = 0; c < 8; ++c) {
        for (int r : {0, 1}) grid.SetTextMatrix(r, c, QString::fromUtf8(header[r][c]));
        grid.SetColWidth(c, 900);
    }
    for (int r = 2; r < 40; ++r) grid.SetTextMatrix(r, 2, "费用");  // the body never merges
    grid.SetMergeCells(FlexGrid::MergeRestrictColumns);
    grid.SetMergeRow(0, true);
    for (int c : {0, 1, 2, 5}) grid.SetMergeCol(c, true);
    Shell shell(grid, {400, 200});
    FlexGridView& view = shell.view;
    // A font taller than the design rows: the held rows grow and are not cut.
    QFont tall = view.font();
    tall.setPixelSize(30);
    view.setFont(tall);
    view.Refresh();

    // Each heading cell of the first six columns is drawn as the top left one
    // of its span, given as row * 10 + column.
    auto check = [&](const int(&drawnAs)[2][6]) {
        for (int r : {0, 1})
            for (int c = 0; c < 6; ++c)
                EXPECT_EQ(view.CellAt(view.CellRect(r, c).center()),
                          Cell(drawnAs[r][c] / 10, drawnAs[r][c] % 10))
                    << r << "," << c;
        for (int r = 2; r < 40; ++r) EXPECT_EQ(view.columnSpan(r, 2), 1);
    };
    check({{0, 1, 2, 2, 2, 5}, {0, 1, 12, 13, 14, 5}});
    // A click on the merged heading is one on its top left cell.
    std::vector<std::pair<int, int>> clicks;
    QObject::connect(&view, &FlexGridView::CellClicked, [&](int r, int c) {
        clicks.push_back({r, c});
    });
    ClickCell(&view, 0, 3);
    ClickCell(&view, 3, 2);
    EXPECT_EQ(clicks, (std::vector{Cell(0, 2), Cell(3, 2)}));

    const QPoint heading = view.CellRect(0, 1).center();
    const QRect firstRow = view.CellRect(2, 1);
    EXPECT_EQ(firstRow.top(), view.CellRect(0, 3).top() + view.FixedRowsView()->rowHeight(0) +
                                  view.FixedRowsView()->rowHeight(1));
    ASSERT_GT(view.FixedRowsView()->rowHeight(1), 30);
    ScrollByClicks(view.verticalScrollBar(), 2);
    const int scrolled = view.verticalScrollBar()->value(),
              row = view.CellAt(firstRow.center()).first;
    ASSERT_GT(row, 2);
    EXPECT_EQ(view.CellAt(heading), Cell(0, 1));

    grid.SetTextMatrix(0, 4, "其他");
    grid.SetTextMatrix(0, 1, "时间");
    grid.SetTextMatrix(row, 1, "改");
    view.Refresh();
    check({{0, 1, 2, 2, 4, 5}, {0, 11, 12, 13, 14, 5}});
    EXPECT_EQ(view.verticalScrollBar()->value(), scrolled);
    EXPECT_EQ(Shown(view, row, 1).toString(), "改");

    ScrollByClicks(view.horizontalScrollBar(), 2);
    ASSERT_GT(view.horizontalScrollBar()->value(), 0);
    EXPECT_EQ(view.CellRect(1, 3).left(), view.CellRect(row, 3).left());

    // The pager hides the grid and wraps its words while it fills a page; a
    // view its window hid stays hidden.
    grid.SetWordWrap(true);
    for (bool visible : {false, true}) {
        grid.SetVisible(visible);
        view.Refresh();
        EXPECT_EQ(view.isHidden(), !visible);
    }
    EXPECT_TRUE(view.wordWrap() && view.FixedRowsView()->wordWrap());
    view.hide();
    view.Refresh();
    EXPECT_TRUE(view.isHidden());
}

// A page of 110,000 rows: the view reads the grid where it draws, so a cell
// written after the refresh shows at once, and the last row scrolls into
// view under the header. A page fill shrinks the grid before the refresh: the
// view may paint meanwhile, and rows the grid lost show nothing.
TEST(FlexGridViewTest, AHundredAndTenThousandRowsAreReadNotCopied) {
    const int rows = 110'000 + 2;
    FlexGrid grid(2, 3, 2, 1);
    grid.SetTextMatrix(0, 1, "金额");
    grid.SetRows(rows);
    for (int r = 2; r < rows; ++r) grid.SetTextMatrix(r, 1, QString::number(r - 1));
    Shell shell(grid, {300, 200});
    FlexGridView& view = shell.view;
    view.scrollToBottom();
    Settle();
    const int last = rows - 1;
    EXPECT_EQ(view.CellAt(view.CellRect(last, 1).center()), Cell(last, 1));
    EXPECT_EQ(Shown(view, last, 1).toString(), "110000");
    EXPECT_EQ(Shown(view, 0, 1).toString(), "金额");
    grid.SetTextMatrix(last, 1, "合计");
    EXPECT_EQ(Shown(view, last, 1).toString(), "合计");

    grid.SetRows(3);
    EXPECT_FALSE(view.model()->index(last, 1).data().isValid());
    view.grab();
    view.Refresh();
    EXPECT_EQ(view.verticalScrollBar()->maximum(), 0);
}

// Columns as wide as the grid says, except where that would cut a record
// number or push a column out of sight: the number widens its column, the
// named column gives up width so that all fit.
TEST(FlexGridViewTest, ANumberShowsWholeAndEveryColumnFitsWhenAsked) {
    FlexGrid grid(3, 4, 1, 1);
    for (const auto& [c, twips] : {Cell(0, 405), Cell(1, 2745), Cell(2, 795), Cell(3, 885)})
        grid.SetColWidth(c, twips);
    grid.SetTextMatrix(2, 0, "123456");
    Shell shell(grid, {286, 120});
    FlexGridView& view = shell.view;
    EXPECT_EQ(view.columnWidth(0), 27);
    EXPECT_GT(view.columnViewportPosition(3) + view.columnWidth(3), view.viewport()->width());

    view.KeepWhole(0, "123456");
    const int needed = view.fontMetrics().horizontalAdvance("123456");
    EXPECT_GT(view.columnWidth(0), needed);
    EXPECT_EQ(Shown(view, 2, 0).toString(), "123456");
    EXPECT_EQ(view.FixedRowsView()->columnWidth(0), view.columnWidth(0));
    view.KeepWhole(0, "1");  // the design width where it suffices
    EXPECT_EQ(view.columnWidth(0), 27);

    view.FitToView(1);
    for (int c = 0; c < 4; ++c)
        EXPECT_LE(view.columnViewportPosition(c) + view.columnWidth(c), view.viewport()->width())
            << c;
    EXPECT_EQ(view.columnWidth(2), 53);
    // Wider again: the column takes no more than the grid gives it.
    view.resize(600, 120);
    Settle();
    EXPECT_EQ(view.columnWidth(1), 183);
}
