// What the golden statement's ledger lacks: batches of several tickets,
// electronic tickets, payment methods and their WeChat rule, the range's
// edges, two parking items, a failed extraction, an overflowing statement.
#include "reports/parking/ParkingStatement.h"

#include <QFile>
#include <array>

#include "core/Dialogs.h"
#include "core/RuntimeError.h"
#include "frame/TextMeasure.h"
#include "support/TicketLedger.h"

using namespace yunqi;

namespace {
const QString kTotal = QStringLiteral("合计");
const QString kOf = QStringLiteral("其中");
}  // namespace

// The ticket ledger with a second parking item, 08 临时停车费(含税5%), and a
// third method, 支付宝.
class ParkingRows : public TicketLedger<ParkingStatement> {
  protected:
    void SetUp() override {
        TicketLedger::SetUp();
        db.Item("08", "临时停车费(含税5%)", "0.05", "临时停车", "临时停车费");
        db.Methods({"支付宝"});
    }
    // A ticket of the parking item 02 unless it names another.
    void Add(Ticket t) {
        if (t.item == "01") t.item = "02";
        db.Add(t);
    }
    void ClearTickets() {
        db.Exec("DELETE FROM 票据");
        db.Exec("DELETE FROM 票据开票数据");
    }
    // Command3 on a freshly loaded window, then Command6 on the current ratios.
    void Extract() {
        session = db.Session();
        statement = std::make_unique<ParkingStatement>(*session);
        statement->InitGridHeader(statementGrid);
        statement->ExtractFeeItems(conditions, ratios, statementGrid);
    }
    bool Statistics() {
        statement->BuildGridHeader(statementGrid, ratios);
        return statement->RunStatistics(conditions, ratios, 1000);
    }
    void SetRatio(int row, const QString& developer, const QString& property) {
        ratios.SetTextMatrix(row, SplitRatios::kDeveloperCol, developer);
        ratios.SetTextMatrix(row, SplitRatios::kPropertyCol, property);
    }
    // The rows' ticket ranges and labels, in order.
    QStringList Ranges() const {
        QStringList out;
        for (int r = 1; r <= Rows().UpperBound(); ++r) out << Rows().TicketNo(r);
        return out;
    }
    // "method=sum" of the rows after "合计", in order.
    QStringList Breakdown() const {
        QStringList out;
        for (int r = RowOf(kTotal) + 1; r <= Rows().UpperBound(); ++r)
            out << Rows().PayMethod(r) + '=' + QString::number(Rows().RowTotal(r));
        return out;
    }
};

TEST_F(ParkingRows, BatchesAreOneNotePaidAtOneMoment) {
    const QString day = QStringLiteral("2024-03-01 09:00:00");
    // {number, note, paid} of each ticket, and the batches' ranges.
    using Tickets = std::vector<std::array<QString, 3>>;
    const std::vector<std::pair<Tickets, QStringList>> cases{
        {{{"A", "S1", day}, {"B", "S1", day}, {"C", "S1", day}}, {"A - C"}},
        {{{"X - 1", "S1", day}, {"Y", "S1", day}}, {"X - Y"}},  // a joiner in a number
        {{{"A", "S1", day}, {"B", "S1", "2024-03-02 09:00:00"}}, {"A", "B"}},
        {{{"A", "S1", day}, {"B", "S1", "2024-03-01 15:30:00"}}, {"A", "B"}},
        {{{"A", "S1", day}, {"B", "S2", day}}, {"A", "B"}},
    };
    for (const auto& [tickets, ranges] : cases) {
        SCOPED_TRACE(ranges.join(' ').toStdString());
        ClearTickets();
        for (const auto& [no, note, paid] : tickets)
            Add({.no = no, .note = note, .issued = paid, .amount = 10});
        ASSERT_TRUE(Run());
        EXPECT_EQ(Ranges(), (ranges + QStringList{kTotal, kOf}));
    }
}

