// The workbook writer on real files: a workbook whose parts came out cut
// never replaces anything, and the target's kind and permissions are kept.
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <zlib.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <csignal>
#include <cstdio>

#include "core/RuntimeError.h"
#include "frame/xlsx/WorkbookCheck.h"
#include "frame/xlsx/XlsxWriter.h"

using namespace yunqi;

namespace {

// A zip archive of stored parts, as small as the format allows.
QByteArray Zip(const std::vector<std::pair<QByteArray, QByteArray>>& parts) {
    auto le16 = [](QByteArray& b, quint16 v) { b.append(char(v & 0xFF)).append(char(v >> 8)); };
    auto le32 = [&](QByteArray& b, quint32 v) {
        le16(b, quint16(v & 0xFFFF));
        le16(b, quint16(v >> 16));
    };
    QByteArray out, directory;
    for (const auto& [name, data] : parts) {
        const quint32 crc = crc32(0, reinterpret_cast<const Bytef*>(data.constData()), data.size());
        const quint32 offset = out.size();
        le32(out, 0x04034b50);
        le16(out, 20), le16(out, 0), le16(out, 0), le16(out, 0), le16(out, 0);
        le32(out, crc), le32(out, data.size()), le32(out, data.size());
        le16(out, name.size()), le16(out, 0);
        out += name + data;
        le32(directory, 0x02014b50);
        le16(directory, 20), le16(directory, 20), le16(directory, 0), le16(directory, 0);
        le16(directory, 0), le16(directory, 0);
        le32(directory, crc), le32(directory, data.size()), le32(directory, data.size());
        le16(directory, name.size()), le16(directory, 0), le16(directory, 0), le16(directory, 0);
        le16(directory, 0), le32(directory, 0), le32(directory, offset);
        directory += name;
    }
    const quint32 at = out.size();
    out += directory;
    le32(out, 0x06054b50);
    le16(out, 0), le16(out, 0), le16(out, parts.size()), le16(out, parts.size());
    le32(out, directory.size()), le32(out, at), le16(out, 0);
    return out;
}

const QByteArray kSheet =
    "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n"
    "<worksheet xmlns=\"http://schemas.openxmlformats.org/spreadsheetml/2006/main\">"
    "<sheetData><row r=\"1\"><c r=\"A1\" t=\"inlineStr\"><is><t>a &gt; b</t></is></c></row>"
    "</sheetData></worksheet>";

std::vector<std::pair<QByteArray, QByteArray>> Parts(const QByteArray& sheet) {
    return {{"[Content_Types].xml", "<?xml version=\"1.0\"?>\n<Types></Types>"},
            {"xl/workbook.xml", "<workbook><sheets/></workbook>"},
            {"xl/worksheets/sheet1.xml", sheet}};
}

void Write(const QString& path, const QByteArray& bytes) {
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
    f.write(bytes);
}

QByteArray Read(const QString& path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

QString CheckText(const QString& file) {
    try {
        CheckWorkbookFile(file, QStringLiteral("target.xlsx"));
        return QString();
    } catch (const RuntimeError& e) {
        return e.description();
    }
}

SheetModel BigSheet() {
    SheetModel sheet;
    for (int r = 1; r <= 3000; ++r)
        for (int c = 1; c <= 10; ++c)
            sheet.Cells(r, c).SetValue(
                QStringLiteral("行%1列%2 some text to fill the sheet").arg(r).arg(c));
    return sheet;
}

QStringList Hidden(const QString& dir) {
    QStringList hidden;
    for (const QString& n : QDir(dir).entryList(QDir::Files | QDir::Hidden))
        if (n.startsWith('.')) hidden << n;
    return hidden;
}

}  // namespace

TEST(WorkbookCheckTest, ACompleteArchivePasses) {
    QTemporaryDir dir;
    Write(dir.filePath("ok.xlsx"), Zip(Parts(kSheet)));
    EXPECT_EQ(CheckText(dir.filePath("ok.xlsx")), QString());
}

TEST(WorkbookCheckTest, APartCutAnywhereFailsWithItsName) {
    QTemporaryDir dir;
    // Every cut before the root's end tag, checksums made to match the cut bytes.
    for (int keep = 0; keep < kSheet.size(); keep += 7) {
        Write(dir.filePath("cut.xlsx"), Zip(Parts(kSheet.left(keep))));
        const QString text = CheckText(dir.filePath("cut.xlsx"));
        EXPECT_TRUE(text.contains("target.xlsx: the workbook came out incomplete")) << keep;
        EXPECT_TRUE(text.contains("xl/worksheets/sheet1.xml")) << keep << text.toStdString();
    }
    Write(dir.filePath("cut.xlsx"), Zip(Parts(kSheet.chopped(1))));
    EXPECT_FALSE(CheckText(dir.filePath("cut.xlsx")).isEmpty());
}

TEST(WorkbookCheckTest, ADamagedArchiveFails) {
    QTemporaryDir dir;
    const QByteArray good = Zip(Parts(kSheet));
    // The archive itself cut short: no end record, or parts beyond the end.
    for (int keep : {0, 10, int(good.size()) / 2, int(good.size()) - 1}) {
        Write(dir.filePath("a.xlsx"), good.left(keep));
        EXPECT_FALSE(CheckText(dir.filePath("a.xlsx")).isEmpty()) << keep;
    }
    // A byte of a part changed: its checksum differs.
    QByteArray flipped = good;
    flipped[flipped.indexOf("a &gt; b")] = 'x';
    Write(dir.filePath("a.xlsx"), flipped);
    EXPECT_TRUE(CheckText(dir.filePath("a.xlsx")).contains("checksum"));
    // A part missing.
    auto parts = Parts(kSheet);
    parts.pop_back();
    Write(dir.filePath("a.xlsx"), Zip(parts));
    EXPECT_TRUE(CheckText(dir.filePath("a.xlsx")).contains("parts missing"));
}

TEST(XlsxWriterFaultsTest, AFileSizeLimitNeverReplacesTheOldWorkbook) {
    QTemporaryDir dir;
    const QString target = dir.filePath("old.xlsx");
    Write(target, "the old workbook");
    // In a process of its own: the limit holds for the library's temporary parts too.
    EXPECT_EXIT(
        {
            std::signal(SIGXFSZ, SIG_IGN);
            struct rlimit rl;
            rl.rlim_cur = rl.rlim_max = 64 * 1024;
            setrlimit(RLIMIT_FSIZE, &rl);
            try {
                WriteXlsx(BigSheet(), target);
            } catch (const RuntimeError& e) {
                std::fprintf(stderr, "%ld %s\n", e.number(), e.description().toUtf8().constData());
                std::fflush(stderr);
                std::_Exit(1);
            }
            std::_Exit(0);
        },
        ::testing::ExitedWithCode(1), "75 .*old.xlsx: the workbook came out incomplete");
    EXPECT_EQ(Read(target), "the old workbook");
    EXPECT_EQ(Hidden(dir.path()), QStringList());
    // Without the limit the same sheet is written, permissions kept.
    ASSERT_EQ(chmod(QFile::encodeName(target).constData(), 0640), 0);
    WriteXlsx(BigSheet(), target);
    EXPECT_TRUE(Read(target).startsWith("PK"));
    struct stat st {};
    ASSERT_EQ(stat(QFile::encodeName(target).constData(), &st), 0);
    EXPECT_EQ(st.st_mode & 0777, 0640u);
    EXPECT_EQ(Hidden(dir.path()), QStringList());
}

TEST(XlsxWriterFaultsTest, DevicesAreWrittenInPlaceAndReadOnlyFilesRefused) {
    WriteXlsx(BigSheet(), "/dev/null");
    struct stat st {};
    ASSERT_EQ(stat("/dev/null", &st), 0);
    EXPECT_TRUE(S_ISCHR(st.st_mode));
    try {
        WriteXlsx(BigSheet(), "/dev/full");
        ADD_FAILURE() << "no error on /dev/full";
    } catch (const RuntimeError& e) {
        EXPECT_EQ(e.number(), 75);
        EXPECT_TRUE(e.description().contains("/dev/full: No space left on device"))
            << e.description().toStdString();
    }
    ASSERT_EQ(stat("/dev/full", &st), 0);
    EXPECT_TRUE(S_ISCHR(st.st_mode));

    QTemporaryDir dir;
    const QString target = dir.filePath("ro.xlsx");
    Write(target, "keep");
    QFile::setPermissions(target, QFile::ReadOwner | QFile::ReadGroup | QFile::ReadOther);
    try {
        WriteXlsx(BigSheet(), target);
        ADD_FAILURE() << "a read-only file was replaced";
    } catch (const RuntimeError& e) {
        EXPECT_EQ(e.number(), 75);
        EXPECT_TRUE(e.description().contains("ro.xlsx: ")) << e.description().toStdString();
    }
    EXPECT_EQ(Read(target), "keep");
    try {
        WriteXlsx(BigSheet(), dir.filePath("missing/x.xlsx"));
        ADD_FAILURE();
    } catch (const RuntimeError& e) {
        EXPECT_EQ(e.number(), 76);
    }
    EXPECT_EQ(Hidden(dir.path()), QStringList());
}
