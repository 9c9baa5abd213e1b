// Queries on a thread of their own, as the report windows run them: the
// thread's own connection, and a stop that reaches a query already running.
#include <gtest/gtest.h>

#include <QString>
#include <atomic>
#include <chrono>
#include <future>
#include <thread>

#include "core/RuntimeError.h"
#include "core/StopRequest.h"
#include "db/DatabaseSession.h"
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

TEST(ThreadConnection, AStopEndsTheRunningQueryAndKeepsTheNextFromStarting) {
    TestDatabase db;
    auto session = db.Session();
    std::atomic<bool> sent{false};
    session->SetSqlLog([&](const QString&) { sent = true; });
    StopRequest stop;
    std::packaged_task<std::string()> task([&] { return RunAside(*session, stop, kEndless); });
    std::future<std::string> ended = task.get_future();
    std::thread worker(std::move(task));
    while (!sent) std::this_thread::sleep_for(10ms);
    stop.Request();
    // As the window does: again until the work is over, for a query that had
    // not begun when the first interrupt came. A minute is a hang, not a pace.
    for (int i = 0; i < 600 && ended.wait_for(100ms) != std::future_status::ready; ++i)
        session->Interrupt();
    if (ended.wait_for(0s) != std::future_status::ready) {
        worker.detach();
        FAIL() << "the query ran on after the interrupt";
    }
    worker.join();
    // SQLite's "interrupted" (9), taken by a trap, then the stop.
    EXPECT_EQ(ended.get(), "error 9, then stopped");
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