TEST_F(ParkingRows, MixedBatchTakesKindOfItsLastAndMethodOfItsFirst) {
    const QString day = QStringLiteral("2024-04-01 10:00:00");
    Add({.no = "A", .issued = day, .amount = 10, .method = " 支付宝 "});
    Add({.no = "B", .issued = day, .amount = 10, .order = "WX1"});
    Add({.no = "C", .note = "S2", .issued = day, .amount = 10, .order = "WX2"});
    Add({.no = "D", .note = "S2", .issued = day, .amount = 10});
    Add({.no = "E", .note = "S3", .issued = day, .amount = 10, .order = ""});  // empty: electronic
    ASSERT_TRUE(Run());
    EXPECT_EQ(Ranges().mid(0, 3), (QStringList{"A - B", "C - D", "E"}));
    EXPECT_EQ(Rows().TicketKind(1), ParkingStatement::kElectronic);
    EXPECT_EQ(Rows().PayMethod(1), QStringLiteral("支付宝"));
    EXPECT_EQ(Rows().TicketKind(2), ParkingStatement::kPaper);
    EXPECT_EQ(Rows().TicketKind(3), ParkingStatement::kElectronic);
    EXPECT_EQ(Breakdown(), (QStringList{"现金=30", "支付宝=20"}));
    // An electronic batch in the column of its own, a paper one in the first.
    statement->ShowPage(statementGrid, 1, 1000, EstimatedTextMeasure());
    EXPECT_EQ(statementGrid.TextMatrix(2, 1) + '|' + statementGrid.TextMatrix(2, 2), "|A - B");
    EXPECT_EQ(statementGrid.TextMatrix(3, 1) + '|' + statementGrid.TextMatrix(3, 2), "C - D|");
}

TEST_F(ParkingRows, EachTicketIsSplitAndRoundedBeforeAdding) {
    // Two tickets of 0.05 at 30%: 0.015 rounds to 0.02 on each.
    Add({.no = "B", .note = "S2", .issued = "2024-05-02 10:00:00", .amount = 0.05});
    Add({.no = "C", .note = "S2", .issued = "2024-05-02 10:00:00", .amount = 0.05});
    ASSERT_TRUE(Run());
    EXPECT_EQ(Ranges()[0], QStringLiteral("B - C"));
    EXPECT_DOUBLE_EQ(Rows().FeeAmount(1, 2), 0.04);
    EXPECT_DOUBLE_EQ(Rows().FeeAmount(1, 1), 0.06);
    // A ratio of 0 is a sum of zeros, not Null: the developer takes all.
    SetRatio(1, "100", "0");
    ASSERT_TRUE(Statistics());
    EXPECT_DOUBLE_EQ(Rows().FeeAmount(1, 1), 0.1);
    EXPECT_EQ(Rows().FeeAmount(1, 2), 0);
}

// 微信 is counted as 微信支付; a 微信 entry of the list collects nothing.
TEST_F(ParkingRows, WeChatCountsUnderWeChatPayOnly) {
    db.Methods({"微信"});
    Add({.no = "A", .issued = "2024-06-01 10:00:00", .amount = 10, .method = "微信"});
    Add({.no = "B",
         .note = "S2",
         .issued = "2024-06-01 10:00:00",
         .amount = 5,
         .method = "微信支付"});
    ASSERT_TRUE(Run());
    EXPECT_EQ(Breakdown(), QStringList{"微信支付=15"});
}

TEST_F(ParkingRows, OnlyUnvoidedTicketsPaidInTheRangeCount) {
    conditions.From = QDate(2024, 3, 1);
    conditions.To = QDate(2024, 3, 31);
    Add({.no = "A", .issued = "2024-03-31 23:59:59", .amount = 10});
    Add({.no = "B", .issued = "2024-04-01 00:00:00", .amount = 10});  // paid after the range
    Add({.no = "C", .note = "S2", .issued = "2024-03-10", .voided = "2024-03-11", .amount = 10});
    // Issued before the range, paid inside: its item is not extracted.
    Add({.no = "D",
         .note = "S3",
         .issued = "2024-02-20",
         .paid = "2024-03-05",
         .amount = 10,
         .item = "08"});
    ASSERT_TRUE(Run());
    ASSERT_EQ(statement->FeeItems().size(), 2u);
    EXPECT_EQ(statement->FeeItems()[1].ItemCode, QStringLiteral("'02'"));
    EXPECT_EQ(Ranges(), (QStringList{"A", kTotal, kOf}));
    // Nothing paid in the range: no statement.
    conditions.From = QDate(2025, 1, 1);
    conditions.To = QDate(2025, 1, 31);
    EXPECT_FALSE(Statistics());
    EXPECT_EQ(statement->UpperBound(), 0);
}

