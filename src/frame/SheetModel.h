#pragma once

#include <QDate>
#include <QHash>
#include <QString>
#include <cstdint>
#include <unordered_map>
#include <vector>

namespace yunqi {

// One worksheet with the semantics of the spreadsheet's object model, kept
// compactly so that a statement of 100,000 rows fits: every cell is a value
// and the index of an interned style. Rows and columns count from 1. Later
// settings on a range overlay earlier ones cell by cell, as the spreadsheet
// does; the writer reads the result.
class SheetModel {
  public:
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
        Range(SheetModel& sheet, Area area) : sheet_(sheet), area_(area) {}
        SheetModel& sheet_;
        Area area_;
    };

    Range Cells(int row, int col) { return Range(*this, {row, col, row, col}); }
    Range RangeOf(int top, int left, int bottom, int right) {
        return Range(*this, {std::min(top, bottom), std::min(left, right), std::max(top, bottom),
                             std::max(left, right)});
    }
    // Columns(n).ColumnWidth, in character units.
    void SetColumnWidth(int col, double width);
    // Rows(n).WrapText: every cell of the row that is in use.
    void SetRowWrapText(int row, bool wrap);

    // Reading, for the writer and for tests.
    int RowCount() const { return int(rows_.size()); }
    int ColCount() const { return cols_; }
    int UsedCols(int row) const;  // cells held in the row
    Value ValueAt(int row, int col) const;
    const Style& StyleAt(int row, int col) const;
    int StyleIndexAt(int row, int col) const;
    const std::vector<Style>& Styles() const { return styles_; }
    const std::vector<Area>& Merges() const { return merges_; }
    double ColumnWidth(int col) const;  // 0: not set
    bool IsDateValue(int row, int col) const;

    // The spreadsheet's serial day number of a date.
    static double SerialOf(const QDate& date);

  private:
    struct Cell {
        double number = 0;
        std::uint32_t text = 0;  // index into texts_; 0 for none
        std::uint16_t style = 0;
        ValueType type = ValueType::Empty;
    };

    Cell& At(int row, int col);
    const Cell* Find(int row, int col) const;
    int Intern(const Style& style);
    // Applies a change to the style of every cell of the area, one memo per call.
    template <typename Change>
    void Restyle(const Area& area, Change change);
    void Assign(Cell& cell, const QString& text);

    std::vector<std::vector<Cell>> rows_;  // index row - 1, col - 1
    int cols_ = 0;
    std::vector<QString> texts_{QString()};
    struct StyleHash {
        std::size_t operator()(const Style& s) const;
    };
    std::vector<Style> styles_{Style{}};
    std::unordered_map<Style, int, StyleHash> styleIndex_{{Style{}, 0}};
    std::vector<Area> merges_;
    std::vector<double> widths_;
};

}  // namespace yunqi
