#include "frame/SheetModel.h"

#include <QRegularExpression>
#include <unordered_map>

#include "frame/RuntimeError.h"

namespace {

QString KeyOf(const SheetModel::Style& s) {
    return QStringLiteral("%1|%2|%3|%4|%5|%6|%7|%8")
        .arg(s.horizontalAlignment)
        .arg(s.interiorColor)
        .arg(s.numberFormat, s.fontName)
        .arg(s.fontSize)
        .arg(int(s.bold))
        .arg(s.borderLineStyle)
        .arg(int(s.wrapText));
}

}  // namespace

bool SheetModel::Style::operator==(const Style& o) const { return KeyOf(*this) == KeyOf(o); }

double SheetModel::SerialOf(const QDate& date) { return QDate(1899, 12, 30).daysTo(date); }

SheetModel::Cell& SheetModel::At(int row, int col) {
    if (row < 1 || col < 1 || row > 1048576 || col > 16384)
        throw RuntimeError::SubscriptOutOfRange();
    if (int(rows_.size()) < row) rows_.resize(row);
    auto& r = rows_[row - 1];
    if (int(r.size()) < col) r.resize(col);
    cols_ = std::max(cols_, col);
    return r[col - 1];
}

const SheetModel::Cell* SheetModel::Find(int row, int col) const {
    if (row < 1 || row > int(rows_.size())) return nullptr;
    const auto& r = rows_[row - 1];
    if (col < 1 || col > int(r.size())) return nullptr;
    return &r[col - 1];
}

int SheetModel::Intern(const Style& style) {
    const QString key = KeyOf(style);
    const auto it = styleIndex_.constFind(key);
    if (it != styleIndex_.constEnd()) return *it;
    if (styles_.empty()) styleIndex_.insert(KeyOf(Style{}), 0);
    styles_.push_back(style);
    const int index = int(styles_.size()) - 1;
    styleIndex_.insert(key, index);
    return index;
}

template <typename Change>
void SheetModel::Restyle(const Area& a, Change change) {
    if (styleIndex_.isEmpty()) styleIndex_.insert(KeyOf(Style{}), 0);
    std::unordered_map<int, int> memo;
    for (int r = a.top; r <= a.bottom; ++r)
        for (int c = a.left; c <= a.right; ++c) {
            Cell& cell = At(r, c);
            auto it = memo.find(cell.style);
            if (it == memo.end()) {
                Style s = styles_[cell.style];
                change(s);
                it = memo.emplace(cell.style, Intern(s)).first;
            }
            cell.style = std::uint16_t(it->second);
        }
}

void SheetModel::Assign(Cell& cell, const QString& text) {
    static const QRegularExpression number(
        QStringLiteral(R"(^\s*[-+]?(\d+\.?\d*|\.\d+)([eE][-+]?\d+)?\s*$)"));
    static const QRegularExpression isoDate(QStringLiteral(R"(^(\d{4})-(\d{1,2})-(\d{1,2})$)"));
    cell.text = 0;
    cell.number = 0;
    if (text.startsWith(QLatin1Char('\''))) {
        cell.type = ValueType::Text;
        texts_.push_back(text.mid(1));
        cell.text = std::uint32_t(texts_.size() - 1);
        return;
    }
    if (text.isEmpty()) {
        cell.type = ValueType::Empty;
        return;
    }
    if (number.match(text).hasMatch()) {
        cell.type = ValueType::Number;
        cell.number = text.trimmed().toDouble();
        return;
    }
    if (const auto m = isoDate.match(text); m.hasMatch()) {
        const QDate d(m.captured(1).toInt(), m.captured(2).toInt(), m.captured(3).toInt());
        if (d.isValid()) {
            cell.type = ValueType::Date;
            cell.number = SerialOf(d);
            return;
        }
    }
    cell.type = ValueType::Text;
    texts_.push_back(text);
    cell.text = std::uint32_t(texts_.size() - 1);
}

void SheetModel::Range::SetValue(const QString& text) const {
    for (int r = area_.top; r <= area_.bottom; ++r)
        for (int c = area_.left; c <= area_.right; ++c) sheet_.Assign(sheet_.At(r, c), text);
}

void SheetModel::Range::SetValue(double number) const {
    for (int r = area_.top; r <= area_.bottom; ++r)
        for (int c = area_.left; c <= area_.right; ++c) {
            Cell& cell = sheet_.At(r, c);
            cell.type = ValueType::Number;
            cell.number = number;
            cell.text = 0;
        }
}

void SheetModel::Range::SetMergeCells(bool merge) const {
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
    sheet_.Restyle(area_, [=](Style& s) { s.horizontalAlignment = alignment; });
}
void SheetModel::Range::SetInteriorColor(int bgr) const {
    sheet_.Restyle(area_, [=](Style& s) { s.interiorColor = bgr; });
}
void SheetModel::Range::SetNumberFormat(const QString& format) const {
    sheet_.Restyle(area_, [&](Style& s) { s.numberFormat = format; });
}
void SheetModel::Range::SetFontName(const QString& name) const {
    sheet_.Restyle(area_, [&](Style& s) { s.fontName = name; });
}
void SheetModel::Range::SetFontSize(double size) const {
    sheet_.Restyle(area_, [=](Style& s) { s.fontSize = size; });
}
void SheetModel::Range::SetFontBold(bool bold) const {
    sheet_.Restyle(area_, [=](Style& s) { s.bold = bold; });
}
void SheetModel::Range::SetBordersLineStyle(int style) const {
    sheet_.Restyle(area_, [=](Style& s) { s.borderLineStyle = style; });
}
void SheetModel::Range::SetWrapText(bool wrap) const {
    sheet_.Restyle(area_, [=](Style& s) { s.wrapText = wrap; });
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
    return row >= 1 && row <= int(rows_.size()) ? int(rows_[row - 1].size()) : 0;
}

SheetModel::Value SheetModel::ValueAt(int row, int col) const {
    Value v;
    if (const Cell* c = Find(row, col)) {
        v.type = c->type;
        v.number = c->number;
        if (c->type == ValueType::Text) v.text = texts_[c->text];
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

bool SheetModel::IsDateValue(int row, int col) const {
    const Cell* c = Find(row, col);
    return c && c->type == ValueType::Date;
}
