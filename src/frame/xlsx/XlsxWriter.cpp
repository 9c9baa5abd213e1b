#include "frame/xlsx/XlsxWriter.h"

#include <xlsxwriter.h>
#include <zlib.h>

#include <QDir>
#include <QFile>
#include <cstring>
#include <functional>
#include <map>
#include <vector>

#include "core/OutputFile.h"
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

// ---- The finished workbook, read back -------------------------------------------
//
// The library doesn't report failed writes of its temporary parts (a full
// temporary folder, a file-size limit): the archive then holds a part cut
// short, with a checksum that matches the cut bytes. So every part is
// inflated against its recorded length and checksum, and every XML part must
// end with the end tag of its root element, which no cut part does.

quint32 Le32(const uchar* p) { return p[0] | (p[1] << 8) | (p[2] << 16) | (quint32(p[3]) << 24); }
quint16 Le16(const uchar* p) { return quint16(p[0] | (p[1] << 8)); }

[[noreturn]] void Incomplete(const QString& path, const QString& what) {
    throw RuntimeError(ErrorCode::PathFileAccess,
                       path + QStringLiteral(": the workbook came out incomplete (") + what +
                           QStringLiteral("); the temporary folder may be full or a file-size "
                                          "limit reached"));
}

struct Part {
    QString name;
    quint16 method = 0;
    quint32 crc = 0;
    quint32 packed = 0;
    quint32 size = 0;
    quint32 local = 0;
};

// Inflates (or copies) one part, feeding its bytes to consume; checks its
// length and checksum.
void ReadPart(const uchar* base, qint64 fileSize, const Part& part, const QString& path,
              const std::function<void(const char*, qsizetype)>& consume) {
    if (qint64(part.local) + 30 > fileSize || Le32(base + part.local) != 0x04034b50)
        Incomplete(path, part.name + QStringLiteral(": no local header"));
    const uchar* local = base + part.local;
    const qint64 start = qint64(part.local) + 30 + Le16(local + 26) + Le16(local + 28);
    if (start + qint64(part.packed) > fileSize)
        Incomplete(path, part.name + QStringLiteral(": cut short"));
    const uchar* data = base + start;
    uLong crc = crc32(0, nullptr, 0);
    qint64 total = 0;
    if (part.method == 0) {
        crc = crc32(crc, data, part.packed);
        consume(reinterpret_cast<const char*>(data), part.packed);
        total = part.packed;
    } else if (part.method == 8) {
        z_stream z{};
        if (inflateInit2(&z, -MAX_WBITS) != Z_OK) Incomplete(path, QStringLiteral("zlib"));
        z.next_in = const_cast<uchar*>(data);
        z.avail_in = part.packed;
        std::vector<uchar> out(1 << 18);
        int status = Z_OK;
        while (status == Z_OK) {
            z.next_out = out.data();
            z.avail_out = uInt(out.size());
            status = inflate(&z, Z_NO_FLUSH);
            const qsizetype got = qsizetype(out.size() - z.avail_out);
            crc = crc32(crc, out.data(), uInt(got));
            total += got;
            if (got > 0) consume(reinterpret_cast<const char*>(out.data()), got);
            if (status == Z_BUF_ERROR && z.avail_in == 0) break;
        }
        const bool ended = status == Z_STREAM_END && z.avail_in == 0;
        inflateEnd(&z);
        if (!ended) Incomplete(path, part.name + QStringLiteral(": damaged data"));
    } else {
        Incomplete(path, part.name + QStringLiteral(": unknown method"));
    }
    if (total != qint64(part.size) || crc != part.crc)
        Incomplete(path, part.name + QStringLiteral(": length or checksum differs"));
}

// The first and the last bytes of an XML part as they come: complete when
// the text ends with the end tag of the element it began with (blanks aside).
// Every complete part does; a part cut anywhere before that tag's last
// character doesn't, and no checksum can make up for it.
class XmlEnds {
  public:
    void Feed(const char* data, qsizetype n) {
        if (head_.size() < kKept) head_.append(data, std::min<qsizetype>(n, kKept - head_.size()));
        tail_.append(data, n);
        if (tail_.size() > 2 * kKept) tail_.remove(0, tail_.size() - kKept);
    }
    bool Complete() const {
        // The root's name: the first tag that is no declaration or comment.
        qsizetype at = 0;
        for (;;) {
            at = head_.indexOf('<', at);
            if (at < 0 || at + 1 >= head_.size()) return false;
            const char next = head_[at + 1];
            if (next != '?' && next != '!') break;
            ++at;
        }
        qsizetype stop = at + 1;
        while (stop < head_.size() && !std::strchr(" \t\r\n/>", head_[stop])) ++stop;
        if (stop >= head_.size() || stop == at + 1) return false;
        const QByteArray endTag = "</" + head_.mid(at + 1, stop - at - 1) + '>';
        return tail_.trimmed().endsWith(endTag);
    }

