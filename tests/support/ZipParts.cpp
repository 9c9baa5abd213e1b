#include "support/ZipParts.h"

#include <zlib.h>

#include <QFile>

namespace yunqi {

namespace {

quint32 Le32(const uchar* p) { return p[0] | (p[1] << 8) | (p[2] << 16) | (quint32(p[3]) << 24); }
quint16 Le16(const uchar* p) { return quint16(p[0] | (p[1] << 8)); }

std::map<QString, QByteArray> Fail(QString* problem, const QString& why) {
    if (problem) *problem = why;
    return {};
}

// A raw deflate stream of a known length.
bool Inflate(const uchar* data, quint32 packed, QByteArray& out) {
    z_stream z{};
    if (inflateInit2(&z, -MAX_WBITS) != Z_OK) return false;
    z.next_in = const_cast<uchar*>(data);
    z.avail_in = packed;
    z.next_out = reinterpret_cast<Bytef*>(out.data());
    z.avail_out = uInt(out.size());
    const int status = inflate(&z, Z_FINISH);
    const bool whole = status == Z_STREAM_END && z.avail_out == 0;
    inflateEnd(&z);
    return whole;
}

}  // namespace

std::map<QString, QByteArray> ReadZipParts(const QString& path, QString* problem) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) return Fail(problem, path + ": " + file.errorString());
    const QByteArray bytes = file.readAll();
    const auto* base = reinterpret_cast<const uchar*>(bytes.constData());
    const qsizetype size = bytes.size();

    // The end record sits in the last 22 bytes, or before a comment of up to 64 KiB.
    qsizetype end = -1;
    for (qsizetype at = size - 22; at >= 0 && at >= size - 22 - 0xFFFF; --at)
        if (Le32(base + at) == 0x06054b50) {
            end = at;
            break;
        }
    if (end < 0) return Fail(problem, path + ": no end of central directory");

    std::map<QString, QByteArray> parts;
    const int entries = Le16(base + end + 10);
    qsizetype at = Le32(base + end + 16);
    for (int i = 0; i < entries; ++i) {
        if (at + 46 > end || Le32(base + at) != 0x02014b50)
            return Fail(problem, path + ": damaged central directory");
        const uchar* e = base + at;
        const quint16 method = Le16(e + 10);
        const quint32 crc = Le32(e + 16), packed = Le32(e + 20), unpacked = Le32(e + 24);
        const quint16 nameLength = Le16(e + 28);
        const qsizetype local = Le32(e + 42);
        const QString name = QString::fromUtf8(reinterpret_cast<const char*>(e + 46), nameLength);
        at += 46 + nameLength + Le16(e + 30) + Le16(e + 32);

        if (local + 30 > size || Le32(base + local) != 0x04034b50)
            return Fail(problem, name + ": no local header");
        const qsizetype start = local + 30 + Le16(base + local + 26) + Le16(base + local + 28);
        if (start + qsizetype(packed) > size) return Fail(problem, name + ": cut short");
        QByteArray data(qsizetype(unpacked), Qt::Uninitialized);
        if (method == 0 && packed == unpacked)
            memcpy(data.data(), base + start, packed);
        else if (method != 8 || !Inflate(base + start, packed, data))
            return Fail(problem, name + ": can't inflate");
        if (crc32(0, reinterpret_cast<const Bytef*>(data.constData()), uInt(data.size())) != crc)
            return Fail(problem, name + ": checksum differs");
        parts[name] = data;
    }
    return parts;
}

}  // namespace yunqi
