#include "frame/SheetModel.h"

#include <QRegularExpression>
#include <charconv>
#include <stdexcept>
#include <unordered_map>

#include "core/RuntimeError.h"

namespace yunqi {

bool SheetModel::Style::operator==(const Style& o) const {
    return horizontalAlignment == o.horizontalAlignment && interiorColor == o.interiorColor &&
           numberFormat == o.numberFormat && fontName == o.fontName && fontSize == o.fontSize &&
           bold == o.bold && borderLineStyle == o.borderLineStyle && wrapText == o.wrapText;
}

std::size_t SheetModel::StyleHash::operator()(const Style& s) const {
    std::size_t h = qHash(s.numberFormat) ^ (qHash(s.fontName) << 1);
    h = h * 31 + std::size_t(s.horizontalAlignment);
    h = h * 31 + std::size_t(s.interiorColor);
    h = h * 31 + std::size_t(s.fontSize * 4);
    h = h * 31 + std::size_t(s.bold) * 2 + std::size_t(s.wrapText);
    return h * 31 + std::size_t(s.borderLineStyle);
}

double SheetModel::SerialOf(const QDate& date) { return QDate(1899, 12, 30).daysTo(date); }

SheetModel::Cell& SheetModel::At(int row, int col) {
    if (row < 1 || col < 1 || row > 1048576 || col > 16384)
        throw RuntimeError::SubscriptOutOfRange();
    if (row <= completed_) throw std::logic_error("sheet row already complete");
    const std::size_t index = std::size_t(row - firstKept_);
    if (rows_.size() <= index) rows_.resize(index + 1);
    rowCount_ = std::max(rowCount_, row);
    auto& r = rows_[index];
    if (int(r.size()) < col) r.resize(col);
    cols_ = std::max(cols_, col);
    return r[col - 1];
}

const SheetModel::Cell* SheetModel::Find(int row, int col) const {
    if (row < firstKept_ || row - firstKept_ >= int(rows_.size())) return nullptr;
    const auto& r = rows_[row - firstKept_];
    if (col < 1 || col > int(r.size())) return nullptr;
    return &r[col - 1];
}

int SheetModel::Intern(const Style& style) {
    const auto it = styleIndex_.find(style);
    if (it != styleIndex_.end()) return it->second;
    if (styles_.size() > 0xFFFF) throw RuntimeError(ErrorCode::TooManyCellFormats);
    styles_.push_back(style);
    const int index = int(styles_.size()) - 1;
    styleIndex_.emplace(style, index);
    return index;
}

void SheetModel::RestyleCell(Cell& cell, const StyleChange& change, std::vector<int>& memo) {
    // Styles are few: a table from old to new index serves many cells.
    if (memo.size() <= cell.style) memo.resize(styles_.size(), -1);
    int& to = memo[cell.style];
    if (to < 0) {
        Style s = styles_[cell.style];
        change(s);
        to = Intern(s);
    }
    cell.style = std::uint16_t(to);
}

void SheetModel::Restyle(const Area& a, const StyleChange& change) {
    std::vector<int> memo;
    for (int r = a.top; r <= a.bottom; ++r)
        for (int c = a.left; c <= a.right; ++c) RestyleCell(At(r, c), change, memo);
}

void SheetModel::Defer(const Area& area, StyleChange change) {
    if (area.top <= completed_) throw std::logic_error("deferred range over complete rows");
    deferred_.push_back({area, std::move(change), {}});
}

void SheetModel::ApplyDeferred(int row) {
    for (Deferred& d : deferred_)
        if (d.area.top <= row && row <= d.area.bottom)
            for (int c = d.area.left; c <= d.area.right; ++c)
                RestyleCell(At(row, c), d.change, d.memo);
}

void SheetModel::CompleteRowsThrough(int row) {
    for (int r = completed_ + 1; r <= row; ++r) {
        ApplyDeferred(r);
        if (sink_ && r - firstKept_ < int(rows_.size())) sink_->WriteRow(*this, r);
        completed_ = r;
        rowCount_ = std::max(rowCount_, r);
        if (sink_) {
            if (!rows_.empty()) rows_.pop_front();
            firstKept_ = r + 1;
        }
    }
}

void SheetModel::Complete() {
    int last = rowCount_;
    for (const Deferred& d : deferred_) last = std::max(last, d.area.bottom);
    CompleteRowsThrough(last);
}

template <typename Change>
void SheetModel::Range::Restyle(Change change) const {
    if (deferred_)
        sheet_.Defer(area_, change);
    else
        sheet_.Restyle(area_, change);
}

namespace {

bool IsDigit(QChar c) { return c >= QLatin1Char('0') && c <= QLatin1Char('9'); }

// Number-like: blanks, a sign, digits with one optional point, an exponent.
bool LooksNumeric(const QString& t) {
    qsizetype i = 0, n = t.size();
    while (i < n && t[i] == QLatin1Char(' ')) ++i;
    while (n > i && t[n - 1] == QLatin1Char(' ')) --n;
    if (i < n && (t[i] == QLatin1Char('-') || t[i] == QLatin1Char('+'))) ++i;
    int digits = 0;
    while (i < n && IsDigit(t[i])) ++i, ++digits;
    if (i < n && t[i] == QLatin1Char('.')) {
        ++i;
        while (i < n && IsDigit(t[i])) ++i, ++digits;
    }
    if (digits == 0) return false;
    if (i < n && (t[i] == QLatin1Char('e') || t[i] == QLatin1Char('E'))) {
        ++i;
        if (i < n && (t[i] == QLatin1Char('-') || t[i] == QLatin1Char('+'))) ++i;
        int exponent = 0;
        while (i < n && IsDigit(t[i])) ++i, ++exponent;
        if (exponent == 0) return false;
    }
    return i == n;
}

// The value of a number-like text, without the detour through a locale.
double ParseNumber(const QString& t) {
    char buffer[64];
    qsizetype n = 0;
    for (QChar c : t)
        if (c != QLatin1Char(' ') && c != QLatin1Char('+') && n < qsizetype(sizeof buffer))
            buffer[n++] = char(c.unicode());
    double value = 0;
    std::from_chars(buffer, buffer + n, value);
    return value;
}

}  // namespace

void SheetModel::Assign(Cell& cell, const QString& text) {
    static const QRegularExpression isoDate(QStringLiteral(R"(^(\d{4})-(\d{1,2})-(\d{1,2})$)"));
    cell.text = QString();
    cell.number = 0;
    if (text.startsWith(QLatin1Char('\''))) {
        cell.type = ValueType::Text;
        cell.text = text.mid(1);
        return;
    }
    if (text.isEmpty()) {
        cell.type = ValueType::Empty;
        return;
    }
    if (LooksNumeric(text)) {
        cell.type = ValueType::Number;
        cell.number = ParseNumber(text);
        return;
    }
    if (text.size() >= 8 && text.size() <= 10 && IsDigit(text[0]) && text[4] == QLatin1Char('-'))
        if (const auto m = isoDate.match(text); m.hasMatch()) {
            const QDate d(m.captured(1).toInt(), m.captured(2).toInt(), m.captured(3).toInt());
            if (d.isValid()) {
                cell.type = ValueType::Date;
                cell.number = SerialOf(d);
                return;
            }
        }
    cell.type = ValueType::Text;
    cell.text = text;
}

void SheetModel::Range::SetValue(const QString& text) const {
    if (deferred_) throw std::logic_error("a value can't be deferred");
    for (int r = area_.top; r <= area_.bottom; ++r)
        for (int c = area_.left; c <= area_.right; ++c) sheet_.Assign(sheet_.At(r, c), text);
}

void SheetModel::Range::SetValue(double number) const {
    if (deferred_) throw std::logic_error("a value can't be deferred");
    for (int r = area_.top; r <= area_.bottom; ++r)
        for (int c = area_.left; c <= area_.right; ++c) {
            Cell& cell = sheet_.At(r, c);
            cell.type = ValueType::Number;
            cell.number = number;
            cell.text = QString();
        }
}

void SheetModel::Range::SetMergeCells(bool merge) const {
    if (deferred_) throw std::logic_error("a merge can't be deferred");
    auto& merges = sheet_.merges_;
    const Area a = area_;
    auto overlaps = [&](const Area& m) {
        return m.left <= a.right && a.left <= m.right && m.top <= a.bottom && a.top <= m.bottom;
    };
    // A new merge takes the place of those it overlaps; unmerging removes them.
    merges.erase(std::remove_if(merges.begin(), merges.end(), overlaps), merges.end());
    if (merge && (a.top != a.bottom || a.left != a.right)) {
        merges.push_back(a);
        sheet_.At(a.bottom, a.right);
    }
}

void SheetModel::Range::SetHorizontalAlignment(int alignment) const {
    Restyle([=](Style& s) { s.horizontalAlignment = alignment; });
}
void SheetModel::Range::SetInteriorColor(int bgr) const {
    Restyle([=](Style& s) { s.interiorColor = bgr; });
}
void SheetModel::Range::SetNumberFormat(const QString& format) const {
    Restyle([format](Style& s) { s.numberFormat = format; });
}
void SheetModel::Range::SetFontName(const QString& name) const {
    Restyle([name](Style& s) { s.fontName = name; });
}
void SheetModel::Range::SetFontSize(double size) const {
    Restyle([=](Style& s) { s.fontSize = size; });
}
void SheetModel::Range::SetFontBold(bool bold) const {
    Restyle([=](Style& s) { s.bold = bold; });
}
void SheetModel::Range::SetBordersLineStyle(int style) const {
    Restyle([=](Style& s) { s.borderLineStyle = style; });
}
void SheetModel::Range::SetWrapText(bool wrap) const {
    Restyle([=](Style& s) { s.wrapText = wrap; });
}

void SheetModel::SetColumnWidth(int col, double width) {
    if (col < 1 || col > 16384) throw RuntimeError::SubscriptOutOfRange();
    if (int(widths_.size()) < col) widths_.resize(col, 0);
    widths_[col - 1] = width;
}

void SheetModel::SetRowWrapText(int row, bool wrap) {
    const int used = std::max(1, UsedCols(row));
    RangeOf(row, 1, row, std::max(used, cols_)).SetWrapText(wrap);
}

int SheetModel::UsedCols(int row) const {
    return row >= firstKept_ && row - firstKept_ < int(rows_.size())
               ? int(rows_[row - firstKept_].size())
               : 0;
}

SheetModel::Value SheetModel::ValueAt(int row, int col) const {
    Value v;
    if (const Cell* c = Find(row, col)) {
        v.type = c->type;
        v.number = c->number;
        if (c->type == ValueType::Text) v.text = c->text;
    }
    return v;
}

int SheetModel::StyleIndexAt(int row, int col) const {
    const Cell* c = Find(row, col);
    return c ? c->style : 0;
}

const SheetModel::Style& SheetModel::StyleAt(int row, int col) const {
    return styles_[StyleIndexAt(row, col)];
}

double SheetModel::ColumnWidth(int col) const {
    return col >= 1 && col <= int(widths_.size()) ? widths_[col - 1] : 0;
}

}  // namespace yunqi
