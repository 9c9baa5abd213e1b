#include "core/Dialogs.h"
#include "core/RuntimeError.h"
#include "frame/TextMeasure.h"
#include "reports/parking/ParkingStatementFixture.h"

using namespace yunqi;

namespace {
const QString kTotal = QStringLiteral("合计");
const QString kOf = QStringLiteral("其中");
}  // namespace

class ParkingRows : public ParkingLedger {};

TEST_F(ParkingRows, OneTicketGivesOneBatchTheTotalAndItsMethod) {
    Ticket("00000001", "S1", "2024-03-01 09:00:00", 105, "5", "  现金 ");
    ASSERT_TRUE(Run());
    EXPECT_EQ(Ranges(), (QStringList{"00000001", kTotal, kOf}));
    EXPECT_EQ(Rows().TicketKind(1), ParkingStatement::kPaper);
    EXPECT_EQ(Rows().PayMethod(1), QStringLiteral("现金"));
    // 100 net: 物业 30, 开发商 70, tax 5.
    EXPECT_EQ(Rows().FeeAmount(1, 1), 70);
    EXPECT_EQ(Rows().FeeAmount(1, 2), 30);
    EXPECT_EQ(Rows().FeeAmount(1, 3), 5);
    EXPECT_EQ(Rows().RowTotal(1), 105);
    EXPECT_EQ(Rows().FeeAmount(2, 2), 30);
    EXPECT_EQ(Rows().RowTotal(2), 105);
    EXPECT_TRUE(Rows().PayMethod(2).isEmpty());
    EXPECT_EQ(Breakdown(), (QStringList{"现金=105"}));
    EXPECT_EQ(statement->PageCount(), 1);
}

