#pragma once

#include <QTableView>
#include <map>

#include "frame/FlexGrid.h"
#include "frame/widgets/FlexGridModel.h"

namespace yunqi {

// Draws a FlexGrid as the grid control does: widths and heights in twips at
// 15 twips a pixel, alignments (the general one puts numbers right and text
// left), back colours, word wrap, and the fixed rows shaded, merged as the
// grid's merge rules say and held at the top while the body scrolls.
//
// Both views read the grid through item models, so a long page costs only
// the rows on screen. The fixed rows are a second view laid over the space
// the horizontal header keeps free; it scrolls sideways with the body. The
// body hides those rows, so every row a user sees appears once.
class FlexGridView : public QTableView {
    Q_OBJECT
  public:
    explicit FlexGridView(QWidget* parent = nullptr);

    // The grid drawn; it must outlive the view. Refresh() redraws from it
    // once it was written.
    void SetGrid(const FlexGrid& grid);
    void Refresh();

    // Where a cell is drawn, in this widget's coordinates, as now scrolled.
    QRect CellRect(int row, int col) const;
    // The cell drawn at a point of this widget: (row, col), or (-1, -1).
    std::pair<int, int> CellAt(const QPoint& at) const;
    // The view of the fixed rows.
    QTableView* FixedRowsView() const { return fixed_; }

    // The column is drawn at least as wide as `widest` needs, so that its
    // longest text shows whole; the grid's width where that suffices.
    void KeepWhole(int col, const QString& widest);
    // The column gives up width, down to none, so that every column fits the
    // view without scrolling (room kept for a vertical scroll bar).
    void FitToView(int col);
    // The height a row is drawn at, in pixels: the font may make it taller
    // than the grid's.
    int DrawnRowHeight(int row) const;

  signals:
    // A click on any cell, the fixed rows included.
    void CellClicked(int row, int col);

  protected:
    void updateGeometries() override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    int FixedHeight() const;
    // Column widths as the grid says, then KeepWhole and FitToView.
    void SizeColumns();
    // Sizes a view's rows as the grid says; the body's first `hidden` rows
    // are drawn by the view of the fixed rows instead.
    void SizeRows(QTableView* view, int hidden) const;

    const FlexGrid* grid_;
    FlexGridModel* model_;
    FlexGridModel* fixedModel_;
    QTableView* fixed_;
    // Whether the grid's Visible hid the view, so that only the grid shows it again.
    bool hiddenByGrid_ = false;
    std::map<int, QString> whole_;
    int fitting_ = -1;
};

}  // namespace yunqi