TEST_F(ParkingRows, EqualNumbersOfTwoNotesBothReceiveTheSumOfBoth) {
    Add({.no = "A", .issued = "2024-07-01 10:00:00", .amount = 10});
    Add({.no = "A", .note = "S2", .issued = "2024-07-02 10:00:00", .amount = 20});
    ASSERT_TRUE(Run());
    EXPECT_EQ(Ranges().mid(0, 2), (QStringList{"A", "A"}));
    EXPECT_EQ(Rows().RowTotal(1), 30);
    EXPECT_EQ(Rows().RowTotal(2), 30);
    EXPECT_EQ(Rows().RowTotal(3), 60);
}

TEST_F(ParkingRows, ExtractionFailureIsShownAndKeepsWhatWasThere) {
    Add({.no = "A", .issued = "2024-07-01 10:00:00", .amount = 10});
    RecordingDialogs dialogs;
    SetAppDialogs(&dialogs);
    Extract();
    ASSERT_EQ(statement->FeeItems().size(), 2u);
    // The statement no longer opens: the items of the last extraction stay.
    db.Exec("DROP TABLE setupsfxm");
    statement->ExtractFeeItems(conditions, ratios, statementGrid);
    EXPECT_EQ(statement->FeeItems().size(), 2u);
    // On a fresh window there is nothing, and no header is laid.
    Extract();
    SetAppDialogs(nullptr);
    EXPECT_EQ(statement->FeeItems().size(), 1u);
    EXPECT_EQ(statementGrid.Cols(), 4);
    ASSERT_EQ(dialogs.messages.size(), 2u);
    // The number with a blank for its sign, the description straight after it.
    EXPECT_TRUE(dialogs.messages[0].text.startsWith(' '));
    EXPECT_TRUE(dialogs.messages[0].text.contains("setupsfxm"));
}

TEST_F(ParkingRows, MoreThan32767RowsOverflow) {
    // One ticket a second, each its own batch.
    auto fill = [&](int from, int to) {
        const QString numbers =
            QStringLiteral(
                "WITH RECURSIVE k(i) AS (SELECT %1 UNION ALL SELECT i + 1 FROM k "
                "WHERE i < %2) ")
                .arg(from)
                .arg(to);
        db.Exec(numbers +
                "INSERT INTO 票据 (票据编号, 入库单编号, 开票日期, 收款日期, 金额, 收款方式, "
                "开票部门编号) SELECT printf('%08d', i), 'S1', '2024-01-01', "
                "datetime('2024-01-01', '+' || i || ' seconds'), 1, '现金', 'D1' FROM k");
        db.Exec(numbers +
                "INSERT INTO 票据开票数据 SELECT 'S1', printf('%08d', i), '02', 1, NULL "
                "FROM k");
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

// Two parking items at their own ratios; the text of one is held by the
// golden statement.
TEST_F(ParkingRows, StatisticsTextOfTwoItemsWithRatios30And12_5) {
    Add({.no = "1", .issued = "2024-03-01 09:00:00", .amount = 105, .tax = "5"});
    Add({.no = "2", .issued = "2024-03-02 09:00:00", .amount = 105, .item = "08", .tax = "5"});
    db.Add({.no = "3", .issued = "2024-03-03 09:00:00", .amount = 106, .tax = "6"});
    Extract();
    ASSERT_EQ(ratios.Rows(), 3);
    SetRatio(2, "87.5", "12.5");
    QFile golden(YUNQI_TEST_DIR "/fixtures/golden/parking/statistics_two_items.sql");
    ASSERT_TRUE(golden.open(QIODevice::ReadOnly));
    EXPECT_EQ(statement->StatisticsSql(conditions, ratios) + '\n',
              QString::fromUtf8(golden.readAll()));
}
