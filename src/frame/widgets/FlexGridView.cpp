#include "frame/widgets/FlexGridView.h"

#include <QHeaderView>

namespace yunqi {

namespace {

Qt::Alignment QtAlignment(int code) {
    Qt::Alignment h = code <= 2 ? Qt::AlignLeft : code <= 5 ? Qt::AlignHCenter : Qt::AlignRight;
    Qt::Alignment v = (code % 3 == 0)   ? Qt::AlignTop
                      : (code % 3 == 1) ? Qt::AlignVCenter
                                        : Qt::AlignBottom;
    if (code == FlexGrid::AlignGeneral) return Qt::AlignLeft | Qt::AlignVCenter;
    return h | v;
}

QColor ColorOf(int bgr) { return QColor(bgr & 0xFF, (bgr >> 8) & 0xFF, (bgr >> 16) & 0xFF); }

}  // namespace

FlexGridView::FlexGridView(const FlexGrid& grid, QWidget* parent)
    : QTableWidget(parent), grid_(grid) {
    horizontalHeader()->hide();
    verticalHeader()->hide();
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setSelectionMode(QAbstractItemView::NoSelection);
    Refresh();
}

void FlexGridView::Refresh() {
    setUpdatesEnabled(false);
    clearSpans();
    setRowCount(grid_.Rows());
    setColumnCount(grid_.Cols());
    setWordWrap(grid_.WordWrap());
    const QColor fixedBack = palette().color(QPalette::Button);
    for (int c = 0; c < grid_.Cols(); ++c) setColumnWidth(c, grid_.ColWidth(c) / 15);
    for (int r = 0; r < grid_.Rows(); ++r) {
        setRowHeight(r, grid_.RowHeight(r) / 15);
        const bool fixed = r < grid_.FixedRows();
        for (int c = 0; c < grid_.Cols(); ++c) {
            auto* cell = item(r, c);
            if (!cell) setItem(r, c, cell = new QTableWidgetItem);
            cell->setText(grid_.TextMatrix(r, c));
            cell->setTextAlignment(
                QtAlignment(fixed ? grid_.FixedAlignment(c) : grid_.ColAlignment(c)));
            const int back = grid_.CellBackColorAt(r, c);
            cell->setBackground(back >= 0 ? QBrush(ColorOf(back))
                                : fixed   ? QBrush(fixedBack)
                                          : QBrush());
        }
    }
    for (const auto& s : grid_.MergedSpans()) setSpan(s.row, s.col, s.rowSpan, s.colSpan);
    setUpdatesEnabled(true);
}

}  // namespace yunqi
