#include "db/Settings.h"

#include <gtest/gtest.h>

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
