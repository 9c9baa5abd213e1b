#include "db/Recordset.h"

#include <gtest/gtest.h>

#include "core/RuntimeError.h"
#include "db/DatabaseSession.h"
#include "support/ErrorNumber.h"
#include "support/TestDatabase.h"

using namespace yunqi;

namespace {

// Chinese names and values, a Null, by name and by position.
void ReadsTheLedger(DatabaseSession& session) {
    Recordset rs = session.Open("Select 票据编号, 付款人, 地址, 金额 From 票据 Order by 票据编号");
    ASSERT_EQ(rs.FieldCount(), 4);
    EXPECT_EQ(rs.FieldNames(), (QStringList{"票据编号", "付款人", "地址", "金额"}));
    EXPECT_EQ(rs.IndexOf("付款人"), 1);
    ASSERT_FALSE(rs.AtEnd());
    EXPECT_EQ(rs.Value("付款人").toString(), "王芳");
    EXPECT_EQ(rs.Value(0).toString(), "001");
    EXPECT_TRUE(rs.IsNull(2));
    EXPECT_FALSE(rs.Value(2).isValid());
    EXPECT_DOUBLE_EQ(rs.Value("金额").toDouble(), 12.5);
    rs.MoveNext();
    EXPECT_EQ(rs.Value(2).toString(), "1幢");
    EXPECT_TRUE(rs.IsNull(rs.IndexOf("金额")));
    rs.MoveNext();
    EXPECT_TRUE(rs.AtEnd());
}

// A second recordset opened while the first is half read, as reports nest them.
void NestedRecordsets(DatabaseSession& session) {
    Recordset outer = session.Open("Select 票据编号, 地址 From 票据 Order by 票据编号");
    EXPECT_EQ(outer.Value(0).toString(), "001");
    Recordset inner = session.Open("Select 付款人 From 票据 Where 票据编号='003'");
    EXPECT_EQ(inner.Value(0).toString(), "赵敏");
    EXPECT_EQ(outer.Value(0).toString(), "001");
    EXPECT_TRUE(outer.IsNull(1));
    outer.MoveNext();
    EXPECT_EQ(outer.Value("票据编号").toString(), "002");
    EXPECT_EQ(outer.Value(1).toString(), "1幢");
    outer.MoveNext();
    EXPECT_EQ(outer.Value(0).toString(), "003");
    EXPECT_TRUE(outer.IsNull(1));
    outer.MoveNext();
    EXPECT_TRUE(outer.AtEnd());
    inner.MoveNext();
    EXPECT_TRUE(inner.AtEnd());
}

class RecordsetTest : public ::testing::Test {
  protected:
    void SetUp() override {
        db.Exec(
            "INSERT INTO 票据 (票据编号, 入库单编号, 付款人, 地址, 金额) VALUES "
            "('001','S','王芳',NULL,12.5),('002','S','李强','1幢',NULL)");
    }
    std::unique_ptr<DatabaseSession> Odbc() const {
        return DatabaseSession::OpenOdbc("DRIVER={SQLite3};DATABASE=" + db.Path(),
                                         SqlDialect::SQLite);
    }
    TestDatabase db;
};

}  // namespace

// Both engines read alike, the ODBC one with or without a query time-out.
TEST_F(RecordsetTest, EitherEngineReadsTheLedger) {
    ReadsTheLedger(*db.Session());
    auto odbc = Odbc();
    EXPECT_EQ(odbc->CommandTimeout(), std::nullopt);
    ReadsTheLedger(*odbc);
    for (int seconds : {5, 0}) {
        odbc->SetCommandTimeout(seconds);
        EXPECT_EQ(odbc->CommandTimeout(), seconds);
        ReadsTheLedger(*odbc);
    }
}

TEST_F(RecordsetTest, NestedRecordsetsStayReadable) {
    db.Exec("INSERT INTO 票据 (票据编号, 入库单编号, 付款人) VALUES ('003','S','赵敏')");
    NestedRecordsets(*db.Session());
    auto odbc = Odbc();
    EXPECT_FALSE(odbc->OneStatementAtATime());
    NestedRecordsets(*odbc);
    // What a SQL Server connection does: the half-read one is read into memory.
    odbc->SetOneStatementAtATime(true);
    NestedRecordsets(*odbc);
}

TEST_F(RecordsetTest, ErrorsCarryTheDriversNumbers) {
    auto session = db.Session();
    Recordset rs = session->Open("Select 票据编号 From 票据 Where 票据编号='001'");
    EXPECT_EQ(test::ErrorNumberOf([&] { rs.IndexOf("付款人"); }), 3265);
    EXPECT_EQ(test::ErrorNumberOf([&] { rs.Value(1); }), 3265);
    rs.MoveNext();
    EXPECT_EQ(test::ErrorNumberOf([&] { rs.Value(0); }), 3021);
    EXPECT_EQ(test::ErrorNumberOf([&] { rs.MoveNext(); }), 3021);
    try {
        session->Open("Select 无此列 From 票据");
        ADD_FAILURE();
    } catch (const RuntimeError& e) {
        EXPECT_TRUE(e.description().contains("无此列")) << e.description().toStdString();
    }
}

TEST_F(RecordsetTest, SqlLogGetsTheTextsAsAssembled) {
    auto session = db.Session();
    QStringList log;
    session->SetSqlLog([&](const QString& sql) { log << sql; });
    session->Open("Select len(付款人) From 票据");
    EXPECT_ANY_THROW(session->Open("Select 1 Where x In ()"));
    EXPECT_EQ(log, (QStringList{"Select len(付款人) From 票据", "Select 1 Where x In ()"}));
}
