#include "frame/FlexGrid.h"

#include "core/RuntimeError.h"

namespace yunqi {

namespace {
// The control's own error for a row or column outside the grid.
RuntimeError BadSubscript() { return RuntimeError(ErrorCode::GridSubscript); }
}  // namespace

FlexGrid::FlexGrid(int rows, int cols, int fixedRows, int fixedCols)
    : rows_(0), cols_(0), fixedRows_(fixedRows), fixedCols_(fixedCols) {
    SetCols(cols);
    SetRows(rows);
}

void FlexGrid::SetRows(int rows) {
    if (rows < 0) throw RuntimeError(ErrorCode::InvalidRowValue);
    cells_.resize(std::size_t(rows) * cols_);
    backColors_.resize(std::size_t(rows) * cols_, -1);
    cellAlign_.resize(std::size_t(rows) * cols_, -1);
    rowHeights_.resize(rows, -1);
    mergeRow_.resize(rows, 0);
    // Rows added later start blank.
    for (int r = rows_; r < rows; ++r) {
        rowHeights_[r] = -1;
        mergeRow_[r] = 0;
        for (int c = 0; c < cols_; ++c) {
            cells_[Index(r, c)].clear();
            backColors_[Index(r, c)] = -1;
            cellAlign_[Index(r, c)] = -1;
        }
    }
    rows_ = rows;
    if (row_ >= rows_) row_ = rows_ > 0 ? rows_ - 1 : 0;
}

void FlexGrid::SetCols(int cols) {
    if (cols < 0) throw RuntimeError(ErrorCode::InvalidColValue);
    std::vector<QString> cells(std::size_t(rows_) * cols);
    std::vector<int> colors(std::size_t(rows_) * cols, -1);
    std::vector<signed char> aligns(std::size_t(rows_) * cols, -1);
    for (int r = 0; r < rows_; ++r)
        for (int c = 0; c < std::min(cols, cols_); ++c) {
            cells[std::size_t(r) * cols + c] = std::move(cells_[Index(r, c)]);
            colors[std::size_t(r) * cols + c] = backColors_[Index(r, c)];
            aligns[std::size_t(r) * cols + c] = cellAlign_[Index(r, c)];
        }
    cells_ = std::move(cells);
    backColors_ = std::move(colors);
    cellAlign_ = std::move(aligns);
    colWidths_.resize(cols, -1);
    colAlign_.resize(cols, AlignGeneral);
    fixedAlign_.resize(cols, AlignLeftCenter);
    mergeCol_.resize(cols, 0);
    cols_ = cols;
    if (col_ >= cols_) col_ = cols_ > 0 ? cols_ - 1 : 0;
}

void FlexGrid::CheckCell(int row, int col) const {
    if (row < 0 || row >= rows_ || col < 0 || col >= cols_) throw BadSubscript();
}

void FlexGrid::SetRow(int row) {
    if (row < 0 || row >= rows_) throw RuntimeError(ErrorCode::InvalidRowValue);
    row_ = row;
}

void FlexGrid::SetCol(int col) {
    if (col < 0 || col >= cols_) throw RuntimeError(ErrorCode::InvalidColValue);
    col_ = col;
}

const QString& FlexGrid::TextMatrix(int row, int col) const {
    CheckCell(row, col);
    return cells_[Index(row, col)];
}

void FlexGrid::SetTextMatrix(int row, int col, const QString& text) {
    CheckCell(row, col);
    cells_[Index(row, col)] = text;
}

int FlexGrid::ColWidth(int col) const {
    CheckCell(0, col);
    return colWidths_[col] < 0 ? kStandardColWidth : colWidths_[col];
}

void FlexGrid::SetColWidth(int col, int twips) {
    CheckCell(0, col);
    colWidths_[col] = twips;
}

int FlexGrid::RowHeight(int row) const {
    CheckCell(row, 0);
    return rowHeights_[row] < 0 ? kStandardRowHeight : rowHeights_[row];
}

void FlexGrid::SetRowHeight(int row, int twips) {
    CheckCell(row, 0);
    rowHeights_[row] = twips;
}

int FlexGrid::ColAlignment(int col) const {
    CheckCell(0, col);
    return colAlign_[col];
}

void FlexGrid::SetColAlignment(int col, int alignment) {
    CheckCell(0, col);
    colAlign_[col] = alignment;
}

int FlexGrid::FixedAlignment(int col) const {
    CheckCell(0, col);
    return fixedAlign_[col];
}

void FlexGrid::SetFixedAlignment(int col, int alignment) {
    CheckCell(0, col);
    fixedAlign_[col] = alignment;
}

int FlexGrid::CellBackColorAt(int row, int col) const {
    CheckCell(row, col);
    return backColors_[Index(row, col)];
}

void FlexGrid::SetCellBackColorAt(int row, int col, int bgr) {
    CheckCell(row, col);
    backColors_[Index(row, col)] = bgr;
}

int FlexGrid::CellAlignmentAt(int row, int col) const {
    CheckCell(row, col);
    return cellAlign_[Index(row, col)];
}

void FlexGrid::SetCellAlignmentAt(int row, int col, int alignment) {
    CheckCell(row, col);
    cellAlign_[Index(row, col)] = static_cast<signed char>(alignment);
}

void FlexGrid::SetMergeRow(int row, bool merge) {
    CheckCell(row, 0);
    mergeRow_[row] = merge;
}

bool FlexGrid::MergeCol(int col) const {
    CheckCell(0, col);
    return mergeCol_[col];
}

void FlexGrid::SetMergeCol(int col, bool merge) {
    CheckCell(0, col);
    mergeCol_[col] = merge;
}

std::vector<FlexGrid::Span> FlexGrid::MergedSpans() const {
    std::vector<Span> spans;
    if (mergeCells_ == MergeNever) return spans;
    const int fixed = std::min(fixedRows_, rows_);
    // Cells already inside a horizontal band take no part in a vertical merge.
    std::vector<char> banded(std::size_t(fixed) * cols_, 0);
    for (int r = 0; r < fixed; ++r) {
        if (!mergeRow_[r]) continue;
        for (int c = 0; c < cols_;) {
            int end = c + 1;
            while (end < cols_ && cells_[Index(r, end)] == cells_[Index(r, c)]) ++end;
            if (end - c > 1) {
                spans.push_back({r, c, 1, end - c});
                for (int k = c; k < end; ++k) banded[std::size_t(r) * cols_ + k] = 1;
            }
            c = end;
        }
    }
    for (int c = 0; c < cols_; ++c) {
        if (!mergeCol_[c]) continue;
        for (int r = 0; r < fixed;) {
            int end = r + 1;
            while (end < fixed && cells_[Index(end, c)] == cells_[Index(r, c)] &&
                   !banded[std::size_t(end) * cols_ + c] && !banded[std::size_t(r) * cols_ + c])
                ++end;
            if (end - r > 1) spans.push_back({r, c, end - r, 1});
            r = end;
        }
    }
    return spans;
}

}  // namespace yunqi
