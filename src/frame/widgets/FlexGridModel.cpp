#include "frame/widgets/FlexGridModel.h"

#include <QBrush>
#include <algorithm>

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

}  // namespace

Qt::Alignment FlexGridModel::AlignmentOf(int code, const QString& text) {
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

FlexGridModel::FlexGridModel(const FlexGrid& grid, Rows rows, QObject* parent)
    : QAbstractTableModel(parent), grid_(&grid), rowsHeld_(rows) {
    rows_ = GridRows();
    cols_ = grid_->Cols();
}

void FlexGridModel::SetGrid(const FlexGrid& grid) {
    beginResetModel();
    grid_ = &grid;
    rows_ = GridRows();
    cols_ = grid_->Cols();
    endResetModel();
}

int FlexGridModel::GridRows() const {
    return rowsHeld_ == Rows::FixedOnly ? std::min(grid_->FixedRows(), grid_->Rows())
                                        : grid_->Rows();
}

void FlexGridModel::Update() {
    if (GridRows() != rows_ || grid_->Cols() != cols_) {
        beginResetModel();
        rows_ = GridRows();
        cols_ = grid_->Cols();
        endResetModel();
    } else if (rows_ > 0 && cols_ > 0) {
        emit dataChanged(index(0, 0), index(rows_ - 1, cols_ - 1));
    }
}

int FlexGridModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : rows_;
}

int FlexGridModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : cols_;
}

Qt::ItemFlags FlexGridModel::flags(const QModelIndex& index) const {
    return index.isValid() ? Qt::ItemIsSelectable | Qt::ItemIsEnabled : Qt::NoItemFlags;
}

QVariant FlexGridModel::data(const QModelIndex& index, int role) const {
    const FlexGrid& grid = *grid_;
    const int r = index.row(), c = index.column();
    // A view may paint while the grid is being rewritten, before Update().
    if (!index.isValid() || r >= grid.Rows() || c >= grid.Cols()) return {};
    const bool fixedRow = r < grid.FixedRows();
    switch (role) {
        case Qt::DisplayRole:
            return grid.TextMatrix(r, c);
        case Qt::TextAlignmentRole: {
            // A cell's own alignment, where one was set, before its column's.
            const int own = fixedRow ? -1 : grid.CellAlignmentAt(r, c);
            const int code = own >= 0   ? own
                             : fixedRow ? grid.FixedAlignment(c)
                                        : grid.ColAlignment(c);
            return int(AlignmentOf(code, grid.TextMatrix(r, c)));
        }
        case Qt::BackgroundRole: {
            const int back = grid.CellBackColorAt(r, c);
            if (back >= 0) return QBrush(ColorOf(back));
            if (fixedRow || c < grid.FixedCols()) return QBrush(fixedBack_);
            return {};
        }
        default:
            return {};
    }
}

}  // namespace yunqi
