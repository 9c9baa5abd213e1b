#pragma once

#include <QAbstractTableModel>
#include <QColor>

#include "frame/FlexGrid.h"

namespace yunqi {

// The item model over a FlexGrid: every answer is read from the grid when a
// view asks, so a page of any length costs only the cells drawn.
// The grid's texts, alignments and back colours become the display,
// alignment and background roles; the fixed rows and columns are shaded.
class FlexGridModel : public QAbstractTableModel {
    Q_OBJECT
  public:
    // Which of the grid's rows the model holds: all, or the fixed ones alone
    // (for the view that keeps them in place).
    enum class Rows { All, FixedOnly };

    // The grid must outlive the model.
    explicit FlexGridModel(const FlexGrid& grid, Rows rows = Rows::All, QObject* parent = nullptr);

    void SetGrid(const FlexGrid& grid);
    // The shade of the fixed cells.
    void SetFixedBackground(const QColor& color) { fixedBack_ = color; }

    // After the grid was written: a new shape resets the model, the same
    // shape only tells that every cell may have changed.
    void Update();

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

    // The alignment drawn for a code of the grid control and a cell's text.
    static Qt::Alignment AlignmentOf(int code, const QString& text);

  private:
    int GridRows() const;

    const FlexGrid* grid_;
    const Rows rowsHeld_;
    QColor fixedBack_;
    // The shape last told to the views: it holds until Update(), however the
    // grid is resized meanwhile.
    int rows_ = 0, cols_ = 0;
};

}  // namespace yunqi
