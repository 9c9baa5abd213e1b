// The desktop program on a bad ledger: a run-time error that an event handler
// lets through goes to the program's handler, never through Qt's event loop
// (where it would end in std::terminate); the production handler ends the
// process with the message and status 1. Headless, no form waits.
#include <gtest/gtest.h>

#include <QAction>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QTimer>

#include "cli/DemoDatabase.h"
#include "core/Dialogs.h"
#include "core/RuntimeError.h"
#include "db/DatabaseSession.h"
#include "frame/widgets/ReportWindow.h"
#include "frame/widgets/WidgetDialogs.h"
#include "reports/Reports.h"
#include "shell/widgets/Application.h"
#include "shell/widgets/MainWindow.h"

using namespace yunqi;

TEST(RuntimeErrorPathTest, TheProgramsHandlerEndsWithTheMessageAndStatusOne) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    // A demo ledger cut in half, as a copy interrupted or a disk gone bad leaves it.
    QTemporaryDir dir;
    const QString ledger = dir.filePath("ledger.sqlite");
    WriteDemoDatabase(ledger, 2000, 3);
    QFile(ledger).resize(QFileInfo(ledger).size() / 2);
    EXPECT_EXIT(
        {
            // The production set-up of main(), on the offscreen platform.
            static WidgetDialogs dialogs;
            SetAppDialogs(&dialogs);
            SetRuntimeErrorHandler(EndOnRuntimeError);
            auto session = DatabaseSession::OpenEmbedded(ledger);
            MainWindow main(std::map<QString, MainWindow::WindowFactory>{
                {"增值税开票明细表",
                 [&session] { return NewReportWindow(*FindReport("invoice"), *session); }}});
            main.show();
            // The menu entry chosen as the mouse chooses it: from the event loop.
            QTimer::singleShot(0, main.findChild<QAction*>("增值税开票明细表"), &QAction::trigger);
            QElapsedTimer clock;
            clock.start();
            while (clock.elapsed() < 10000)
                QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
            std::_Exit(7);  // not reached: the handler ends the process
        },
        ::testing::ExitedWithCode(1),
        "系统提示: 错误码: 11 错误描述: database disk image is malformed\n(.|\n)*"
        "实时错误 '11':\n\ndatabase disk image is malformed");
}

TEST(RuntimeErrorPathTest, HeadlessFormsGoToStandardErrorAndNeverWait) {
    ASSERT_TRUE(WidgetDialogs::Headless());
    WidgetDialogs dialogs;
    EXPECT_EQ(dialogs.MsgBox("text", "title", MsgIcon::Information, MsgButtons::Ok), MsgResult::Ok);
    EXPECT_EQ(dialogs.MsgBox("question", "title", MsgIcon::Question, MsgButtons::YesNo),
              MsgResult::No);
    EXPECT_EQ(dialogs.SaveFileName("name", "a|*.a"), std::nullopt);
}

// The real program, started headless on a ledger that can't be opened or isn't
// one: the two connection messages on standard error and status 1, without
// waiting. The arguments are not the program's, nor Qt's (a platform named
// there would end the program before start-up).
TEST(RuntimeErrorPathTest, AFailedStartUpOffscreenSaysWhyAndEnds) {
    QTemporaryDir config;
    QDir(config.path()).mkpath("云栖账房");
    const auto write = [&](const char* name, const QByteArray& bytes) {
        QFile f(config.filePath(name));
        EXPECT_TRUE(f.open(QIODevice::WriteOnly));
        f.write(bytes);
    };
    write("random.sqlite", QByteArray(4096, '\x5a'));
    write("empty.sqlite", QByteArray());
    {
        QSqlDatabase db = QSqlDatabase::addDatabase("QSQLITE", "foreign");
        db.setDatabaseName(config.filePath("foreign.sqlite"));
        ASSERT_TRUE(db.open());
        QSqlQuery(db).exec("CREATE TABLE other (x INTEGER)");
    }
    QSqlDatabase::removeDatabase("foreign");
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert("XDG_CONFIG_HOME", config.path());
    env.insert("QT_QPA_PLATFORM", "offscreen");
    for (const auto& [file, reason] : std::vector<std::pair<const char*, const char*>>{
             {"missing.sqlite", "unable to open database file"},
             {"random.sqlite", "file is not a database"},
             {"empty.sqlite", "no such table: 职能部门new"},
             {"foreign.sqlite", "no such table: 职能部门new"}}) {
        SCOPED_TRACE(file);
        write("云栖账房/云栖账房.ini",
              ("[DBConfig]\nDriver=SQLite\nDBname=" + config.filePath(file) + "\n").toUtf8());
        QProcess p;
        p.setProcessEnvironment(env);
        p.start(QStringLiteral(YUNQI_BIN_DIR "/yunqi-reports"),
                {"-reverse", "-platform", "nosuchplatform"});
        ASSERT_TRUE(p.waitForFinished(30000)) << "the program waits on a box nobody can see";
        const QString err = QString::fromUtf8(p.readAllStandardError());
        EXPECT_EQ(p.exitStatus(), QProcess::NormalExit);
        EXPECT_EQ(p.exitCode(), 1) << err.toStdString();
        const qsizetype first = err.indexOf(QStringLiteral("信息文本: 错误信息：") + reason);
        EXPECT_GE(first, 0) << err.toStdString();
        EXPECT_GT(err.indexOf("连接提示: 数据库连接失败!"), first) << err.toStdString();
    }
}

// A settings file the program can't read is named in the start-up form, and
// the program ends instead of trying a server with empty settings.
TEST(RuntimeErrorPathTest, AnUnreadableSettingsFileIsNamed) {
    QTemporaryDir config;
    const QString ini = config.filePath("云栖账房/云栖账房.ini");
    ASSERT_TRUE(QDir(config.path()).mkpath("云栖账房/云栖账房.ini"));
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert("XDG_CONFIG_HOME", config.path());
    env.insert("QT_QPA_PLATFORM", "offscreen");
    QProcess p;
    p.setProcessEnvironment(env);
    p.start(QStringLiteral(YUNQI_BIN_DIR "/yunqi-reports"), {});
    ASSERT_TRUE(p.waitForFinished(30000)) << "the program waits on a box nobody can see";
    const QString err = QString::fromUtf8(p.readAllStandardError());
    EXPECT_EQ(p.exitCode(), 1) << err.toStdString();
    EXPECT_TRUE(err.contains("信息文本: 错误信息：路径/文件访问错误: " + ini + ": "))
        << err.toStdString();
    EXPECT_FALSE(err.contains("数据库连接失败")) << err.toStdString();
}
