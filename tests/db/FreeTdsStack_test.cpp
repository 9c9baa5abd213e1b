// The office's path end to end: the program's session code, Qt's ODBC driver,
// unixODBC and FreeTDS, against a TDS listener on loopback
// (tds_listener.py) that records the login packet.
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <cstdio>
#include <memory>
#include <ostream>

#include "core/Dialogs.h"
#include "db/OpenDatabase.h"
#include "db/SessionState.h"
#include "shell/Startup.h"

using namespace yunqi;

namespace {

bool FreeTdsInstalled() {
    QFile list(QStringLiteral("/etc/odbcinst.ini"));
    return list.open(QIODevice::ReadOnly) && list.readAll().contains("[FreeTDS]");
}

// One run of the listener: started on a free port, stopped by itself after
// one login or its time bound.
class TdsListener {
  public:
    // Its time bound outlasts the driver's login time-out of 30 s, so that a
    // stalled login shows as the driver's time-out.
    explicit TdsListener(const QStringList& args = {}) {
        process_.setProgram(QStringLiteral("/usr/bin/python3"));
        process_.setArguments(QStringList{QStringLiteral(YUNQI_TEST_DIR "/db/tds_listener.py"),
                                          QStringLiteral("--seconds"), QStringLiteral("40")} +
                              args);
        process_.start();
        if (!process_.waitForReadyRead(10000)) return;
        const QString first = QString::fromUtf8(process_.readLine()).trimmed();
        if (first.startsWith(QLatin1String("port ")))
            port_ = first.mid(5).toInt();
        else
            refusal_ = first;
    }
    ~TdsListener() {
        if (!process_.waitForFinished(45000)) process_.kill();
    }
    int Port() const { return port_; }
    QString PortText() const { return QString::number(port_); }
    // Why it did not start, when it did not.
    const QString& Refusal() const { return refusal_; }

    // The records written until it stopped: browser requests and logins.
    std::vector<QJsonObject> Records() {
        process_.waitForFinished(45000);
        std::vector<QJsonObject> records;
        for (const QByteArray& line : process_.readAllStandardOutput().split('\n'))
            if (!line.trimmed().isEmpty())
                records.push_back(QJsonDocument::fromJson(line).object());
        return records;
    }
    QJsonObject Login() {
        for (const QJsonObject& r : Records())
            if (r.contains(QLatin1String("version"))) return r;
        return {};
    }

  private:
    QProcess process_;
    int port_ = 0;
    QString refusal_;
};

// An environment variable for the length of a scope.
class ScopedEnv {
  public:
    ScopedEnv(const char* name, const QString& value)
        : name_(name), had_(qEnvironmentVariableIsSet(name)), old_(qgetenv(name)) {
        qputenv(name, value.toLocal8Bit());
    }
    ~ScopedEnv() {
        if (had_)
            qputenv(name_, old_);
        else
            qunsetenv(name_);
    }

