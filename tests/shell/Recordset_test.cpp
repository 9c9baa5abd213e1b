#include "shell/Recordset.h"

#include <gtest/gtest.h>

#include "shell/DatabaseSession.h"
#include "shell/OpenDatabase.h"
#include "support/TestDatabase.h"

namespace {

// Chinese names and values, a Null, by name and by position, on both paths.
void ReadsTheLedger(DatabaseSession& session) {
    Recordset rs = session.Open("Select 票据编号, 付款人, 地址, 金额 From 票据 Order by 票据编号");
    ASSERT_EQ(rs.FieldCount(), 4);
    EXPECT_EQ(rs.IndexOf("付款人"), 1);
    ASSERT_FALSE(rs.AtEnd());
    EXPECT_EQ(rs.Value("付款人").toString(), "王芳");
    EXPECT_EQ(rs.Value(0).toString(), "001");
    EXPECT_TRUE(rs.IsNull(2));
    EXPECT_DOUBLE_EQ(rs.Value("金额").toDouble(), 12.5);
    rs.MoveNext();
    EXPECT_EQ(rs.Value(2).toString(), "1幢");
    EXPECT_TRUE(rs.IsNull(rs.IndexOf("金额")));
    rs.MoveNext();
    EXPECT_TRUE(rs.AtEnd());

    Recordset none = session.Open("Select * From 票据 Where 1=0");
    EXPECT_TRUE(none.AtEnd());
}

class RecordsetTest : public ::testing::Test {
  protected:
    void SetUp() override {
        db.Exec(
            "INSERT INTO 票据 (票据编号, 入库单编号, 付款人, 地址, 金额) VALUES "
            "('001','S','王芳',NULL,12.5),('002','S','李强','1幢',NULL)");
    }
    TestDatabase db;
};

}  // namespace

TEST_F(RecordsetTest, EmbeddedEngine) {
    auto session = db.Session();
    ReadsTheLedger(*session);
}

TEST_F(RecordsetTest, SQLiteThroughUnixOdbc) {
    auto session =
        DatabaseSession::OpenOdbc("DRIVER={SQLite3};DATABASE=" + db.Path(), SqlDialect::SQLite);
    ReadsTheLedger(*session);
}
