#pragma once

#include <QTableWidget>

#include "frame/FlexGrid.h"

namespace yunqi {

// Draws a FlexGrid model: every row (the fixed ones shaded), merged header
// spans, widths and heights in twips at 15 twips a pixel, alignments, back
// colours, word wrap. Refresh() redraws from the model.
class FlexGridView : public QTableWidget {
    Q_OBJECT
  public:
    explicit FlexGridView(const FlexGrid& grid, QWidget* parent = nullptr);
    void Refresh();
    const FlexGrid& Model() const { return grid_; }

  private:
    const FlexGrid& grid_;
};

}  // namespace yunqi
