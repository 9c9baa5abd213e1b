#include <gtest/gtest.h>

#include <QFile>

#include "core/RuntimeError.h"
#include "db/DatabaseSession.h"
#include "support/TestDatabase.h"

using namespace yunqi;

// A read that fails halfway is the driver's error, never the end of the rows.
TEST(DatabaseFaultsTest, AReadThatFailsHalfwayIsNoEnd) {
    TestDatabase db;
    db.Exec("CREATE TABLE n (x INTEGER)");
    db.Exec("INSERT INTO n VALUES (1),(2),(3),(4)");
    auto session = db.Session();
    // abs() of the smallest integer fails at the third row, after two were read.
    Recordset rs = session->Open(
        "Select Case When x < 3 Then x Else abs(-9223372036854775807 - 1) End As v From n");
    int read = 0;
    try {
        for (; !rs.AtEnd(); rs.MoveNext()) ++read;
        ADD_FAILURE() << "the failed read passed for the end after " << read << " rows";
    } catch (const RuntimeError& e) {
        EXPECT_EQ(read, 2);
        EXPECT_TRUE(e.description().contains("integer overflow")) << e.description().toStdString();
    }
}

TEST(DatabaseFaultsTest, ATextFileIsNoLedger) {
    TestDatabase db;
    {
        QFile f(db.Path() + ".txt");
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        f.write("this is no ledger, only text\n");
    }
    auto session = DatabaseSession::OpenEmbedded(db.Path() + ".txt");
    try {
        session->Open("Select * From 票据类型");
        ADD_FAILURE();
    } catch (const RuntimeError& e) {
        EXPECT_EQ(e.number(), 26);
        EXPECT_EQ(e.description(), "file is not a database");
    }
}
