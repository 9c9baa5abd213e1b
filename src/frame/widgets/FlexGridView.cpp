#include "frame/widgets/FlexGridView.h"

#include <QHeaderView>
#include <QScrollBar>
#include <QStyle>
#include <algorithm>

#include "frame/widgets/Twips.h"

namespace yunqi {

namespace {

// The grid with nothing to draw yet.
const FlexGrid& EmptyGrid() {
    static const FlexGrid grid(0, 0, 0, 0);
    return grid;
}

// Rows of the grid's standard height take the header's default size, so only
// the rows of another height are sized one by one.
void PrepareRowHeader(QTableView* view) {
    view->verticalHeader()->hide();
    view->verticalHeader()->setDefaultSectionSize(Pixels(FlexGrid::kStandardRowHeight));
}

// The height a row is drawn at: the header keeps rows no lower than its font.
int DrawnHeight(const QTableView* view, int twips) {
    const QHeaderView* rows = view->verticalHeader();
    return std::clamp(Pixels(twips), rows->minimumSectionSize(), rows->maximumSectionSize());
}

}  // namespace

FlexGridView::FlexGridView(QWidget* parent)
    : QTableView(parent),
      grid_(&EmptyGrid()),
      model_(new FlexGridModel(EmptyGrid(), FlexGridModel::Rows::All, this)),
      fixedModel_(new FlexGridModel(EmptyGrid(), FlexGridModel::Rows::FixedOnly, this)),
      fixed_(new QTableView(this)) {
    setModel(model_);
    PrepareRowHeader(this);
    // The header only keeps the room the fixed rows are drawn in.
    horizontalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    horizontalHeader()->setSectionsClickable(false);
    horizontalHeader()->setHighlightSections(false);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setSelectionMode(QAbstractItemView::NoSelection);
    setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);

    fixed_->setObjectName(QStringLiteral("FixedRows"));
    fixed_->setModel(fixedModel_);
    fixed_->horizontalHeader()->hide();
    PrepareRowHeader(fixed_);
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
    for (QTableView* view : {static_cast<QTableView*>(this), fixed_})
        connect(view, &QTableView::clicked, this,
                [this](const QModelIndex& i) { emit CellClicked(i.row(), i.column()); });
    Refresh();
}

void FlexGridView::SetGrid(const FlexGrid& grid) {
    grid_ = &grid;
    model_->SetGrid(grid);
    fixedModel_->SetGrid(grid);
    Refresh();
}

int FlexGridView::FixedHeight() const {
    int height = 0;
    // As drawn: a font taller than the design row makes the rows taller.
    for (int r = 0; r < std::min(grid_->FixedRows(), grid_->Rows()); ++r)
        height += DrawnHeight(fixed_, grid_->RowHeight(r));
    return height;
}

void FlexGridView::SizeRows(QTableView* view, int hidden) const {
    const int rows = view->model()->rowCount();
    for (int r = 0; r < rows; ++r) {
        const bool hide = r < hidden;
        if (view->isRowHidden(r) != hide) view->setRowHidden(r, hide);
        if (hide) continue;
        const int height = DrawnHeight(view, grid_->RowHeight(r));
        if (view->rowHeight(r) != height) view->setRowHeight(r, height);
    }
}

void FlexGridView::Refresh() {
    const FlexGrid& grid = *grid_;
    setUpdatesEnabled(false);
    clearSpans();
    fixed_->clearSpans();
    const QColor fixedBack = palette().color(QPalette::Button);
    for (FlexGridModel* model : {model_, fixedModel_}) {
        model->SetFixedBackground(fixedBack);
        model->Update();
    }
    setWordWrap(grid.WordWrap());
    fixed_->setWordWrap(grid.WordWrap());
    SizeColumns();
    SizeRows(this, grid.FixedRows());
    SizeRows(fixed_, 0);
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
    // Hidden while the grid says so; shown again only if the grid hid it.
    if (!grid.Visible() && !isHidden()) {
        hide();
        hiddenByGrid_ = true;
    } else if (grid.Visible() && hiddenByGrid_) {
        show();
        hiddenByGrid_ = false;
    }
}

void FlexGridView::SizeColumns() {
    const FlexGrid& grid = *grid_;
    std::vector<int> widths(std::size_t(std::max(grid.Cols(), 0)));
    for (int c = 0; c < grid.Cols(); ++c) widths[c] = Pixels(grid.ColWidth(c));
    // A cell's text sits inside the style's margins on both sides.
    const int margins =
        2 * (style()->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, this) + 1) + 2;
    for (const auto& [c, text] : whole_)
        if (c < grid.Cols() && widths[c] > 0)
            widths[c] = std::max(widths[c], fontMetrics().horizontalAdvance(text) + margins);
    if (fitting_ >= 0 && fitting_ < grid.Cols()) {
        int others = 0;
        for (int c = 0; c < grid.Cols(); ++c)
            if (c != fitting_) others += widths[c];
        const int room = width() - 2 * frameWidth() -
                         style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, this);
        widths[fitting_] = std::clamp(room - others, 0, widths[fitting_]);
    }
    for (int c = 0; c < grid.Cols(); ++c) {
        if (columnWidth(c) != widths[c]) setColumnWidth(c, widths[c]);
        if (fixed_->columnWidth(c) != widths[c]) fixed_->setColumnWidth(c, widths[c]);
    }
}

void FlexGridView::KeepWhole(int col, const QString& widest) {
    whole_[col] = widest;
    SizeColumns();
}

void FlexGridView::FitToView(int col) {
    fitting_ = col;
    SizeColumns();
}

int FlexGridView::DrawnRowHeight(int row) const {
    return DrawnHeight(this,
                       row < grid_->Rows() ? grid_->RowHeight(row) : FlexGrid::kStandardRowHeight);
}

void FlexGridView::resizeEvent(QResizeEvent* event) {
    QTableView::resizeEvent(event);
    if (fitting_ >= 0) SizeColumns();
}

void FlexGridView::updateGeometries() {
    QTableView::updateGeometries();
    // Over the header's room, as wide as the body's viewport.
    fixed_->setGeometry(horizontalHeader()->geometry());
    fixed_->horizontalScrollBar()->setValue(horizontalScrollBar()->value());
    fixed_->raise();
}

QRect FlexGridView::CellRect(int row, int col) const {
    if (row < 0 || col < 0 || row >= model_->rowCount() || col >= model_->columnCount())
        return QRect();
    const bool fixedRow = row < fixedModel_->rowCount();
    const QTableView* view = fixedRow ? fixed_ : this;
    const QRect r = view->visualRect(view->model()->index(row, col));
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
