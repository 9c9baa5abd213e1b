// The office's path end to end: the program's session code, Qt's ODBC driver,
// unixODBC and FreeTDS, against a TDS listener on loopback
// (tds_listener.py) that records the login packet.
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>

#include "core/Dialogs.h"
#include "db/OpenDatabase.h"
#include "db/SessionState.h"
#include "shell/Startup.h"
#include "support/TdsListener.h"

using namespace yunqi;

namespace {

DbSettings Server(const QString& svr, const char* edition = "2000") {
    return {.Edition = edition,
            .Svr = svr,
            .UID = "出纳",
            .PWD = "secret",
            .DBname = "账房",
            .Driver = "FreeTDS"};
}

class FreeTdsStack : public ::testing::Test {
  protected:
    void SetUp() override {
        QFile list(QStringLiteral("/etc/odbcinst.ini"));
        if (!list.open(QIODevice::ReadOnly) || !list.readAll().contains("[FreeTDS]"))
            GTEST_SKIP() << "the FreeTDS ODBC driver is not installed (package tdsodbc)";
        SetAppDialogs(&dialogs);
    }
    void TearDown() override {
        SetAppDialogs(nullptr);
        for (const char* name : {"TDSPORT", "ODBCINI", "FREETDSCONF"}) qunsetenv(name);
        AppSession().SessionConnection.reset();
    }
    RecordingDialogs dialogs;
};

// Every edition's TDS version and every way an office names its server reach
// the listener with the user, application and database configured, the
// Chinese texts as UTF-16, and the password as written.
struct LoginRow {
    const char* name;
    const char* edition;
    const char* svr;  // PORT stands for the listener's
    const char* password;
    const char* version;  // as the login packet states it
    enum { Port, TdsPort, Browser, Dsn, Section } how = Port;
};
void PrintTo(const LoginRow& row, std::ostream* os) { *os << row.name; }

const LoginRow kLogins[] = {
    {"e2000", "2000", "127.0.0.1,PORT", "p}w}d", "0x71000001"},
    {"e2005", "2005", "127.0.0.1,PORT", "pw}", "0x72090002"},
    {"e2008", "2008", "127.0.0.1,PORT", "p;w'd", "0x730B0003"},
    {"e2008R2", "2008 R2", "127.0.0.1,PORT", "{pwd", "0x730B0003"},
    {"e2012", "2012", "127.0.0.1,PORT", " {x} ", "0x74000004"},
    {"e2019", "2019", "127.0.0.1,PORT", "a=b,c", "0x74000004"},
    {"unknownEdition", "Azure", "127.0.0.1,PORT", "账房密码", "0x74000004"},
    // The port is FreeTDS's to choose: 1433, or as told.
    {"host", "2000", "127.0.0.1", "secret", "0x71000001", LoginRow::TdsPort},
    {"hostBlankPort", "2000", "127.0.0.1, PORT", "secret", "0x71000001"},
    // FreeTDS asks for an instance's port on the browser's own port, 1434.
    {"instance", "2000", "127.0.0.1\\LEDGER", "secret", "0x71000001", LoginRow::Browser},
    {"instancePort", "2000", "127.0.0.1\\LEDGER,PORT", "secret", "0x71000001"},
    // The data source's server of freetds.conf holds address, port and version.
    {"dsn", "2000", "elsewhere.invalid", "secret", "0x72090002", LoginRow::Dsn},
    // Svr naming a section of freetds.conf: its host and port, the edition's version.
    {"section", "2000", "ledger", "secret", "0x71000001", LoginRow::Section},
};

class FreeTdsLogin : public FreeTdsStack, public ::testing::WithParamInterface<LoginRow> {};

TEST_P(FreeTdsLogin, ReachesTheListenerAsConfigured) {
    const LoginRow& row = GetParam();
    TdsListener listener(row.how == LoginRow::Browser
                             ? QStringList{QStringLiteral("--browser-port"), QStringLiteral("1434")}
                             : QStringList{});
    if (row.how == LoginRow::Browser && listener.port_.isEmpty())
        GTEST_SKIP() << "no browser answer on 127.0.0.1: " << listener.refusal_.toStdString();
    ASSERT_FALSE(listener.port_.isEmpty()) << listener.refusal_.toStdString();
    DbSettings s = Server(QString::fromUtf8(row.svr).replace("PORT", listener.port_), row.edition);
    s.PWD = QString::fromUtf8(row.password);
    if (row.how == LoginRow::TdsPort) qputenv("TDSPORT", listener.port_.toLatin1());
    QTemporaryDir dir;
    const struct {
        const char* variable;
        QString file;
        QByteArray text;
    } files[] = {{"ODBCINI", "odbc.ini", "[yunqi-ledger]\nDriver = FreeTDS\nServername = ledger\n"},
                 {"FREETDSCONF", "freetds.conf",
                  "[ledger]\n\thost = 127.0.0.1\n\tport = " + listener.port_.toLatin1() +
                      "\n\ttds version = 7.2\n\tencryption = off\n"}};
    for (const auto& f : files) {
        QFile file(dir.filePath(f.file));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(f.text) == f.text.size());
        const bool used =
            row.how == LoginRow::Dsn || (row.how == LoginRow::Section && f.file == "freetds.conf");
        if (used) qputenv(f.variable, QFile::encodeName(file.fileName()));
    }
    if (row.how == LoginRow::Dsn) s.DSN = QStringLiteral("yunqi-ledger");
    EXPECT_FALSE(OpenDatabase(s));
    const QJsonObject login = listener.Records();
    ASSERT_TRUE(login.contains("version")) << "no login reached the listener";
    EXPECT_EQ(login["version"].toString(), row.version);
    EXPECT_EQ(login["user"].toString(), "出纳");
    EXPECT_EQ(login["app"].toString(), QCoreApplication::applicationName());
    EXPECT_EQ(login["database"].toString(), "账房");
    // Never printed: compared, and told only by its length.
    const QString got = login["password"].toString();
    EXPECT_TRUE(got == s.PWD) << "the password arrived changed, with " << got.size()
                              << " characters";
    EXPECT_EQ(login["browser"].toString(), row.how == LoginRow::Browser ? "LEDGER" : "");
}

