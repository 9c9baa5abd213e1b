#include "frame/xlsx/WorkbookCheck.h"

#include <zlib.h>

#include <QFile>
#include <cstring>
#include <functional>
#include <vector>

#include "core/RuntimeError.h"

namespace yunqi {

namespace {

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

}  // namespace yunqi
