#pragma once

#include <QString>
#include <vector>

#include "frame/FlexGrid.h"

namespace yunqi {

// One body row of a statement as the grid shows it. A statement writes each
// of its rows through this, once for every output: the page in the grid, the
// CSV of the companion.
class GridRow {
  public:
    virtual ~GridRow() = default;
    virtual void SetText(int col, const QString& text) = 0;
    // The grid control aligns whole columns: the last row written decides.
    virtual void SetColAlignment(int col, int alignment) = 0;
    virtual void SetCellAlignment(int col, int alignment) = 0;
    virtual void SetHeight(int twips) = 0;
    virtual int ColWidth(int col) const = 0;
};

// A row of the grid itself.
class FlexGridRow : public GridRow {
  public:
    FlexGridRow(FlexGrid& grid, int row) : grid_(grid), row_(row) {}
    void SetText(int col, const QString& text) override { grid_.SetTextMatrix(row_, col, text); }
    void SetColAlignment(int col, int alignment) override { grid_.SetColAlignment(col, alignment); }
    void SetCellAlignment(int col, int alignment) override {
        grid_.SetCellAlignmentAt(row_, col, alignment);
    }
    void SetHeight(int twips) override { grid_.SetRowHeight(row_, twips); }
    int ColWidth(int col) const override { return grid_.ColWidth(col); }

  private:
    FlexGrid& grid_;
    int row_;
};

// The texts alone, for outputs that show no grid; widths are the header's.
class TextRow : public GridRow {
  public:
    explicit TextRow(const FlexGrid& header) : header_(header), texts_(header.Cols()) {}
    // Empties the texts for the next row.
    void Clear() {
        for (QString& t : texts_) t.clear();
    }
    const std::vector<QString>& Texts() const { return texts_; }
    void SetText(int col, const QString& text) override { texts_.at(col) = text; }
    void SetColAlignment(int, int) override {}
    void SetCellAlignment(int, int) override {}
    void SetHeight(int) override {}
    int ColWidth(int col) const override { return header_.ColWidth(col); }

  private:
    const FlexGrid& header_;
    std::vector<QString> texts_;
};

}  // namespace yunqi
