#pragma once

#include <QDate>
#include <QHash>
#include <QString>
#include <cstdint>
#include <deque>
#include <functional>
#include <unordered_map>
#include <vector>

namespace yunqi {

// One worksheet with the semantics of the spreadsheet's object model: every
// cell is a value and the index of an interned style. Rows and columns count
// from 1. Later settings on a range overlay earlier ones cell by cell, as the
// spreadsheet does.
//
// Rows are written in sheet order. With a sink, a row is handed to it once it
// is complete (CompleteRowsThrough, Complete) and then dropped, so a sheet of
// any length needs memory for a few rows. Settings that the table takes once
// it stands (number formats of a column band, fonts, borders) are declared
// before the rows with Finally(): they apply to each row as it completes,
// after the row's own settings, as if set at the end. Touching a row that is
// complete is a programming error (std::logic_error). Without a sink every
// row stays readable.
class SheetModel {
  public:
    // Takes each row once it is complete, in order; earlier rows are gone.
    class RowSink {
      public:
        virtual ~RowSink() = default;
        virtual void WriteRow(const SheetModel& sheet, int row) = 0;
    };
    // Alignment constants of the object model.
    static constexpr int kAlignCenter = -4108;
    static constexpr int kAlignLeft = -4131;
    static constexpr int kAlignRight = -4152;

    struct Style {
        int horizontalAlignment = 0;  // 0: general
        int interiorColor = -1;       // blue-green-red number; -1: none
        QString numberFormat;         // empty: general
        QString fontName;             // empty: the sheet's default
        double fontSize = 0;          // 0: the sheet's default
        bool bold = false;
        int borderLineStyle = 0;  // 1: continuous on every edge
        bool wrapText = false;
        bool operator==(const Style& o) const;
    };

    enum class ValueType : std::uint8_t { Empty, Number, Text, Date };
    struct Value {
        ValueType type = ValueType::Empty;
        double number = 0;  // a date is its serial day number
        QString text;
    };

    struct Area {
        int top, left, bottom, right;
    };

    // Cells(r, c) or Range(Cells(a), Cells(b)): what a script sets on a range.
    class Range {
      public:
        // Assignment as the spreadsheet converts typed text: a leading
        // apostrophe keeps the rest as text, number-like text becomes a
        // number, ISO date text ("2013-05-06") a date; the rest stays text.
        void SetValue(const QString& text) const;
        void SetValue(double number) const;
        void SetMergeCells(bool merge) const;
        void SetHorizontalAlignment(int alignment) const;
        void SetInteriorColor(int bgr) const;
        void SetNumberFormat(const QString& format) const;
        void SetFontName(const QString& name) const;
        void SetFontSize(double size) const;
        void SetFontBold(bool bold) const;
        void SetBordersLineStyle(int style) const;
        void SetWrapText(bool wrap) const;

      private:
        friend class SheetModel;
        Range(SheetModel& sheet, Area area, bool deferred = false)
            : sheet_(sheet), area_(area), deferred_(deferred) {}
        template <typename Change>
        void Restyle(Change change) const;
        SheetModel& sheet_;
        Area area_;
        bool deferred_;
    };

    explicit SheetModel(RowSink* sink = nullptr) : sink_(sink) {}

    Range Cells(int row, int col) { return Range(*this, {row, col, row, col}); }
    Range RangeOf(int top, int left, int bottom, int right) {
        return Range(*this, {std::min(top, bottom), std::min(left, right), std::max(top, bottom),
                             std::max(left, right)});
    }
    // A range whose style settings wait until each of its rows completes;
    // values and merges can't be deferred.
    Range Finally(int top, int left, int bottom, int right) {
        return Range(*this,
                     {std::min(top, bottom), std::min(left, right), std::max(top, bottom),
                      std::max(left, right)},
                     true);
    }
    // Rows 1 to row are final: deferred settings applied, handed to the sink.
    void CompleteRowsThrough(int row);
    // Every row written so far is final.
    void Complete();

    // Columns(n).ColumnWidth, in character units.
    void SetColumnWidth(int col, double width);
    // Rows(n).WrapText: every cell of the row that is in use.
    void SetRowWrapText(int row, bool wrap);

    // Reading, for the writer and for tests.
    int RowCount() const { return rowCount_; }
    int ColCount() const { return cols_; }
    int UsedCols(int row) const;  // cells held in the row
    Value ValueAt(int row, int col) const;
    const Style& StyleAt(int row, int col) const;
    int StyleIndexAt(int row, int col) const;
    const std::vector<Style>& Styles() const { return styles_; }
    const std::vector<Area>& Merges() const { return merges_; }
    double ColumnWidth(int col) const;  // 0: not set

    // The spreadsheet's serial day number of a date.
    static double SerialOf(const QDate& date);

  private:
    struct Cell {
        double number = 0;
        QString text;
        std::uint16_t style = 0;
        ValueType type = ValueType::Empty;
    };
    using StyleChange = std::function<void(Style&)>;
    struct Deferred {
        Area area;
        StyleChange change;
        std::vector<int> memo;  // old style index to new, -1 unknown
    };

    Cell& At(int row, int col);
    const Cell* Find(int row, int col) const;
    int Intern(const Style& style);
    // Applies a change to a cell's style through memo (old index to new).
    void RestyleCell(Cell& cell, const StyleChange& change, std::vector<int>& memo);
    // Applies a change to the style of every cell of the area, one memo per call.
    void Restyle(const Area& area, const StyleChange& change);
    void Defer(const Area& area, StyleChange change);
    void ApplyDeferred(int row);
    void Assign(Cell& cell, const QString& text);

    RowSink* sink_ = nullptr;
    std::deque<std::vector<Cell>> rows_;  // the rows after completed_ (all, without a sink)
    int firstKept_ = 1;                   // the sheet row of rows_[0]
    int rowCount_ = 0;
    int completed_ = 0;
    int cols_ = 0;
    struct StyleHash {
        std::size_t operator()(const Style& s) const;
    };
    std::vector<Style> styles_{Style{}};
    std::unordered_map<Style, int, StyleHash> styleIndex_{{Style{}, 0}};
    std::vector<Area> merges_;
    std::vector<double> widths_;
    std::vector<Deferred> deferred_;
};

}  // namespace yunqi
