#include <gtest/gtest.h>

#include <QFile>

#include "core/RuntimeError.h"
#include "db/DatabaseSession.h"
#include "support/TestDatabase.h"

using namespace yunqi;

// A failure is the driver's error with its number, never the end of the rows.
TEST(DatabaseFaultsTest, FailuresAreTheDriversNeverAnEnd) {
    TestDatabase db;
    db.Exec("CREATE TABLE n (x INTEGER)");
    db.Exec("INSERT INTO n VALUES (1),(2),(3),(4)");
    struct Case {
        const char* name;
        QString file, sql;
        int rowsRead;
        long number;
        const char* description;
    };
    const Case cases[] = {
        {"a missing table", db.Path(), "Select * From no_such_table", 0, 1,
         "no such table: no_such_table"},
        // abs() of the smallest integer fails at the third row.
        {"a read that fails halfway", db.Path(),
         "Select Case When x < 3 Then x Else abs(-9223372036854775807 - 1) End From n", 2, 1,
         "integer overflow"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        auto session = DatabaseSession::OpenEmbedded(c.file);
        int read = 0;
        try {
            for (Recordset rs = session->Open(c.sql); !rs.AtEnd(); rs.MoveNext()) ++read;
            ADD_FAILURE() << "the failure passed for the end after " << read << " rows";
        } catch (const RuntimeError& e) {
            EXPECT_EQ(read, c.rowsRead);
            EXPECT_EQ(e.number(), c.number);
            EXPECT_EQ(e.description(), c.description);
        }
    }
}