  private:
    static constexpr qsizetype kKept = 512;
    QByteArray head_, tail_;
};

}  // namespace

void CheckWorkbookFile(const QString& file, const QString& path) {
    QFile f(file);
    if (!f.open(QIODevice::ReadOnly)) Incomplete(path, f.errorString());
    const qint64 size = f.size();
    if (size < 22) Incomplete(path, QStringLiteral("no archive"));
    const uchar* base = f.map(0, size);
    if (!base) Incomplete(path, f.errorString());

    // The end record, behind at most a 64 KB comment.
    qint64 end = -1;
    for (qint64 at = size - 22; at >= 0 && at >= size - 22 - 65535; --at)
        if (Le32(base + at) == 0x06054b50) {
            end = at;
            break;
        }
    if (end < 0) Incomplete(path, QStringLiteral("no end record"));
    const quint16 count = Le16(base + end + 10);
    const quint32 directorySize = Le32(base + end + 12), directory = Le32(base + end + 16);
    if (qint64(directory) + directorySize > end) Incomplete(path, QStringLiteral("directory"));

    std::vector<Part> parts;
    qint64 at = directory;
    for (int i = 0; i < count; ++i) {
        if (at + 46 > end || Le32(base + at) != 0x02014b50)
            Incomplete(path, QStringLiteral("directory entry %1").arg(i));
        const uchar* e = base + at;
        Part part;
        part.method = Le16(e + 10);
        part.crc = Le32(e + 16);
        part.packed = Le32(e + 20);
        part.size = Le32(e + 24);
        part.local = Le32(e + 42);
        const quint16 nameLength = Le16(e + 28);
        if (at + 46 + nameLength > end) Incomplete(path, QStringLiteral("directory"));
        part.name = QString::fromUtf8(reinterpret_cast<const char*>(e + 46), nameLength);
        parts.push_back(part);
        at += 46 + nameLength + Le16(e + 30) + Le16(e + 32);
    }

    bool sheet = false, types = false, workbook = false;
    for (const Part& part : parts) {
        sheet = sheet || part.name.startsWith(QLatin1String("xl/worksheets/sheet"));
        types = types || part.name == QLatin1String("[Content_Types].xml");
        workbook = workbook || part.name == QLatin1String("xl/workbook.xml");
        const bool xml =
            part.name.endsWith(QLatin1String(".xml")) || part.name.endsWith(QLatin1String(".rels"));
        if (!xml) {
            ReadPart(base, size, part, path, [](const char*, qsizetype) {});
            continue;
        }
        XmlEnds ends;
        ReadPart(base, size, part, path,
                 [&ends](const char* data, qsizetype n) { ends.Feed(data, n); });
        if (!ends.Complete()) Incomplete(path, part.name + QStringLiteral(": cut short"));
    }
    if (!sheet || !types || !workbook) Incomplete(path, QStringLiteral("parts missing"));
}

void WriteXlsx(const SheetModel& sheet, const QString& path) {
    // Refuses a read-only file, a folder or a missing folder before writing.
    StagedOutput out(path);
    const QByteArray tempName = QFile::encodeName(out.StagingPath());
    // The library's temporary parts go where the system's temporary files go.
    QByteArray tmpdir = QFile::encodeName(QDir::tempPath());

    lxw_workbook_options options{};
    options.constant_memory = LXW_TRUE;
    // (The library's default, tmpfile(3), ignores $TMPDIR.)
    if (QDir(QDir::tempPath()).exists()) options.tmpdir = tmpdir.data();
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
        throw;  // out removes the temporary file
    }
    const lxw_error closed = workbook_close(book);
    if (closed != LXW_NO_ERROR) Fail(closed, path);
    CheckWorkbookFile(out.StagingPath(), path);
    out.Commit();
}

}  // namespace yunqi
