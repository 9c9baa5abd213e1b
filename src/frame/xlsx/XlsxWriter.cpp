#include "frame/xlsx/XlsxWriter.h"

#include <xlsxwriter.h>

#include <QDir>
#include <QFile>
#include <map>
#include <memory>
#include <utility>
#include <vector>

#include "core/OutputFile.h"
#include "core/RuntimeError.h"
#include "core/StopRequest.h"
#include "frame/xlsx/WorkbookCheck.h"

namespace yunqi {

namespace {

// Path/File access error, with the library's own words.
[[noreturn]] void Fail(lxw_error error, const QString& what) {
    throw RuntimeError(long(ErrorCode::PathFileAccess),
                       what + QStringLiteral(": ") + QString::fromUtf8(lxw_strerror(error)));
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

// A name as the library opens it: on Windows it is built to take UTF-8 and
// open it through the wide calls, as the ANSI code page may not spell it.
QByteArray LibraryName(const QString& path) {
#ifdef Q_OS_WIN
    return QDir::toNativeSeparators(path).toUtf8();
#else
    return QFile::encodeName(path);
#endif
}

}  // namespace

struct XlsxWriter::State {
    explicit State(const QString& target) : path(target), out(target) {}
    QString path;
    StagedOutput out;  // refuses a target that can't be written
    QByteArray tmpdir;
    lxw_workbook* book = nullptr;
    lxw_worksheet* ws = nullptr;
    std::unique_ptr<Formats> formats;
    QByteArray utf8;

    // The column widths, laid by the header before the first row.
    void SetWidths(const SheetModel& sheet) {
        for (int c = 1; c <= sheet.ColCount(); ++c)
            if (const double w = sheet.ColumnWidth(c); w > 0)
                worksheet_set_column(ws, lxw_col_t(c - 1), lxw_col_t(c - 1), w, nullptr);
    }
};

XlsxWriter::XlsxWriter(const QString& path) : d_(std::make_unique<State>(path)) {
    const QByteArray tempName = LibraryName(d_->out.StagingPath());
    // The library's temporary parts go where the system's temporary files go.
    d_->tmpdir = LibraryName(QDir::tempPath());
    lxw_workbook_options options{};
    options.constant_memory = LXW_TRUE;
    // (The library's default, tmpfile(3), ignores $TMPDIR.)
    if (QDir(QDir::tempPath()).exists()) options.tmpdir = d_->tmpdir.data();
    d_->book = workbook_new_opt(tempName.constData(), &options);
    if (!d_->book) throw RuntimeError(ErrorCode::PathFileAccess, path);
    // SOURCE_DATE_EPOCH, where set, fixes the creation time, so that the same
    // statement gives the same bytes (batch runs compared with single ones).
    bool epochSet = false;
    const qint64 epoch = qEnvironmentVariableIntValue("SOURCE_DATE_EPOCH", &epochSet);
    if (epochSet) {
        lxw_doc_properties properties{};
        properties.created = time_t(epoch);
        workbook_set_properties(d_->book, &properties);
    }
    d_->ws = workbook_add_worksheet(d_->book, nullptr);
}

XlsxWriter::~XlsxWriter() {
    // Unclosed: the library lets go of its parts; out removes the temporary file.
    if (d_->book) workbook_close(d_->book);
}

void XlsxWriter::WriteRow(const SheetModel& sheet, int r) {
    State& d = *d_;
    if (!d.formats) {
        d.formats = std::make_unique<Formats>(d.book, sheet);
        d.SetWidths(sheet);
    }
    Formats& formats = *d.formats;
    lxw_worksheet* ws = d.ws;
    const lxw_row_t row = lxw_row_t(r - 1);

    // The merges over this row. One is declared when its last row comes up,
    // its top-left value having been written already; its other cells are blank.
    std::vector<SheetModel::Area> over, ending;
    for (const auto& m : sheet.Merges()) {
        if (m.top <= r && r <= m.bottom) over.push_back(m);
        if (m.bottom == r) ending.push_back(m);
    }
    if (!ending.empty()) {
        // Step onto this row first, so that the earlier rows are closed
        // and keep the values already written there.
        const auto& m = ending.front();
        lxw_format* f = formats.For(sheet.StyleIndexAt(r, m.left), false);
        worksheet_write_blank(ws, row, lxw_col_t(m.left - 1), f ? f : formats.Plain());
    }
    for (const auto& m : ending) {
        // Writes to earlier rows are refused in this mode and the blanks of
        // this row are overwritten below; only the declaration counts.
        worksheet_merge_range(ws, lxw_row_t(m.top - 1), lxw_col_t(m.left - 1),
                              lxw_row_t(m.bottom - 1), lxw_col_t(m.right - 1), "",
                              formats.For(sheet.StyleIndexAt(m.top, m.left), false));
    }
    const auto hidden = [&over, r](int c) {
        for (const auto& m : over)
            if (m.left <= c && c <= m.right && (r != m.top || c != m.left)) return true;
        return false;
    };

    const int used = sheet.UsedCols(r);
    for (int c = 1; c <= used; ++c) {
        const lxw_col_t col = lxw_col_t(c - 1);
        const int style = sheet.StyleIndexAt(r, c);
        const SheetModel::Value v = sheet.ValueAt(r, c);
        lxw_format* f = formats.For(style, v.type == SheetModel::ValueType::Date);
        lxw_error e = LXW_NO_ERROR;
        if ((!over.empty() && hidden(c)) || v.type == SheetModel::ValueType::Empty ||
            (v.type == SheetModel::ValueType::Text && v.text.isEmpty())) {
            if (f) e = worksheet_write_blank(ws, row, col, f);
        } else if (v.type == SheetModel::ValueType::Text) {
            d.utf8 = v.text.toUtf8();
            e = worksheet_write_string(ws, row, col, d.utf8.constData(), f);
        } else {
            e = worksheet_write_number(ws, row, col, v.number, f);
        }
        if (e != LXW_NO_ERROR) Fail(e, QStringLiteral("cell %1,%2").arg(r).arg(c));
    }
}

void XlsxWriter::Close() {
    State& d = *d_;
    lxw_workbook* book = std::exchange(d.book, nullptr);
    const lxw_error closed = workbook_close(book);
    if (closed != LXW_NO_ERROR) Fail(closed, d.path);
    CheckWorkbookFile(d.out.StagingPath(), d.path);
    // Stopped while it was packed: the target stays as it was.
    ThrowIfStopRequested();
    d.out.Commit();
}

void StreamXlsx(const QString& path, const std::function<void(SheetModel&)>& compose,
                const std::function<void()>& beforeClose, const CloseRunner& closeWith) {
    // The close keeps the writer: a runner may leave it to finish on its own.
    const auto writer = std::make_shared<XlsxWriter>(path);
    SheetModel sheet(writer.get());
    compose(sheet);
    sheet.Complete();
    if (beforeClose) beforeClose();
    if (closeWith)
        closeWith([writer] { writer->Close(); });
    else
        writer->Close();
}

}  // namespace yunqi
