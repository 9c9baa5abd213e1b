#pragma once

#include <QString>
#include <vector>

namespace yunqi {

// A model of the grid control: cell texts, widths, heights, alignments,
// colours and the merge marks. Free of widgets; a view draws it.
// Lengths are twips, colours blue-green-red numbers (-1 for none).
class FlexGrid {
  public:
    // Alignment codes of the grid control.
    enum Alignment {
        AlignLeftTop = 0,
        AlignLeftCenter = 1,
        AlignLeftBottom = 2,
        AlignCenterTop = 3,
        AlignCenterCenter = 4,
        AlignCenterBottom = 5,
        AlignRightTop = 6,
        AlignRightCenter = 7,
        AlignRightBottom = 8,
        AlignGeneral = 9,
    };
    // MergeCells modes.
    enum MergeMode {
        MergeNever = 0,
        MergeFree = 1,
        MergeRestrictRows = 2,
        MergeRestrictColumns = 3,
        MergeRestrictAll = 4
    };

    static constexpr int kStandardRowHeight = 300;
    static constexpr int kStandardColWidth = 960;

    struct Span {
        int row, col, rowSpan, colSpan;
    };

    FlexGrid(int rows = 2, int cols = 2, int fixedRows = 1, int fixedCols = 1);

    int Rows() const { return rows_; }
    void SetRows(int rows);  // keeps the cells of the rows that stay
    int Cols() const { return cols_; }
    void SetCols(int cols);  // keeps the cells of the columns that stay
    int FixedRows() const { return fixedRows_; }
    void SetFixedRows(int n) { fixedRows_ = n; }
    int FixedCols() const { return fixedCols_; }

    int Row() const { return row_; }
    void SetRow(int row);
    int Col() const { return col_; }
    void SetCol(int col);

    const QString& TextMatrix(int row, int col) const;
    void SetTextMatrix(int row, int col, const QString& text);
    // The current cell's text.
    const QString& Text() const { return TextMatrix(row_, col_); }
    void SetText(const QString& text) { SetTextMatrix(row_, col_, text); }

    int ColWidth(int col) const;
    void SetColWidth(int col, int twips);
    int RowHeight(int row) const;
    void SetRowHeight(int row, int twips);

    int ColAlignment(int col) const;
    void SetColAlignment(int col, int alignment);
    int FixedAlignment(int col) const;
    void SetFixedAlignment(int col, int alignment);

    int CellBackColorAt(int row, int col) const;
    void SetCellBackColorAt(int row, int col, int bgr);
    // Alignment of the current cell; -1 until set, the column's then applies.
    void SetCellAlignment(int alignment) { SetCellAlignmentAt(row_, col_, alignment); }
    int CellAlignmentAt(int row, int col) const;
    void SetCellAlignmentAt(int row, int col, int alignment);

    int MergeCells() const { return mergeCells_; }
    void SetMergeCells(int mode) { mergeCells_ = mode; }
    void SetMergeRow(int row, bool merge);
    bool MergeCol(int col) const;
    void SetMergeCol(int col, bool merge);

    bool WordWrap() const { return wordWrap_; }
    void SetWordWrap(bool on) { wordWrap_ = on; }
    bool Visible() const { return visible_; }
    void SetVisible(bool on) { visible_ = on; }

    // Merged spans among the fixed rows: equal neighbours across a row marked
    // MergeRow, then equal neighbours down a column marked MergeCol.
    std::vector<Span> MergedSpans() const;

  private:
    void CheckCell(int row, int col) const;
    std::size_t Index(int row, int col) const { return std::size_t(row) * cols_ + col; }

    int rows_, cols_, fixedRows_, fixedCols_;
    int row_ = 0, col_ = 0;
    std::vector<QString> cells_;
    std::vector<int> backColors_;
    std::vector<signed char> cellAlign_;
    std::vector<int> colWidths_, colAlign_, fixedAlign_;
    std::vector<int> rowHeights_;
    std::vector<char> mergeRow_, mergeCol_;
    int mergeCells_ = MergeNever;
    bool wordWrap_ = false;
    bool visible_ = true;
};

}  // namespace yunqi
