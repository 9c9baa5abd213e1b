#include "shell/Startup.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QTemporaryDir>

#include "core/Dialogs.h"
#include "db/OpenDatabase.h"
#include "db/SessionState.h"
#include "shell/WindowPlacement.h"
#include "support/TestDatabase.h"

using namespace yunqi;

namespace {

class StartUpTest : public ::testing::Test {
  protected:
    void SetUp() override { SetAppDialogs(&dialogs); }
    void TearDown() override {
        SetAppDialogs(nullptr);
        AppSession().SessionConnection.reset();
    }
    DbSettings FromIni(const QString& text) {
        QFile f(dir.filePath("s.conf"));
        f.open(QIODevice::WriteOnly);
        f.write(text.toUtf8());
        f.close();
        QSettings store(dir.filePath("s.conf"), QSettings::IniFormat);
        return ReadDbSettings(store);
    }
    QTemporaryDir dir;
    RecordingDialogs dialogs;
};

}  // namespace

TEST(ConnectionTextTest, ValuesGoInAsTheyStand) {
    EXPECT_EQ(ConnectionText("sa", "p;w'd", "账房", "srv\\inst"),
              "Provider=SQLOLEDB.1;Password=p;w'd;Persist Security Info=False;User ID=sa;"
              "Initial Catalog='账房';Data Source='srv\\inst'");
    DbSettings s{"2000", "db.local,1433", "sa", "p;w}d", "账房", "FreeTDS"};
    EXPECT_EQ(OdbcConnectionString(s),
              "DRIVER={FreeTDS};SERVER=db.local;PORT=1433;DATABASE=账房;UID=sa;PWD={p;w}}d};"
              "TDS_Version=7.1;APP=" +
                  QCoreApplication::applicationName() + ";ClientCharset=UTF-8");
}

TEST_F(StartUpTest, FreeTdsOnAClosedPortGivesTheDriversDescription) {
    const DbSettings s = FromIni("[DBConfig]\nSvr=\"127.0.0.1,1\"\nUID=sa\nPWD=x\nDBname=db\n");
    EXPECT_FALSE(OpenDatabase(s));
    ASSERT_EQ(dialogs.messages.size(), 1u);
    EXPECT_TRUE(dialogs.messages[0].text.startsWith("错误信息：[FreeTDS]"));
    EXPECT_TRUE(dialogs.messages[0].text.contains("Unable to connect"))
        << dialogs.messages[0].text.toStdString();
}

TEST_F(StartUpTest, QuoteInTheCatalogueBreaksTheText) {
    const DbSettings s = FromIni("[DBConfig]\nSvr=127.0.0.1\nDBname=\"a'b\"\n");
    EXPECT_FALSE(OpenDatabase(s));
    EXPECT_TRUE(AppSession().SessionConnectionText.contains("Initial Catalog='a'b';"));
    ASSERT_EQ(dialogs.messages.size(), 1u);
    EXPECT_TRUE(dialogs.messages[0].text.startsWith("错误信息：Format of the initialization"));
}

TEST_F(StartUpTest, EmbeddedLedgerStartsWithEmptyIdentity) {
    TestDatabase db;
    const DbSettings s =
        FromIni("[DBConfig]\nDriver=SQLite\nDBname=\"" + db.Path() + "\"\nEdition=2008\n");
    int shown = 0;
    EXPECT_EQ(StartUp(s, [&] { ++shown; }), 0);
    EXPECT_EQ(shown, 1);
    EXPECT_TRUE(dialogs.messages.empty());
    const SessionState& st = AppSession();
    EXPECT_EQ(st.SessionEdition, "2008");
    ASSERT_TRUE(st.SessionConnection);
    EXPECT_TRUE(st.SessionUser.isEmpty() && st.SessionOperatorText.isEmpty() &&
                st.SessionDepartmentText.isEmpty() && st.SessionPostText.isEmpty() &&
                st.SessionPostCode.isEmpty());
}

TEST(ConnectionTextTest, OdbcServerForms) {
    DbSettings s{"2000", "srv\\inst", "用户", "", "", "FreeTDS"};
    EXPECT_EQ(OdbcConnectionString(s),
              "DRIVER={FreeTDS};SERVER=srv\\inst;DATABASE=;UID=用户;PWD=;"
              "TDS_Version=7.1;APP=" +
                  QCoreApplication::applicationName() + ";ClientCharset=UTF-8");
    s.Svr = " db.local , 1433 ";
    s.PWD = " {x} ";
    EXPECT_TRUE(OdbcConnectionString(s).contains("SERVER=db.local;PORT=1433;"));
    EXPECT_TRUE(OdbcConnectionString(s).contains(";PWD= {x} ;"));
    // A data source keeps its own database unless the settings name one.
    s.DSN = QStringLiteral("yunqi-ledger");
    EXPECT_TRUE(OdbcConnectionString(s).startsWith("DSN=yunqi-ledger;UID=用户;PWD= {x} ;APP="));
    EXPECT_FALSE(OdbcConnectionString(s).contains("DATABASE"));
    s.DBname = QStringLiteral("账房");
    EXPECT_TRUE(OdbcConnectionString(s).contains(";PWD= {x} ;DATABASE=账房;"));
    // Microsoft's drivers: the port inside SERVER, no FreeTDS keywords.
    for (const char* driver : {"SQL Server", "ODBC Driver 18 for SQL Server"})
        EXPECT_EQ(OdbcConnectionString({"2000", " db.local , 1433 ", "sa", " {x} ", "账房", driver})
                      .toStdString(),
                  ("DRIVER={" + QString(driver) +
                   "};SERVER=db.local,1433;DATABASE=账房;UID=sa;"
                   "PWD={ {x}} };APP=" +
                   QCoreApplication::applicationName())
                      .toStdString());
}

TEST(CenterInMainWindowTest, HalvesTheFreeSpaceInSinglePrecision) {
    const WindowPlace p = CenterInMainWindow(12000, 8000, 5001, 9000);
    EXPECT_EQ(p.Left, 3499.5f);
    EXPECT_EQ(p.Top, -500.0f);
    // 16777217 has no single-precision form: the half comes out even.
    EXPECT_EQ(CenterInMainWindow(16777217.0f, 0, 0, 0).Left, 8388608.0f);
}