TEST_F(ParkingRows, BatchesAreOneNotePaidAtOneMoment) {
    const QString day = QStringLiteral("2024-03-01 09:00:00");
    struct Case {
        const char* name;
        std::vector<std::pair<QString, QString>> tickets;  // number, note
        std::vector<QString> paid;                          // per ticket
        QStringList ranges;
    };
    const std::vector<Case> cases{
        {"three tickets keep the first and the last",
         {{"A", "S1"}, {"B", "S1"}, {"C", "S1"}},
         {day, day, day},
         {"A - C"}},
        {"a number holding the joiner keeps its first piece",
         {{"X - 1", "S1"}, {"Y", "S1"}},
         {day, day},
         {"X - Y"}},
        {"one note paid on two dates",
         {{"A", "S1"}, {"B", "S1"}},
         {day, "2024-03-02 09:00:00"},
         {"A", "B"}},
        {"one day at two clock times",
         {{"A", "S1"}, {"B", "S1"}},
         {day, "2024-03-01 15:30:00"},
         {"A", "B"}},
        {"two notes paid at one moment",
         {{"A", "S1"}, {"B", "S2"}},
         {day, day},
         {"A", "B"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        ClearTickets();
        for (std::size_t i = 0; i < c.tickets.size(); ++i)
            Ticket(c.tickets[i].first, c.tickets[i].second, c.paid[i], 10);
        ASSERT_TRUE(Run());
        QStringList expected = c.ranges;
        expected << kTotal << kOf;
        EXPECT_EQ(Ranges(), expected);
    }
}

TEST_F(ParkingRows, MixedBatchTakesKindOfItsLastAndMethodOfItsFirst) {
    const QString day = QStringLiteral("2024-04-01 10:00:00");
    Ticket("A", "S1", day, 10, "NULL", "支付宝");
    Ticket("B", "S1", day, 10, "NULL", "现金", QStringLiteral("WX1"));
    Ticket("C", "S2", day, 10, "NULL", "现金", QStringLiteral("WX2"));
    Ticket("D", "S2", day, 10, "NULL", "现金");
    Ticket("E", "S3", day, 10, "NULL", "现金", QStringLiteral(""));  // empty counts as electronic
    ASSERT_TRUE(Run());
    EXPECT_EQ(Ranges().mid(0, 3), (QStringList{"A - B", "C - D", "E"}));
    EXPECT_EQ(Rows().TicketKind(1), ParkingStatement::kElectronic);
    EXPECT_EQ(Rows().PayMethod(1), QStringLiteral("支付宝"));
    EXPECT_EQ(Rows().TicketKind(2), ParkingStatement::kPaper);
    EXPECT_EQ(Rows().TicketKind(3), ParkingStatement::kElectronic);
    EXPECT_EQ(Breakdown(), (QStringList{"现金=30", "支付宝=20"}));
}

TEST_F(ParkingRows, EachTicketIsSplitAndRoundedBeforeAdding) {
    Ticket("A", "S1", "2024-05-01 10:00:00", 100);
    Extract();
    SetRatio(1, "66.7", "33.3");
    ASSERT_TRUE(Statistics());
    EXPECT_EQ(Rows().FeeAmount(1, 1), 66.7);
    EXPECT_EQ(Rows().FeeAmount(1, 2), 33.3);

    // Two tickets of 0.05 at 30%: 0.015 rounds to 0.02 on each.
    Ticket("B", "S2", "2024-05-02 10:00:00", 0.05);
    Ticket("C", "S2", "2024-05-02 10:00:00", 0.05);
    Extract();
    ASSERT_TRUE(Statistics());
    EXPECT_EQ(Ranges()[1], QStringLiteral("B - C"));
    EXPECT_DOUBLE_EQ(Rows().FeeAmount(2, 2), 0.04);
    EXPECT_DOUBLE_EQ(Rows().FeeAmount(2, 1), 0.06);
    EXPECT_DOUBLE_EQ(Rows().RowTotal(2), 0.1);

    // A ratio of 0 is a sum of zeros, not Null: the developer takes all.
    SetRatio(1, "100", "0");
    ASSERT_TRUE(Statistics());
    EXPECT_EQ(Rows().FeeAmount(1, 1), 100);
    EXPECT_EQ(Rows().FeeAmount(1, 2), 0);
}

TEST_F(ParkingRows, WeChatCountsUnderWeChatPayOnly) {
    struct Case {
        const char* listed;
        const char* onTicket;
        QStringList breakdown;
    };
    const std::vector<Case> cases{
        {"微信支付", "微信", {"微信支付=10"}},
        {"微信支付", "微信支付", {"微信支付=10"}},
        {"微信", "微信", {}},
        {"微信", "微信支付", {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.onTicket);
        ClearTickets();
        db.Exec(QStringLiteral("DELETE FROM 收款方式列表"));
        db.Exec(QStringLiteral("INSERT INTO 收款方式列表 VALUES ('%1')").arg(c.listed));
        Ticket("A", "S1", "2024-06-01 10:00:00", 10, "NULL", c.onTicket);
        ASSERT_TRUE(Run());
        EXPECT_EQ(Breakdown(), c.breakdown);
        // Without a breakdown row the statement ends at the total.
        EXPECT_EQ(Ranges().size(), c.breakdown.isEmpty() ? 2 : 3);
    }
}

TEST_F(ParkingRows, MethodsThatSumToZeroHaveNoRow) {
    Ticket("A", "S1", "2024-06-01 10:00:00", 50, "NULL", "支付宝");
    Ticket("B", "S1", "2024-06-02 10:00:00", -50, "NULL", "支付宝");
    Ticket("C", "S1", "2024-06-03 10:00:00", 20, "NULL", "现金");
    Ticket("D", "S1", "2024-06-04 10:00:00", -30, "NULL", "现金");
    ASSERT_TRUE(Run());
    EXPECT_EQ(Breakdown(), (QStringList{"现金=-10"}));
    EXPECT_EQ(Ranges().back(), kOf);
}

TEST_F(ParkingRows, OnlyUnvoidedTicketsPaidInTheRangeCount) {
    conditions.From = QDate(2024, 3, 1);
    conditions.To = QDate(2024, 3, 31);
    Ticket("A", "S1", "2024-03-31 23:59:59", 10);
    Ticket("B", "S1", "2024-04-01 00:00:00", 10);  // paid after the range
    Ticket("C", "S2", "2024-03-10 10:00:00", 10);
    db.Exec(QStringLiteral("UPDATE 票据 SET 作废日期 = '2024-03-11' WHERE 票据编号 = 'C'"));
    // Issued before the range, paid inside: its item is not extracted.
    db.AddTicket("D", "S3", "2024-02-20", "2024-03-05", QString(), 10, "现金", "甲", QString(),
                 "D1");
    db.AddLine("S3", "D", "08", 10, "NULL");
    ASSERT_TRUE(Run());
    ASSERT_EQ(statement->FeeItems().size(), 2u);
    EXPECT_EQ(statement->FeeItems()[1].ItemCode, QStringLiteral("'02'"));
    EXPECT_EQ(Ranges(), (QStringList{"A", kTotal, kOf}));
}

TEST_F(ParkingRows, EqualNumbersOfTwoNotesBothReceiveTheSumOfBoth) {
    Ticket("A", "S1", "2024-07-01 10:00:00", 10);
    Ticket("A", "S2", "2024-07-02 10:00:00", 20);
    ASSERT_TRUE(Run());
    EXPECT_EQ(Ranges().mid(0, 2), (QStringList{"A", "A"}));
    EXPECT_EQ(Rows().RowTotal(1), 30);
    EXPECT_EQ(Rows().RowTotal(2), 30);
    EXPECT_EQ(Rows().RowTotal(3), 60);
}

TEST_F(ParkingRows, NoTicketInTheRangeIsNoStatement) {
    Ticket("A", "S1", "2024-07-01 10:00:00", 10);
    Extract();
    conditions.From = QDate(2025, 1, 1);
    conditions.To = QDate(2025, 1, 31);
    EXPECT_FALSE(Statistics());
    EXPECT_EQ(statement->UpperBound(), 0);
}

TEST_F(ParkingRows, ExtractionFailureIsShownAndKeepsWhatWasThere) {
    Ticket("A", "S1", "2024-07-01 10:00:00", 10);
    RecordingDialogs dialogs;
    SetAppDialogs(&dialogs);
    Extract();
    ASSERT_EQ(statement->FeeItems().size(), 2u);
    // The statement no longer opens: the items of the last extraction stay.
    db.Exec(QStringLiteral("DROP TABLE setupsfxm"));
    statement->ExtractFeeItems(conditions, grid2, grid1);
    EXPECT_EQ(statement->FeeItems().size(), 2u);
    // On a fresh window there is nothing, and no header is laid.
    Extract();
    SetAppDialogs(nullptr);
    EXPECT_EQ(statement->FeeItems().size(), 1u);
    EXPECT_EQ(grid1.Cols(), 4);
    ASSERT_EQ(dialogs.messages.size(), 2u);
    const auto& m = dialogs.messages[0];
    EXPECT_EQ(m.title, QStringLiteral("系统提示"));
    EXPECT_EQ(m.icon, MsgIcon::Information);
    // The number with a blank for its sign, the description straight after it.
    EXPECT_TRUE(m.text.startsWith(' ')) << m.text.toStdString();
    EXPECT_TRUE(m.text.contains(QStringLiteral("setupsfxm"))) << m.text.toStdString();
}

TEST_F(ParkingRows, MoreThan32767RowsOverflow) {
    // One ticket a second, each its own batch.
    auto fill = [&](int from, int to) {
        db.Exec(QStringLiteral(
                    "WITH RECURSIVE k(i) AS (SELECT %1 UNION ALL SELECT i + 1 FROM k WHERE i < %2) "
                    "INSERT INTO 票据 (票据编号, 入库单编号, 开票日期, 收款日期, 金额, 收款方式, "
                    "开票部门编号) SELECT printf('%08d', i), 'S1', '2024-01-01', "
                    "datetime('2024-01-01', '+' || i || ' seconds'), 1, '现金', 'D1' FROM k")
                    .arg(from)
                    .arg(to));
        db.Exec(QStringLiteral("WITH RECURSIVE k(i) AS (SELECT %1 UNION ALL SELECT i + 1 FROM k "
                               "WHERE i < %2) INSERT INTO 票据开票数据 SELECT 'S1', "
                               "printf('%08d', i), '02', 1, NULL FROM k")
                    .arg(from)
                    .arg(to));
    };
    fill(1, 32766);
    ASSERT_TRUE(Run());
    EXPECT_EQ(Rows().TicketNo(32767), kTotal);

    fill(32767, 32767);
    try {
        Run();
        FAIL() << "no overflow";
    } catch (const RuntimeError& e) {
        EXPECT_EQ(e.number(), 6);
    }
}

class ParkingPage : public ParkingLedger {};

TEST_F(ParkingPage, BatchesByKindAndSummaryRowsWithoutAmounts) {
    const QString day = QStringLiteral("2024-08-01 10:00:00");
    Ticket("P1", "S1", day, 105, "5");
    Ticket("E1", "S2", day, 210, "10", "现金", QStringLiteral("WX9"));
    ASSERT_TRUE(Run(3));
    const int n = statement->FeeColumnCount();
    ASSERT_EQ(n, 3);
    ASSERT_EQ(grid1.Cols(), 7);
    statement->ShowPage(grid1, 1, 3, EstimatedTextMeasure());
    ASSERT_EQ(grid1.Rows(), 5);
    auto row = [&](int g) {
        QStringList cells;
        for (int c = 0; c < grid1.Cols(); ++c) cells << grid1.TextMatrix(g, c);
        return cells;
    };
    EXPECT_EQ(row(2), (QStringList{"1", "P1", "", "70.00", "30.00", "5.00", "105.00"}));
    EXPECT_EQ(row(3), (QStringList{"2", "", "E1", "140.00", "60.00", "10.00", "210.00"}));
    EXPECT_EQ(row(4), (QStringList{"3", "合计", "", "", "", "", "315.00"}));
    EXPECT_EQ(grid1.ColAlignment(1), FlexGrid::AlignCenterCenter);
    EXPECT_EQ(grid1.ColAlignment(2), FlexGrid::AlignCenterCenter);
    EXPECT_TRUE(grid1.Visible());

    // The breakdown falls on a page of its own.
    statement->ShowPage(grid1, 2, 3, EstimatedTextMeasure());
    ASSERT_EQ(grid1.Rows(), 3);
    EXPECT_EQ(row(2), (QStringList{"4", "其中", "", "", "", "现金", "315.00"}));
    EXPECT_EQ(grid1.CellAlignmentAt(2, n + 2), FlexGrid::AlignRightCenter);
    EXPECT_EQ(statement->PageCount(), 2);
}
