// What the golden statement's ledger lacks: tickets outside the window, the
// status words of voided, negative and replaced tickets, every number column,
// two items on one ticket, a payer wider than its column.
#include "reports/invoice/InvoiceStatement.h"

#include "frame/TextMeasure.h"
#include "support/TicketLedger.h"

using namespace yunqi;

class InvoiceStatementRows : public TicketLedger<InvoiceStatement> {
  protected:
    QStringList Numbers() const {
        QStringList out;
        for (int r = 1; Rows().DateText(r) != QStringLiteral("合  计"); ++r)
            out << Rows().TicketNo(r);
        return out;
    }
};

TEST_F(InvoiceStatementRows, DateWindowTakesIssuedInsideOrPaidInsideAfterIssue) {
    conditions.From = QDate(2024, 3, 1);
    conditions.To = QDate(2024, 3, 31);
    db.Add({.no = "A", .issued = "2024-02-10", .paid = "2024-03-05", .amount = 10});
    db.Add({.no = "B", .issued = "2024-02-10", .amount = 10});  // issued and paid before
    db.Add({.no = "C", .issued = "2024-03-20", .paid = kUnpaid, .amount = 10});
    db.Add({.no = "D", .issued = "2024-03-31 18:30:00", .paid = "2024-04-01", .amount = 10});
    db.Add({.no = "E", .issued = "2024-04-01", .amount = 10});
    db.Add({.no = "F", .issued = "2024-03-10", .amount = 10, .dept = "D2"});
    ASSERT_TRUE(Run());
    EXPECT_EQ(Numbers(), (QStringList{"A", "C", "D"}));
    EXPECT_EQ(Rows().DateText(RowOf("D")), QStringLiteral("2024-03-31"));
}

// One run, a ticket a row: the word in 收款方式, the row's total, the column
// of the number by the ticket's type, the payer with the address.
TEST_F(InvoiceStatementRows, EachTicketsWordTotalAndNumberColumn) {
    struct Case {
        Ticket ticket;
        const char* word;
        double total;
        const char* column;  // 专用, 普通, 电子, 收据
    };
    const QString may = QStringLiteral("2024-05-09");
    const Case cases[] = {
        {{.no = "T1", .issued = may, .voided = "2024-05-10", .amount = 50}, "作废", 0, "专用"},
        {{.no = "T2", .note = "S2", .issued = may, .voided = "2024-05-10", .amount = -50},
         "负票",
         0,
         "普通"},
        {{.no = "T3", .note = "S3", .issued = may, .amount = 50, .replaced = "X1"},
         "换票",
         0,
         "电子"},
        {{.no = "T4", .note = "S4", .issued = may, .amount = -50, .replaced = "X2"},
         "换负",
         0,
         "收据"},
        {{.no = "T5", .issued = may, .voided = "2024-05-10", .amount = 0, .replaced = "X3"},
         "作废",
         0,
         "专用"},
        {{.no = "T6", .issued = may, .amount = -20}, "现金", -20, "专用"},
        {{.no = "T7",
          .issued = may,
          .amount = 30,
          .method = "微信支付",
          .payer = "甲公司",
          .address = "1号楼"},
         "微信支付",
         30,
         "专用"},
    };
    for (const Case& c : cases) db.Add(c.ticket);
    ASSERT_TRUE(Run());
    for (const Case& c : cases) {
        SCOPED_TRACE(c.ticket.no.toStdString());
        const int r = RowOf(c.ticket.no);
        ASSERT_GT(r, 0);
        EXPECT_EQ(Rows().PayMethod(r), QString::fromUtf8(c.word));
        EXPECT_EQ(Rows().RowTotal(r), c.total);
        const std::map<QString, QString> numbers{{"专用", Rows().SpecialNo(r)},
                                                 {"普通", Rows().OrdinaryNo(r)},
                                                 {"电子", Rows().ElectronicNo(r)},
                                                 {"收据", Rows().ReceiptNo(r)}};
        for (const auto& [column, number] : numbers)
            EXPECT_EQ(number, column == QString::fromUtf8(c.column) ? c.ticket.no : QString())
                << column.toStdString();
    }
    EXPECT_EQ(Rows().PayerText(RowOf("T7")), QStringLiteral("甲公司 1号楼"));
    EXPECT_TRUE(Rows().IsVoided(RowOf("T5")));
    EXPECT_TRUE(Rows().IsReplaced(RowOf("T5")));
}

TEST_F(InvoiceStatementRows, TwoItemsOfOneTicketShareItsRow) {
    db.Add({.no = "N", .issued = "2024-02-03", .amount = 316, .item = ""});
    db.Line("N", "01", 106, "6");
    db.Line("N", "02", 210, "10");
    ASSERT_TRUE(Run());
    ASSERT_EQ(Numbers(), QStringList{"N"});
    // 物业费, its tax; 停车费 开发商, 物业, tax.
    const double expected[] = {100, 6, 140, 60, 10};
    ASSERT_EQ(statement->FeeColumnCount(), 5);
    for (int j = 1; j <= 5; ++j) EXPECT_EQ(Rows().FeeAmount(1, j), expected[j - 1]) << j;
    EXPECT_EQ(Rows().RowTotal(1), 316);
}

TEST_F(InvoiceStatementRows, APayerWiderThanItsColumnMakesItsRowTaller) {
    db.Add({.no = "1", .issued = "2024-02-01", .amount = 10});
    db.Add({.no = "2",
            .issued = "2024-02-02",
            .amount = 10,
            .payer = "一个很长很长很长很长很长很长很长很长很长很长的付款人名称"});
    ASSERT_TRUE(Run());
    statement->ShowPage(statementGrid, 1, 1000, EstimatedTextMeasure());
    EXPECT_NE(statementGrid.RowHeight(2), 600);
    EXPECT_EQ(statementGrid.RowHeight(3), 600);
}
