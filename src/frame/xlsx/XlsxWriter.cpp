#include "frame/xlsx/XlsxWriter.h"

#include <sys/stat.h>
#include <xlsxwriter.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryFile>
#include <cstdio>
#include <map>

#include "core/RuntimeError.h"

namespace yunqi {

namespace {

// Path/File access error, with the library's own words.
[[noreturn]] void Fail(lxw_error error, const QString& what) {
    throw RuntimeError(long(ErrorCode::PathFileAccess), what + QStringLiteral(": ") + QString::fromUtf8(lxw_strerror(error)));
}

uint8_t AlignOf(int alignment) {
    switch (alignment) {
        case SheetModel::kAlignCenter:
            return LXW_ALIGN_CENTER;
        case SheetModel::kAlignLeft:
            return LXW_ALIGN_LEFT;
        case SheetModel::kAlignRight:
            return LXW_ALIGN_RIGHT;
    }
    return LXW_ALIGN_NONE;
}

// The object model's colour is blue-green-red; the file's is red-green-blue.
lxw_color_t RgbOf(int bgr) {
    return lxw_color_t(((bgr & 0xFF) << 16) | (bgr & 0xFF00) | ((bgr >> 16) & 0xFF));
}

class Formats {
  public:
    Formats(lxw_workbook* book, const SheetModel& sheet) : book_(book), sheet_(sheet) {}

    // One format per style, made the first time a cell needs it.
    lxw_format* For(int styleIndex, bool isDate) {
        const int key = styleIndex * 2 + (isDate ? 1 : 0);
        auto it = made_.find(key);
        if (it != made_.end()) return it->second;
        const SheetModel::Style& s = sheet_.Styles()[styleIndex];
        lxw_format* f = nullptr;
        if (styleIndex != 0 || isDate) {
            f = workbook_add_format(book_);
            if (const uint8_t a = AlignOf(s.horizontalAlignment)) format_set_align(f, a);
            format_set_align(f, LXW_ALIGN_VERTICAL_CENTER);
            if (s.interiorColor >= 0) {
                format_set_pattern(f, LXW_PATTERN_SOLID);
                format_set_bg_color(f, RgbOf(s.interiorColor));
            }
            QString numberFormat = s.numberFormat;
            // A date shows as one unless told otherwise.
            if (isDate && numberFormat.isEmpty()) numberFormat = QStringLiteral("yyyy-mm-dd");
            if (!numberFormat.isEmpty())
                format_set_num_format(f, numberFormat.toUtf8().constData());
            if (!s.fontName.isEmpty()) format_set_font_name(f, s.fontName.toUtf8().constData());
            if (s.fontSize > 0) format_set_font_size(f, s.fontSize);
            if (s.bold) format_set_bold(f);
            if (s.borderLineStyle == 1) format_set_border(f, LXW_BORDER_THIN);
            if (s.wrapText) format_set_text_wrap(f);
        }
        made_.emplace(key, f);
        return f;
    }

    // A format with no settings, for blanks that must be written.
    lxw_format* Plain() {
        if (!plain_) plain_ = workbook_add_format(book_);
        return plain_;
    }

