// Queries on a thread of their own, as the report windows run them: the
// thread's own connection, and a stop that reaches a query already running.
#include <gtest/gtest.h>

#include <QFile>
#include <QString>
#include <atomic>
#include <chrono>
#include <functional>
#include <future>
#include <thread>

#include "core/RuntimeError.h"
#include "core/StopRequest.h"
#include "db/DatabaseSession.h"
#include "db/OpenDatabase.h"
#include "db/SessionState.h"
#include "support/TdsListener.h"
#include "support/TestDatabase.h"

using namespace yunqi;
using namespace std::chrono_literals;

namespace {

// Counts for ever: only an interrupt ends it.
const QString kEndless = QStringLiteral(
    "WITH RECURSIVE c(x) AS (SELECT 1 UNION ALL SELECT x + 1 FROM c) SELECT count(*) FROM c");

// What the work on the thread met, in the order it met it.
std::string RunAside(DatabaseSession& session, const StopRequest& stop, const QString& sql) {
    StopScope scope(stop);
    DatabaseSession::ThreadConnection connection(session);
    std::string met;
    try {
        session.Open(sql);
        return "finished";
    } catch (const RuntimeError& e) {
        met = "error " + std::to_string(e.number()) + ", ";
    } catch (const Stopped&) {
        return "stopped";
    }
    // What comes after a trapped error: the next query does not start.
    try {
        session.Open(QStringLiteral("SELECT 1"));
        return met + "then the next query ran";
    } catch (const Stopped&) {
        return met + "then stopped";
    }
}

TEST(ThreadConnection, AThreadReadsOnItsOwnConnection) {
    TestDatabase db;
    db.Department("01", "GY01", "云栖苑");
    auto session = db.Session();
    std::string rows;
    std::thread([&] {
        DatabaseSession::ThreadConnection connection(*session);
        Recordset rs = session->Open(QStringLiteral("Select * From 职能部门new"));
        rows = rs.Value(0).toString().toStdString();
    }).join();
    EXPECT_EQ(rows, "01");
    // The session's own thread goes on on its connection.
    EXPECT_FALSE(session->Open(QStringLiteral("Select 1")).AtEnd());
}

bool FreeTdsInstalled() {
    QFile drivers(QStringLiteral("/etc/odbcinst.ini"));
    return drivers.open(QIODevice::ReadOnly) && drivers.readAll().contains("[FreeTDS]");
}

// Stops the work once its query runs (as running() tells, polled on this
// thread), as the window does; what the work met, or "hang" when it ran on.
std::string StopWhileRunning(DatabaseSession& session, const QString& sql,
                             const std::function<bool()>& running) {
    StopRequest stop;
    std::packaged_task<std::string()> task([&] { return RunAside(session, stop, sql); });
    std::future<std::string> ended = task.get_future();
    std::thread worker(std::move(task));
    for (int i = 0; i < 600 && !running(); ++i) std::this_thread::sleep_for(10ms);
    stop.Request();
    // Again until the work is over, for a query that had not begun when the
    // first interrupt came. A minute is a hang, not a pace.
    for (int i = 0; i < 600 && ended.wait_for(100ms) != std::future_status::ready; ++i)
        session.Interrupt();
    if (ended.wait_for(0s) != std::future_status::ready) {
        worker.detach();
        return "hang";
    }
    worker.join();
    return ended.get();
}

TEST(ThreadConnection, AStopEndsTheRunningQueryAndKeepsTheNextFromStarting) {
    TestDatabase db;
    auto session = db.Session();
    std::atomic<bool> sent{false};
    session->SetSqlLog([&](const QString&) { sent = true; });
    // SQLite's "interrupted" (9), taken by a trap, then the stop.
    EXPECT_EQ(StopWhileRunning(*session, kEndless, [&] { return bool(sent); }),
              "error 9, then stopped");
}

// Through the office's stack: the server that never answers sees the cancel.
TEST(ThreadConnection, AStopCancelsTheQueryAtTheServer) {
    if (!FreeTdsInstalled())
        GTEST_SKIP() << "the FreeTDS ODBC driver is not installed (package tdsodbc)";
    TestDatabase ledger;
    TdsListener listener({"--reply", "serve", "--ledger", ledger.Path(), "--sessions", "2",
                          "--stall-on", "never answered"});
    ASSERT_FALSE(listener.port_.isEmpty()) << listener.refusal_.toStdString();
    ASSERT_TRUE(OpenDatabase({.Edition = "2000",
                              .Svr = "127.0.0.1," + listener.port_,
                              .UID = "出纳",
                              .PWD = "secret",
                              .DBname = "账房",
                              .Driver = "FreeTDS"}));
    // Stopped once the server has the query, as the listener says.
    QByteArray said;
    const std::string met = StopWhileRunning(*AppSession().SessionConnection,
                                             QStringLiteral("Select 'never answered'"), [&] {
                                                 listener.process_.waitForReadyRead(10);
                                                 said += listener.process_.readAllStandardOutput();
                                                 return said.contains("never answered");
                                             });
    AppSession().SessionConnection.reset();
    listener.process_.waitForFinished(45000);
    said += listener.process_.readAllStandardOutput();
    EXPECT_TRUE(said.contains("{\"attention\": true}")) << met;
    // The cancelled statement ends the work as the stop it was.
    EXPECT_EQ(met, "stopped");
}

// Every row of a table as a text: types, values and Nulls.
std::string Dump(DatabaseSession& session) {
    std::string all;
    for (Recordset rs = session.Open(QStringLiteral("Select * From 票据 Order by 票据编号"));
         !rs.AtEnd(); rs.MoveNext()) {
        for (int i = 0; i < rs.FieldCount(); ++i)
            all += rs.IsNull(i) ? std::string("Null")
                                : std::string(rs.Value(i).typeName()) + ":" +
                                      rs.Value(i).toString().toStdString();
        all += "\n";
    }
    return all;
}

// A thread's own statement, executed below Qt's driver so that it can be
// cancelled, reads what the session's own reads, however the server types it.
TEST(ThreadConnection, ServerRowsReadTheSameOnAThreadsConnection) {
    if (!FreeTdsInstalled())
        GTEST_SKIP() << "the FreeTDS ODBC driver is not installed (package tdsodbc)";
    TestDatabase ledger;
    FillGoldenLedger(ledger);
    const QStringList kinds[] = {{"--text", "varchar", "--amounts", "money"},
                                 {"--text", "nvarchar", "--amounts", "float"},
                                 {"--text", "varchar", "--amounts", "decimal"}};
    for (const QStringList& kind : kinds) {
        TdsListener listener(
            QStringList{"--reply", "serve", "--ledger", ledger.Path(), "--sessions", "2"} + kind);
        ASSERT_FALSE(listener.port_.isEmpty()) << listener.refusal_.toStdString();
        ASSERT_TRUE(OpenDatabase({.Edition = "2012",
                                  .Svr = "127.0.0.1," + listener.port_,
                                  .UID = "出纳",
                                  .PWD = "secret",
                                  .DBname = "账房",
                                  .Driver = "FreeTDS"}));
        DatabaseSession& session = *AppSession().SessionConnection;
        const std::string own = Dump(session);
        std::string aside;
        std::thread([&] {
            DatabaseSession::ThreadConnection connection(session);
            aside = Dump(session);
        }).join();
        AppSession().SessionConnection.reset();
        EXPECT_GT(own.size(), 100u) << kind.join(' ').toStdString();
        EXPECT_EQ(aside, own) << kind.join(' ').toStdString();
    }
}

TEST(ThreadConnection, AStopBeforeTheQueryKeepsItFromStarting) {
    TestDatabase db;
    auto session = db.Session();
    StopRequest stop;
    stop.Request();
    std::string met;
    std::thread([&] { met = RunAside(*session, stop, kEndless); }).join();
    EXPECT_EQ(met, "stopped");
}

}  // namespace
