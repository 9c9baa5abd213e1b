#include "frame/widgets/FlexGridView.h"

#include <QHeaderView>
#include <QScrollBar>

#include "frame/widgets/WindowLayout.h"

namespace yunqi {

namespace {

QColor ColorOf(int bgr) { return QColor(bgr & 0xFF, (bgr >> 8) & 0xFF, (bgr >> 16) & 0xFF); }

// The grid control's test for its general alignment: the text reads as a
// number as a whole, blanks around it allowed.
bool IsNumber(const QString& text) {
    bool ok = false;
    text.trimmed().toDouble(&ok);
    return ok;
}

// The grid with nothing to draw yet.
const FlexGrid& EmptyGrid() {
    static const FlexGrid grid(0, 0, 0, 0);
    return grid;
}

}  // namespace

Qt::Alignment FlexGridView::AlignmentOf(int code, const QString& text) {
    if (code == FlexGrid::AlignGeneral)
        return (IsNumber(text) ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter;
    const Qt::Alignment h = code <= FlexGrid::AlignLeftBottom     ? Qt::AlignLeft
                            : code <= FlexGrid::AlignCenterBottom ? Qt::AlignHCenter
                                                                  : Qt::AlignRight;
    const Qt::Alignment v = (code % 3 == 0)   ? Qt::AlignTop
                            : (code % 3 == 1) ? Qt::AlignVCenter
                                              : Qt::AlignBottom;
    return h | v;
}

FlexGridView::FlexGridView(QWidget* parent)
    : QTableWidget(parent), grid_(&EmptyGrid()), fixed_(new QTableView(this)) {
    verticalHeader()->hide();
    // The header only keeps the room the fixed rows are drawn in.
    horizontalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    horizontalHeader()->setSectionsClickable(false);
    horizontalHeader()->setHighlightSections(false);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setSelectionMode(QAbstractItemView::NoSelection);
    setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);

    fixed_->setObjectName(QStringLiteral("FixedRows"));
    fixed_->setModel(model());
    fixed_->horizontalHeader()->hide();
    fixed_->verticalHeader()->hide();
    fixed_->setFrameShape(QFrame::NoFrame);
    fixed_->setFocusPolicy(Qt::NoFocus);
    fixed_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    fixed_->setSelectionMode(QAbstractItemView::NoSelection);
    fixed_->setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    fixed_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    fixed_->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    // Sideways the two move together, whichever is scrolled.
    connect(horizontalScrollBar(), &QScrollBar::valueChanged, fixed_->horizontalScrollBar(),
            &QScrollBar::setValue);
    connect(fixed_->horizontalScrollBar(), &QScrollBar::valueChanged, horizontalScrollBar(),
            &QScrollBar::setValue);
    connect(this, &QTableWidget::cellClicked, this, &FlexGridView::CellClicked);
    connect(fixed_, &QTableView::clicked, this,
            [this](const QModelIndex& i) { emit CellClicked(i.row(), i.column()); });
    Refresh();
}

void FlexGridView::SetGrid(const FlexGrid& grid) {
    grid_ = &grid;
    Refresh();
}

int FlexGridView::FixedHeight() const {
    int height = 0;
    for (int r = 0; r < std::min(grid_->FixedRows(), grid_->Rows()); ++r)
        height += Pixels(grid_->RowHeight(r));
    return height;
}

void FlexGridView::Refresh() {
    const FlexGrid& grid = *grid_;
    setUpdatesEnabled(false);
    clearSpans();
    fixed_->clearSpans();
    setRowCount(grid.Rows());
    setColumnCount(grid.Cols());
    setWordWrap(grid.WordWrap());
    fixed_->setWordWrap(grid.WordWrap());
    const QColor fixedBack = palette().color(QPalette::Button);
    for (int c = 0; c < grid.Cols(); ++c) {
        setColumnWidth(c, Pixels(grid.ColWidth(c)));
        fixed_->setColumnWidth(c, Pixels(grid.ColWidth(c)));
    }
    for (int r = 0; r < grid.Rows(); ++r) {
        const bool fixedRow = r < grid.FixedRows();
        setRowHeight(r, Pixels(grid.RowHeight(r)));
        fixed_->setRowHeight(r, Pixels(grid.RowHeight(r)));
        setRowHidden(r, fixedRow);
        fixed_->setRowHidden(r, !fixedRow);
        for (int c = 0; c < grid.Cols(); ++c) {
            auto* cell = item(r, c);
            if (!cell) setItem(r, c, cell = new QTableWidgetItem);
            const QString& text = grid.TextMatrix(r, c);
            cell->setText(text);
            // A cell's own alignment, where one was set, before its column's.
            const int own = fixedRow ? -1 : grid.CellAlignmentAt(r, c);
            cell->setTextAlignment(AlignmentOf(
                own >= 0 ? own : fixedRow ? grid.FixedAlignment(c) : grid.ColAlignment(c), text));
            const int back = grid.CellBackColorAt(r, c);
            cell->setBackground(back >= 0                          ? QBrush(ColorOf(back))
                                : fixedRow || c < grid.FixedCols() ? QBrush(fixedBack)
                                                                   : QBrush());
        }
    }
    for (const auto& s : grid.MergedSpans()) {
        if (s.row < grid.FixedRows())
            fixed_->setSpan(s.row, s.col, s.rowSpan, s.colSpan);
        else
            setSpan(s.row, s.col, s.rowSpan, s.colSpan);
    }
    const int header = FixedHeight();
    horizontalHeader()->setVisible(header > 0);
    horizontalHeader()->setFixedHeight(header);
    fixed_->setVisible(header > 0);
    updateGeometries();
    setUpdatesEnabled(true);
}

void FlexGridView::updateGeometries() {
    QTableWidget::updateGeometries();
    // Over the header's room, as wide as the body's viewport.
    fixed_->setGeometry(horizontalHeader()->geometry());
    fixed_->horizontalScrollBar()->setValue(horizontalScrollBar()->value());
    fixed_->raise();
}

QRect FlexGridView::CellRect(int row, int col) const {
    if (row < 0 || col < 0 || row >= rowCount() || col >= columnCount()) return QRect();
    const QModelIndex index = model()->index(row, col);
    const bool fixedRow = row < grid_->FixedRows();
    const QAbstractItemView* view = fixedRow ? static_cast<const QAbstractItemView*>(fixed_) : this;
    const QRect r = view->visualRect(index);
    return QRect(view->viewport()->mapTo(this, r.topLeft()), r.size());
}

std::pair<int, int> FlexGridView::CellAt(const QPoint& at) const {
    const QAbstractItemView* views[] = {fixed_, this};
    for (const QAbstractItemView* view : views) {
        if (!view->isVisible()) continue;
        const QPoint p = view->viewport()->mapFrom(this, at);
        if (!view->viewport()->rect().contains(p)) continue;
        const QModelIndex index = view->indexAt(p);
        if (index.isValid()) return {index.row(), index.column()};
        return {-1, -1};
    }
    return {-1, -1};
}

}  // namespace yunqi
