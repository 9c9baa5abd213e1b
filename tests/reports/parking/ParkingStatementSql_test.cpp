#include <QFile>

#include "reports/parking/ParkingStatementFixture.h"

using namespace yunqi;

namespace {

// A checked-in text, without the line end its file closes with.
QString Golden(const char* name) {
    QFile file(QStringLiteral(YUNQI_TEST_DIR "/fixtures/golden/parking/") + QLatin1String(name));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name;
    QString text = QString::fromUtf8(file.readAll());
    if (text.endsWith(QLatin1Char('\n'))) text.chop(1);
    return text;
}

}  // namespace

class ParkingStatementSql : public ParkingLedger {};

TEST_F(ParkingStatementSql, TextsAreExactForTwoItemsWithRatios30And12_5) {
    Ticket("1", "S1", "2024-03-01 09:00:00", 105, "5");
    Ticket("2", "S1", "2024-03-02 09:00:00", 105, "5", "现金", QString(), "08");
    Ticket("3", "S1", "2024-03-03 09:00:00", 106, "6", "现金", QString(), "01");
    std::vector<QString> sent;
    session = db.Session();
    session->SetSqlLog([&](const QString& sql) { sent.push_back(sql); });
    ParkingStatement statement(*session);

    EXPECT_EQ(ParkingStatement::FeeItemSql(conditions), Golden("extraction.sql"));
    statement.ExtractFeeItems(conditions, grid2, grid1);
    ASSERT_EQ(grid2.Rows(), 3);
    SetRatio(2, "87.5", "12.5");
    EXPECT_EQ(statement.StatisticsSql(conditions, grid2), Golden("statistics_two_items.sql"));

    // What is sent is the same text, before any rewrite for the engine.
    statement.BuildGridHeader(grid1, grid2);
    ASSERT_TRUE(statement.RunStatistics(conditions, grid2, 100));
    ASSERT_EQ(sent.size(), 3u);
    EXPECT_EQ(sent[0], Golden("extraction.sql"));
    EXPECT_EQ(sent[1], Golden("statistics_two_items.sql"));
    EXPECT_EQ(sent[2], QStringLiteral("Select * From 收款方式列表"));
}
