#include "db/Settings.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

using namespace yunqi;

namespace {

DbSettings FromIni(const QByteArray& text) {
    QTemporaryDir dir;
    QFile f(dir.filePath("s.ini"));
    f.open(QIODevice::WriteOnly);
    f.write(text);
    f.close();
    QSettings store(dir.filePath("s.ini"), QSettings::IniFormat);
    return ReadDbSettings(store);
}

}  // namespace

// Every value of DBConfig is the text written: a comma is no list separator
// and a semicolon no comment; quoted values read as QSettings writes them.
TEST(SettingsTest, ValuesAreReadAsTheTextWritten) {
    struct Case {
        const char* line;
        const char* key;
        const char* value;
    };
    const Case cases[] = {
        {"Svr=127.0.0.1,1", "Svr", "127.0.0.1,1"},
        {"Svr=db.local, 1433", "Svr", "db.local, 1433"},
        {"Svr=srv\\inst", "Svr", "srv\\inst"},  // no escape: QSettings would read "srvnst"
        {"DBname=C:\\data\\new.sqlite", "DBname", "C:\\data\\new.sqlite"},
        {"Svr=host", "Svr", "host"},
        {"DBname=账房,2024", "DBname", "账房,2024"},
        {"DBname=a,b,c", "DBname", "a,b,c"},
        {"PWD=p,w", "PWD", "p,w"},
        {"PWD=p;w'd", "PWD", "p;w'd"},
        {"PWD=,", "PWD", ","},
        {"PWD=x,", "PWD", "x,"},
        {"PWD=\"a,b\"", "PWD", "a,b"},
        {"PWD=\"p;w'd\"", "PWD", "p;w'd"},
        {"PWD=\" x \"", "PWD", " x "},
        {"PWD=  spaced  ", "PWD", "spaced"},
        {"PWD=a=b", "PWD", "a=b"},
        {"PWD=", "PWD", ""},
        {"UID=sa,admin", "UID", "sa,admin"},
        {"Edition=2008,R2", "Edition", "2008,R2"},
        {"Driver=SQL Server,Native", "Driver", "SQL Server,Native"},
    };
    for (const Case& c : cases) {
        const DbSettings s = FromIni(QByteArray("[DBConfig]\n") + c.line + "\n");
        const QString got = QString(c.key) == "Svr"       ? s.Svr
                            : QString(c.key) == "DBname"  ? s.DBname
                            : QString(c.key) == "PWD"     ? s.PWD
                            : QString(c.key) == "UID"     ? s.UID
                            : QString(c.key) == "Edition" ? s.Edition
                                                          : s.Driver;
        EXPECT_EQ(got, QString::fromUtf8(c.value)) << c.line;
    }
}

TEST(SettingsTest, OtherSectionsAndDefaults) {
    const DbSettings s = FromIni(
        "[Other]\nSvr=elsewhere,1\n[DBConfig]\nSvr=here,2\n; a comment, with a comma\n"
        "[Later]\nPWD=not ours\n");
    EXPECT_EQ(s.Svr, "here,2");
    EXPECT_EQ(s.PWD, "");
    EXPECT_EQ(s.Edition, "2000");
    EXPECT_EQ(s.Driver, DefaultDriver());
}

// Values written through QSettings (quoted where they hold a comma, a
// semicolon or blanks) come back as written.
TEST(SettingsTest, ValuesWrittenByQSettingsRoundTrip) {
    QTemporaryDir dir;
    const QString file = dir.filePath("s.ini");
    const QString values[] = {"127.0.0.1,1", "p;w,'d", " lead", "账房,二", "plain"};
    for (const QString& v : values) {
        {
            QSettings store(file, QSettings::IniFormat);
            store.setValue("DBConfig/PWD", v);
        }
        QSettings store(file, QSettings::IniFormat);
        EXPECT_EQ(ReadDbSettings(store).PWD, v) << v.toStdString();
    }
}

// Notepad's encodings: a byte-order mark decides; without one, text that is
// valid UTF-8 is UTF-8 and anything else is in the system's ANSI code page.
TEST(SettingsTest, TheFilesEncodingIsTakenFromItsBytes) {
    const auto ansi = [](const QByteArray& bytes) { return "ANSI:" + QString::fromLatin1(bytes); };
    const QString ledger = QString::fromUtf8("D:\\账房目录\\账房.sqlite");
    const QByteArray utf16le(reinterpret_cast<const char*>(ledger.utf16()), ledger.size() * 2);
    QByteArray utf16be;
    for (const QChar c : ledger) utf16be += char(c.unicode() >> 8), utf16be += char(c.unicode());
    struct Case {
        const char* name;
        QByteArray bytes;
        QString text;
    };
    const Case cases[] = {
        {"UTF-8 with its mark", "\xEF\xBB\xBF" + ledger.toUtf8(), ledger},
        {"UTF-8 without a mark", ledger.toUtf8(), ledger},
        {"UTF-16 little-endian (Notepad's Unicode)", "\xFF\xFE" + utf16le, ledger},
        {"UTF-16 big-endian", "\xFE\xFF" + utf16be, ledger},
        {"ASCII", "Svr=host,1433", "Svr=host,1433"},
        // 账房 in GBK: not UTF-8.
        {"GBK", "DBname=\xD5\xCB\xB7\xBF", QString::fromLatin1("ANSI:DBname=\xD5\xCB\xB7\xBF")},
        {"a cut UTF-8 sequence", "x\xE8\xB4", QString::fromLatin1("ANSI:x\xE8\xB4")},
    };
    for (const Case& c : cases) EXPECT_EQ(DecodeSettingsText(c.bytes, +ansi), c.text) << c.name;
}

// A settings file that is there and can't be read stops the reading with its
// name and the reason, rather than giving empty settings.
TEST(SettingsTest, AnUnreadableFileIsNamed) {
    QTemporaryDir dir;
    const QString folder = dir.filePath("folder.ini");
    ASSERT_TRUE(QDir().mkdir(folder));
    const QString locked = dir.filePath("locked.ini");
    {
        QFile f(locked);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        f.write("[DBConfig]\nSvr=host\n");
    }
    QFile::setPermissions(locked, QFileDevice::Permissions());
    const bool lockedOut = !QFile(locked).open(QIODevice::ReadOnly);  // root reads anyway
    for (const QString& file : {folder, locked}) {
        if (file == locked && !lockedOut) continue;
        QSettings store(file, QSettings::IniFormat);
        try {
            ReadDbSettings(store);
            ADD_FAILURE() << "read " << file.toStdString();
        } catch (const SettingsUnreadable& e) {
            EXPECT_EQ(e.number(), 75);
            EXPECT_TRUE(e.description().startsWith("Path/File access error: " + file + ": "))
                << e.description().toStdString();
        }
    }
}