  private:
    lxw_format* plain_ = nullptr;
    lxw_workbook* book_;
    const SheetModel& sheet_;
    std::map<int, lxw_format*> made_;
};

void WriteSheet(lxw_workbook* book, lxw_worksheet* ws, const SheetModel& sheet) {
    Formats formats(book, sheet);
    for (int c = 1; c <= sheet.ColCount(); ++c)
        if (const double w = sheet.ColumnWidth(c); w > 0)
            worksheet_set_column(ws, lxw_col_t(c - 1), lxw_col_t(c - 1), w, nullptr);

    // Merges sorted by their last row: in one pass a merge is declared when
    // its last row comes up, its top-left value having been written already.
    std::multimap<int, SheetModel::Area> mergesByLastRow;
    std::map<std::pair<int, int>, bool> inMerge;  // non-top-left cells of merges
    for (const auto& m : sheet.Merges()) {
        mergesByLastRow.emplace(m.bottom, m);
        for (int r = m.top; r <= m.bottom; ++r)
            for (int c = m.left; c <= m.right; ++c)
                if (r != m.top || c != m.left) inMerge[{r, c}] = true;
    }

    QByteArray utf8;
    for (int r = 1; r <= sheet.RowCount(); ++r) {
        const lxw_row_t row = lxw_row_t(r - 1);
        auto [first, last] = mergesByLastRow.equal_range(r);
        if (first != last) {
            // Step onto this row first, so that the earlier rows are closed
            // and keep the values already written there.
            const auto& m = first->second;
            lxw_format* f = formats.For(sheet.StyleIndexAt(r, m.left), false);
            worksheet_write_blank(ws, row, lxw_col_t(m.left - 1), f ? f : formats.Plain());
        }
        for (auto it = first; it != last; ++it) {
            const auto& m = it->second;
            // Writes to earlier rows are refused in this mode and the blanks of
            // this row are overwritten below; only the declaration counts.
            worksheet_merge_range(ws, lxw_row_t(m.top - 1), lxw_col_t(m.left - 1),
                                  lxw_row_t(m.bottom - 1), lxw_col_t(m.right - 1), "",
                                  formats.For(sheet.StyleIndexAt(m.top, m.left), false));
        }
        const int used = sheet.UsedCols(r);
        for (int c = 1; c <= used; ++c) {
            const lxw_col_t col = lxw_col_t(c - 1);
            const int style = sheet.StyleIndexAt(r, c);
            const SheetModel::Value v = sheet.ValueAt(r, c);
            lxw_format* f = formats.For(style, v.type == SheetModel::ValueType::Date);
            const bool hidden = !inMerge.empty() && inMerge.count({r, c});
            lxw_error e = LXW_NO_ERROR;
            if (hidden || v.type == SheetModel::ValueType::Empty ||
                (v.type == SheetModel::ValueType::Text && v.text.isEmpty())) {
                if (f) e = worksheet_write_blank(ws, row, col, f);
            } else if (v.type == SheetModel::ValueType::Text) {
                utf8 = v.text.toUtf8();
                e = worksheet_write_string(ws, row, col, utf8.constData(), f);
            } else {
                e = worksheet_write_number(ws, row, col, v.number, f);
            }
            if (e != LXW_NO_ERROR) Fail(e, QStringLiteral("cell %1,%2").arg(r).arg(c));
        }
    }
}

}  // namespace

void WriteXlsx(const SheetModel& sheet, const QString& path) {
    const QFileInfo target(path);
    const QDir dir = target.absoluteDir();
    if (!dir.exists()) throw RuntimeError(ErrorCode::PathNotFound, dir.path());
    // Reserve a temporary name beside the target; the library writes it anew.
    QTemporaryFile temp(dir.filePath(QStringLiteral(".%1.XXXXXX").arg(target.fileName())));
    if (!temp.open())
        throw RuntimeError(ErrorCode::PathFileAccess, temp.errorString());
    const QString tempPath = temp.fileName();
    temp.close();

    lxw_workbook_options options{};
    options.constant_memory = LXW_TRUE;
    const QByteArray tempName = QFile::encodeName(tempPath);
    lxw_workbook* book = workbook_new_opt(tempName.constData(), &options);
    if (!book) throw RuntimeError(ErrorCode::PathFileAccess, path);
    // SOURCE_DATE_EPOCH, where set, fixes the creation time, so that the same
    // statement gives the same bytes (batch runs compared with single ones).
    bool epochSet = false;
    const qint64 epoch = qEnvironmentVariableIntValue("SOURCE_DATE_EPOCH", &epochSet);
    if (epochSet) {
        lxw_doc_properties properties{};
        properties.created = time_t(epoch);
        workbook_set_properties(book, &properties);
    }
    lxw_worksheet* ws = workbook_add_worksheet(book, nullptr);
    try {
        WriteSheet(book, ws, sheet);
    } catch (...) {
        workbook_close(book);
        throw;  // temp removes itself
    }
    const lxw_error closed = workbook_close(book);
    if (closed != LXW_NO_ERROR) Fail(closed, path);
    // The temporary name was private; the workbook gets the usual permissions.
    const mode_t mask = umask(0);
    umask(mask);
    chmod(tempName.constData(), 0666 & ~mask);
    // rename(2) replaces the target in one step.
    if (std::rename(tempName.constData(),
                    QFile::encodeName(target.absoluteFilePath()).constData()) != 0)
        throw RuntimeError(ErrorCode::PathFileAccess, path);
    temp.setAutoRemove(false);
}

}  // namespace yunqi
