// The read-back of a written workbook, on archives made here: the workbook
// library doesn't report a failed write of its parts, so a part cut short must
// be found here. The writer under a full disk is run end to end in
// tests/cli/OutputFaults.
#include "frame/xlsx/WorkbookCheck.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <QFile>
#include <QTemporaryDir>

#include "core/RuntimeError.h"

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

}  // namespace

TEST(WorkbookCheckTest, AnIncompleteOrDamagedArchiveFailsWithWhatIsWrong) {
    const QByteArray good = Zip(Parts(kSheet));
    struct Case {
        QString name;
        QByteArray archive;
        QString problem;  // in the message; empty when the archive passes
    };
    std::vector<Case> cases{{"complete", good, ""}};
    // Every cut of the sheet before its root's end tag, checksums made to match.
    for (int keep = 0; keep < kSheet.size(); keep += 7)
        cases.push_back(
            {QString("sheet cut at %1").arg(keep), Zip(Parts(kSheet.left(keep))),
             "target.xlsx: the workbook came out incomplete (xl/worksheets/sheet1.xml"});
    cases.push_back({"sheet without its last byte", Zip(Parts(kSheet.chopped(1))), "sheet1.xml"});
    // The archive itself cut short: no end record, or parts beyond the end.
    for (int keep : {0, 10, int(good.size()) / 2, int(good.size()) - 1})
        cases.push_back({QString("archive cut at %1").arg(keep), good.left(keep), "target.xlsx"});
    QByteArray flipped = good;
    flipped[flipped.indexOf("a &gt; b")] = 'x';
    cases.push_back({"a byte changed", flipped, "checksum"});
    auto parts = Parts(kSheet);
    parts.pop_back();
    cases.push_back({"a part missing", Zip(parts), "parts missing"});

    QTemporaryDir dir;
    const QString file = dir.filePath("a.xlsx");
    for (const Case& c : cases) {
        QFile f(file);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
        f.write(c.archive);
        f.close();
        QString problem;
        try {
            CheckWorkbookFile(file, QStringLiteral("target.xlsx"));
        } catch (const RuntimeError& e) {
            problem = e.description();
        }
        EXPECT_EQ(problem.isEmpty(), c.problem.isEmpty()) << c.name.toStdString();
        EXPECT_TRUE(problem.contains(c.problem))
            << c.name.toStdString() << ": " << problem.toStdString();
    }
}