INSTANTIATE_TEST_SUITE_P(Rows, FreeTdsLogin, ::testing::ValuesIn(kLogins),
                         [](const auto& info) { return std::string(info.param.name); });

// A start-up that fails says why, then that the connection failed. A value
// FreeTDS would read back altered is refused before any server is asked; a
// listener that closes after the login leaves the driver's description; a
// failed login answered as the old server answers it (the DONE of TDS 7.1,
// the connection kept) ends with the server's message, not a time-out.
struct StartUpRow {
    const char* name;
    const char* uid;
    const char* pwd;
    const char* dbName;
    const char* reply;   // the listener's, or none
    const char* begins;  // the first message's text after "错误信息："
    const char* holds;
    const char* driver = "FreeTDS";
};
void PrintTo(const StartUpRow& row, std::ostream* os) { *os << row.name; }

const StartUpRow kStartUps[] = {
    {"uncarriedPassword", "sa", "p;w}d", "db", nullptr, "PWD holds \"}\" and \";\"", ""},
    {"uncarriedUser", "{sa}", "x", "db", nullptr, "UID starts with \"{\" and holds \"}\"", ""},
    {"uncarriedDatabase", "sa", "x", "账;房}", nullptr, "DBname holds \"}\" and \";\"", ""},
    {"closedAfterLogin", "出纳", "x", "db", "close", "[FreeTDS]", "Unexpected EOF from the server"},
    {"loginFailedOn2000", "出纳", "x", "db", "fail", "[FreeTDS]", "Login failed for user '出纳'."},
    // A Driver value is one value: it names no database of its own.
    {"driverAddsNoKeys", "sa", "x", "db", nullptr, "[unixODBC][Driver Manager]Can't open lib",
     "'SQLite3};DATABASE=/nonexistent/other.sqlite;X={'",
     "SQLite3};DATABASE=/nonexistent/other.sqlite;X={"},
};

class FreeTdsStartUp : public FreeTdsStack, public ::testing::WithParamInterface<StartUpRow> {};

TEST_P(FreeTdsStartUp, SaysWhyThenThatTheConnectionFailed) {
    const StartUpRow& row = GetParam();
    std::optional<TdsListener> listener;
    if (row.reply) listener.emplace(QStringList{QStringLiteral("--reply"), row.reply});
    DbSettings s = Server("127.0.0.1," + (listener ? listener->port_ : QStringLiteral("1")));
    s.UID = QString::fromUtf8(row.uid);
    s.PWD = QString::fromUtf8(row.pwd);
    s.DBname = QString::fromUtf8(row.dbName);
    s.Driver = QString::fromUtf8(row.driver);
    bool shown = false;
    EXPECT_EQ(StartUp(s, [&] { shown = true; }), 1);
    EXPECT_FALSE(shown);
    if (listener) EXPECT_TRUE(listener->Records().contains("version"));
    ASSERT_EQ(dialogs.messages.size(), 2u);
    const QString& text = dialogs.messages[0].text;
    EXPECT_TRUE(text.startsWith(QStringLiteral("错误信息：") + QString::fromUtf8(row.begins)) &&
                text.contains(QString::fromUtf8(row.holds)) && !text.contains("Timeout expired"))
        << text.toStdString();
    EXPECT_EQ(dialogs.messages[0].title, "信息文本");
    EXPECT_EQ(std::pair(dialogs.messages[1].text, dialogs.messages[1].title),
              std::pair(QStringLiteral("数据库连接失败!"), QStringLiteral("连接提示")));
}

INSTANTIATE_TEST_SUITE_P(Rows, FreeTdsStartUp, ::testing::ValuesIn(kStartUps),
                         [](const auto& info) { return std::string(info.param.name); });

}  // namespace