  private:
    const char* name_;
    bool had_;
    QByteArray old_;
};

class FreeTdsStackTest : public ::testing::Test {
  protected:
    void SetUp() override {
        if (!FreeTdsInstalled())
            GTEST_SKIP() << "the FreeTDS ODBC driver is not installed (package tdsodbc)";
        SetAppDialogs(&dialogs);
    }
    void TearDown() override {
        SetAppDialogs(nullptr);
        AppSession().SessionConnection.reset();
    }
    static DbSettings Server(const QString& svr, const QString& edition = QStringLiteral("2000")) {
        DbSettings s;
        s.Edition = edition;
        s.Svr = svr;
        s.UID = QStringLiteral("出纳");
        s.PWD = QStringLiteral("secret");
        s.DBname = QStringLiteral("账房");
        s.Driver = QStringLiteral("FreeTDS");
        return s;
    }
    RecordingDialogs dialogs;
};

template <typename Row>
class FreeTdsStackTable : public FreeTdsStackTest, public ::testing::WithParamInterface<Row> {};

template <typename Row>
std::string RowName(const ::testing::TestParamInfo<Row>& info) {
    return info.param.name;
}

// Rows print as their names, not as bytes.
template <typename Row>
requires requires(const Row& r) { r.name; }
void PrintTo(const Row& row, std::ostream* os) { *os << row.name; }

struct EditionRow {
    const char* name;
    const char* edition;
    const char* version;  // as the login packet states it
};
using FreeTdsEditionTest = FreeTdsStackTable<EditionRow>;

TEST_P(FreeTdsEditionTest, LoginAsksForTheEditionsTdsVersion) {
    TdsListener listener;
    ASSERT_GT(listener.Port(), 0) << listener.Refusal().toStdString();
    EXPECT_FALSE(OpenDatabase(Server("127.0.0.1," + listener.PortText(), GetParam().edition)));
    EXPECT_EQ(listener.Login()["version"].toString(), GetParam().version);
}

INSTANTIATE_TEST_SUITE_P(Editions, FreeTdsEditionTest,
                         ::testing::Values(EditionRow{"e2000", "2000", "0x71000001"},
                                           EditionRow{"e2005", "2005", "0x72090002"},
                                           EditionRow{"e2008", "2008", "0x730B0003"},
                                           EditionRow{"e2008R2", "2008 R2", "0x730B0003"},
                                           EditionRow{"e2012", "2012", "0x74000004"},
                                           EditionRow{"e2019", "2019", "0x74000004"},
                                           EditionRow{"unknown", "Azure", "0x74000004"}),
                         RowName<EditionRow>);

enum class Form { Host, HostPort, Instance, InstancePort, Dsn };
struct FormRow {
    const char* name;
    Form form;
};
using FreeTdsSettingsFormTest = FreeTdsStackTable<FormRow>;

// Every way an office names its server reaches the listener with the user,
// application and database configured; the Chinese texts as UTF-16.
TEST_P(FreeTdsSettingsFormTest, LoginReachesTheListenerAsConfigured) {
    const Form form = GetParam().form;
    // FreeTDS asks for an instance's port on the browser's own port, 1434.
    TdsListener listener(form == Form::Instance
                             ? QStringList{QStringLiteral("--browser-port"), QStringLiteral("1434")}
                             : QStringList{});
    if (form == Form::Instance && listener.Port() == 0)
        GTEST_SKIP() << "no browser answer on 127.0.0.1: " << listener.Refusal().toStdString();
    ASSERT_GT(listener.Port(), 0) << listener.Refusal().toStdString();
    // Written as an administrator writes the settings file.
    QString svr, dsn;
    QTemporaryDir dir;
    std::vector<std::unique_ptr<ScopedEnv>> env;
    switch (form) {
        case Form::Host:  // the port is FreeTDS's to choose: 1433, or as told
            svr = QStringLiteral("127.0.0.1");
            env.push_back(std::make_unique<ScopedEnv>("TDSPORT", listener.PortText()));
            break;
        case Form::HostPort:
            svr = QStringLiteral("127.0.0.1, ") + listener.PortText();
            break;
        case Form::Instance:
            svr = QStringLiteral("127.0.0.1\\LEDGER");
            break;
        case Form::InstancePort:
            svr = QStringLiteral("127.0.0.1\\LEDGER,") + listener.PortText();
            break;
        case Form::Dsn: {
            // The data source names a server of freetds.conf, which holds
            // address, port and version.
            QFile odbc(dir.filePath("odbc.ini")), conf(dir.filePath("freetds.conf"));
            ASSERT_TRUE(odbc.open(QIODevice::WriteOnly) && conf.open(QIODevice::WriteOnly));
            odbc.write("[yunqi-ledger]\nDriver = FreeTDS\nServername = ledger\n");
            conf.write("[ledger]\n\thost = 127.0.0.1\n\tport = " + listener.PortText().toLatin1() +
                       "\n\ttds version = 7.2\n\tencryption = off\n");
            odbc.close();
            conf.close();
            env.push_back(std::make_unique<ScopedEnv>("ODBCINI", dir.filePath("odbc.ini")));
            env.push_back(std::make_unique<ScopedEnv>("FREETDSCONF", dir.filePath("freetds.conf")));
            svr = QStringLiteral("elsewhere.invalid");
            dsn = QStringLiteral("DSN=yunqi-ledger\n");
            break;
        }
    }
    {
        QFile ini(dir.filePath("settings.ini"));
        ASSERT_TRUE(ini.open(QIODevice::WriteOnly));
        ini.write(
            ("[DBConfig]\nEdition=2000\nSvr=" + svr + "\nUID=出纳\nPWD=secret\nDBname=账房\n" + dsn)
                .toUtf8());
    }
    QSettings store(dir.filePath("settings.ini"), QSettings::IniFormat);
    const DbSettings s = ReadDbSettings(store);
    EXPECT_FALSE(OpenDatabase(s));
    QJsonObject login;
    QStringList browsed;
    for (const QJsonObject& r : listener.Records()) {
        if (r.contains(QLatin1String("browser"))) browsed << r["browser"].toString();
        if (r.contains(QLatin1String("version"))) login = r;
    }
    ASSERT_FALSE(login.isEmpty()) << "no login reached the listener";
    EXPECT_EQ(login["user"].toString(), "出纳");
    EXPECT_EQ(login["app"].toString(), QCoreApplication::applicationName());
    EXPECT_EQ(login["database"].toString(), "账房");
    EXPECT_TRUE(login["password"].toString() == "secret") << "the password differs";
    EXPECT_EQ(browsed, form == Form::Instance ? QStringList{"LEDGER"} : QStringList{});
    // The data source's version, whatever Edition says.
    EXPECT_EQ(login["version"].toString(), form == Form::Dsn ? "0x72090002" : "0x71000001");
}

INSTANTIATE_TEST_SUITE_P(Forms, FreeTdsSettingsFormTest,
                         ::testing::Values(FormRow{"host", Form::Host},
                                           FormRow{"hostPort", Form::HostPort},
                                           FormRow{"instance", Form::Instance},
                                           FormRow{"instancePort", Form::InstancePort},
                                           FormRow{"dsn", Form::Dsn}),
                         RowName<FormRow>);

struct PasswordRow {
    const char* name;
    const char* password;
};
using FreeTdsPasswordTest = FreeTdsStackTable<PasswordRow>;

// The password reaches the server as written (never printed here).
TEST_P(FreeTdsPasswordTest, ReachesTheListenerAsWritten) {
    TdsListener listener;
    ASSERT_GT(listener.Port(), 0) << listener.Refusal().toStdString();
    DbSettings s = Server("127.0.0.1," + listener.PortText());
    s.PWD = QString::fromUtf8(GetParam().password);
    EXPECT_FALSE(OpenDatabase(s));
    const QString got = listener.Login()["password"].toString();
    EXPECT_TRUE(got == s.PWD) << "the password arrived with " << got.size() << " characters, not "
                              << s.PWD.size() << ", or changed";
}

INSTANTIATE_TEST_SUITE_P(
    Passwords, FreeTdsPasswordTest,
    ::testing::Values(PasswordRow{"closingBrace", "p}w}d"}, PasswordRow{"endsInBrace", "pw}"},
                      PasswordRow{"semicolon", "p;w'd"}, PasswordRow{"openingBrace", "{pwd"},
                      PasswordRow{"blanks", " {x} "}, PasswordRow{"equals", "a=b,c"},
                      PasswordRow{"chinese", "账房密码"}),
    RowName<PasswordRow>);

struct UncarriedRow {
    const char* name;
    const char* uid;
    const char* pwd;
    const char* dbName;
    const char* told;  // how the first message begins
};
using FreeTdsUncarriedTest = FreeTdsStackTable<UncarriedRow>;

// A value FreeTDS would read back altered is refused at start-up with the
// reason, before any server is asked: two messages, in order.
TEST_P(FreeTdsUncarriedTest, StartUpSaysWhyAndFails) {
    DbSettings s = Server(QStringLiteral("127.0.0.1,1"));
    s.UID = QString::fromUtf8(GetParam().uid);
    s.PWD = QString::fromUtf8(GetParam().pwd);
    s.DBname = QString::fromUtf8(GetParam().dbName);
    bool shown = false;
    EXPECT_EQ(StartUp(s, [&] { shown = true; }), 1);
    EXPECT_FALSE(shown);
    ASSERT_EQ(dialogs.messages.size(), 2u);
    EXPECT_TRUE(dialogs.messages[0].text.startsWith(QStringLiteral("错误信息：") + GetParam().told))
        << dialogs.messages[0].text.toStdString();
    EXPECT_EQ(dialogs.messages[0].title, "信息文本");
    EXPECT_EQ(dialogs.messages[1].text, "数据库连接失败!");
}

INSTANTIATE_TEST_SUITE_P(Values, FreeTdsUncarriedTest,
                         ::testing::Values(UncarriedRow{"password", "sa", "p;w}d", "db",
                                                        "PWD holds \"}\" and \";\""},
                                           UncarriedRow{"user", "{sa}", "x", "db",
                                                        "UID starts with \"{\" and holds \"}\""},
                                           UncarriedRow{"database", "sa", "x", "账;房}",
                                                        "DBname holds \"}\" and \";\""}),
                         RowName<UncarriedRow>);

// The listener closes after the login: the driver's description, then the
// start-up's own message.
TEST_F(FreeTdsStackTest, ClosedAfterTheLoginShowsTheTwoMessagesInOrder) {
    TdsListener listener;
    ASSERT_GT(listener.Port(), 0) << listener.Refusal().toStdString();
    bool shown = false;
    EXPECT_EQ(StartUp(Server("127.0.0.1," + listener.PortText()), [&] { shown = true; }), 1);
    EXPECT_FALSE(shown);
    EXPECT_FALSE(listener.Login().isEmpty());
    ASSERT_EQ(dialogs.messages.size(), 2u);
    EXPECT_TRUE(dialogs.messages[0].text.startsWith("错误信息：[FreeTDS]"));
    EXPECT_TRUE(dialogs.messages[0].text.contains("Unexpected EOF from the server"))
        << dialogs.messages[0].text.toStdString();
    EXPECT_EQ(dialogs.messages[0].title, "信息文本");
    EXPECT_EQ(dialogs.messages[1].text, "数据库连接失败!");
    EXPECT_EQ(dialogs.messages[1].title, "连接提示");
}

// A failed login answered as the old server answers it (the DONE of TDS 7.1,
// the connection kept) ends with the server's own message, not a time-out.
TEST_F(FreeTdsStackTest, FailedLoginOnEdition2000EndsWithTheLoginMessage) {
    TdsListener listener({QStringLiteral("--reply"), QStringLiteral("fail")});
    ASSERT_GT(listener.Port(), 0) << listener.Refusal().toStdString();
    QElapsedTimer clock;
    clock.start();
    EXPECT_FALSE(OpenDatabase(Server("127.0.0.1," + listener.PortText())));
    std::printf("failed login took %.3f s\n", clock.elapsed() / 1000.0);
    ASSERT_EQ(dialogs.messages.size(), 1u);
    // The server's message, its user name back from UTF-16, and no time-out.
    const QString& text = dialogs.messages[0].text;
    EXPECT_TRUE(text.startsWith("错误信息：[FreeTDS]")) << text.toStdString();
    EXPECT_TRUE(text.endsWith("Login failed for user '出纳'.")) << text.toStdString();
    EXPECT_FALSE(text.contains("Timeout expired")) << text.toStdString();
}

}  // namespace
