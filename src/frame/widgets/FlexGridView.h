#pragma once

#include <QTableView>
#include <QTableWidget>

#include "frame/FlexGrid.h"

namespace yunqi {

// Draws a FlexGrid model as the grid control does: widths and heights in
// twips at 15 twips a pixel, alignments (the general one puts numbers right
// and text left), back colours, word wrap, and the fixed rows shaded, merged
// as the model's merge rules say and held at the top while the body scrolls.
//
// The fixed rows are a second view over the same items laid over the space
// the horizontal header keeps free; it scrolls sideways with the body. The
// body hides those rows, so every row a user sees appears once.
class FlexGridView : public QTableWidget {
    Q_OBJECT
  public:
    explicit FlexGridView(QWidget* parent = nullptr);

    // The model drawn; it must outlive the view. Refresh() redraws from it.
    void SetGrid(const FlexGrid& grid);
    const FlexGrid& Model() const { return *grid_; }
    void Refresh();

    // Where a cell is drawn, in this widget's coordinates, as now scrolled.
    QRect CellRect(int row, int col) const;
    // The cell drawn at a point of this widget: (row, col), or (-1, -1).
    std::pair<int, int> CellAt(const QPoint& at) const;
    // The view of the fixed rows.
    QTableView* FixedRowsView() const { return fixed_; }

    // The alignment drawn for a code of the grid control and a cell's text.
    static Qt::Alignment AlignmentOf(int code, const QString& text);

  signals:
    // A click on any cell, the fixed rows included.
    void CellClicked(int row, int col);

  protected:
    void updateGeometries() override;

  private:
    int FixedHeight() const;

    const FlexGrid* grid_ = nullptr;
    QTableView* fixed_;
};

}  // namespace yunqi
