#include "core/RuntimeError.h"
#include "reports/invoice/InvoiceStatement.h"
#include "support/TicketLedger.h"

using namespace yunqi;

namespace {
const QString kTotal = QStringLiteral("合  计");
const QString kOf = QStringLiteral("其中");
}  // namespace

class InvoiceStatementRows : public TicketLedger<InvoiceStatement> {
  protected:
    // The 合  计 row, found by its text.
    int TotalRow() const {
        for (int r = 1; r <= Rows().UpperBound(); ++r)
            if (Rows().DateText(r) == kTotal) return r;
        return -1;
    }
    QStringList Numbers() const {
        QStringList out;
        for (int r = 1; r < TotalRow(); ++r) out << Rows().TicketNo(r);
        return out;
    }
};

TEST_F(InvoiceStatementRows, DateWindowTakesIssuedInsideOrPaidInsideAfterIssue) {
    conditions.From = QDate(2024, 3, 1);
    conditions.To = QDate(2024, 3, 31);
    auto ticket = [&](const QString& no, const QString& issued, const QString& paid) {
        db.AddTicket(no, "S1", issued, paid, QString(), 10, "现金", "甲", QString(), "D1");
        db.AddLine("S1", no, "01", 10, "NULL");
    };
    ticket("A", "2024-02-10", "2024-03-05");  // issued before, paid inside
    ticket("B", "2024-02-10", "2024-02-10");  // issued and paid before
    ticket("C", "2024-03-20", QString());     // issued inside, unpaid
    ticket("D", "2024-03-31 18:30:00", "2024-04-01");
    ticket("E", "2024-04-01", "2024-04-01");
    db.AddTicket("F", "S1", "2024-03-10", "2024-03-10", QString(), 10, "现金", "甲", QString(),
                 "D2");
    db.AddLine("S1", "F", "01", 10, "NULL");
    ASSERT_TRUE(Run());
    EXPECT_EQ(Numbers(), (QStringList{"A", "C", "D"}));
    EXPECT_EQ(Rows().DateText(RowOf("D")), QStringLiteral("2024-03-31"));
}

TEST_F(InvoiceStatementRows, StatusWordsStandForTheMoney) {
    auto ticket = [&](const QString& no, const QString& voided, double amount,
                      const QString& replaced) {
        db.AddTicket(no, "S2", "2024-05-0" + no.right(1), "2024-05-09", voided, amount, "现金",
                     "甲", replaced, "D1");
        db.AddLine("S2", no, "01", amount, "NULL");
    };
    ticket("T1", "2024-05-10", 50, QString());
    ticket("T2", "2024-05-10", -50, QString());
    ticket("T3", QString(), 50, "X1");
    ticket("T4", QString(), -50, "X2");
    ticket("T5", "2024-05-10", 0, "X3");      // voided and replaced
    ticket("T6", QString(), -20, QString());  // negative, not voided
    ASSERT_TRUE(Run());
    const std::vector<std::pair<QString, QString>> expected{{"T1", "作废"}, {"T2", "负票"},
                                                            {"T3", "换票"}, {"T4", "换负"},
                                                            {"T5", "作废"}, {"T6", "现金"}};
    for (const auto& [no, word] : expected) {
        const int r = RowOf(no);
        ASSERT_GT(r, 0) << no.toStdString();
        EXPECT_EQ(Rows().PayMethod(r), word) << no.toStdString();
        EXPECT_EQ(Rows().OrdinaryNo(r), no);
        EXPECT_TRUE(Rows().SpecialNo(r).isEmpty());
    }
    EXPECT_EQ(Rows().RowTotal(RowOf("T1")), 0);
    EXPECT_EQ(Rows().FeeAmount(RowOf("T4"), 1), 0);
    EXPECT_TRUE(Rows().IsVoided(RowOf("T5")));
    EXPECT_TRUE(Rows().IsReplaced(RowOf("T5")));
    EXPECT_EQ(Rows().FeeAmount(RowOf("T6"), 1), -20);
    EXPECT_EQ(Rows().RowTotal(TotalRow()), -20);
}

TEST_F(InvoiceStatementRows, IssuedAheadOfPaymentIsPreIssued) {
    conditions.From = QDate(2024, 6, 1);
    conditions.To = QDate(2024, 6, 30);
    auto ticket = [&](const QString& no, const QString& issued, const QString& paid) {
        db.AddTicket(no, "S1", issued, paid, QString(), 10, "现金", "甲", QString(), "D1");
        db.AddLine("S1", no, "01", 10, "NULL");
    };
    ticket("P1", "2024-06-01", QString());     // first of the month, unpaid
    ticket("P2", "2024-06-10", "2024-07-01");  // paid the day after the end
    ticket("P3", "2024-06-10", "2024-06-30");  // paid on the last day
    ticket("P4", "2024-05-20", "2024-06-02");  // issued in an earlier month
    ASSERT_TRUE(Run());
    EXPECT_EQ(Rows().PayMethod(RowOf("P1")), QStringLiteral("预开"));
    EXPECT_EQ(Rows().PayMethod(RowOf("P2")), QStringLiteral("预开"));
    EXPECT_EQ(Rows().RowTotal(RowOf("P2")), 0);
    EXPECT_EQ(Rows().PayMethod(RowOf("P3")), QStringLiteral("现金"));
    EXPECT_EQ(Rows().PayMethod(RowOf("P4")), QStringLiteral("现金"));
    EXPECT_EQ(Rows().RowTotal(TotalRow()), 20);
}

TEST_F(InvoiceStatementRows, LinesOfOneItemMultiplyRowsAndTwoItemsShareOne) {
    db.AddTicket("M", "S1", "2024-02-02", "2024-02-02", QString(), 300, "现金", "甲", QString(),
                 "D1");
    db.AddLine("S1", "M", "01", 100, "6");
    db.AddLine("S1", "M", "01", 50, "NULL");
    db.AddTicket("N", "S1", "2024-02-03", "2024-02-03", QString(), 300, "现金", "甲", QString(),
                 "D1");
    db.AddLine("S1", "N", "01", 106, "6");
    db.AddLine("S1", "N", "02", 210, "10");
    ASSERT_TRUE(Run());
    // Columns: 物业费, 物业费税额, 停车费 开发商, 物业, 税额.
    ASSERT_EQ(statement->FeeColumnCount(), 5);
    ASSERT_EQ(Numbers(), (QStringList{"M", "M", "N"}));
    QList<double> first{Rows().FeeAmount(1, 1), Rows().FeeAmount(1, 2)};
    QList<double> second{Rows().FeeAmount(2, 1), Rows().FeeAmount(2, 2)};
    std::sort(first.begin(), first.end());
    std::sort(second.begin(), second.end());
    EXPECT_TRUE((first == QList<double>{6, 94} && second == QList<double>{0, 50}) ||
                (first == QList<double>{0, 50} && second == QList<double>{6, 94}));
    // Null tax: the whole line is amount.
    const int n = RowOf("N");
    EXPECT_EQ(Rows().FeeAmount(n, 1), 100);
    EXPECT_EQ(Rows().FeeAmount(n, 2), 6);
    EXPECT_EQ(Rows().FeeAmount(n, 3), 140);
    EXPECT_EQ(Rows().FeeAmount(n, 4), 60);
    EXPECT_EQ(Rows().FeeAmount(n, 5), 10);
    EXPECT_EQ(Rows().RowTotal(n), 316);
}

TEST_F(InvoiceStatementRows, ParkingShareRoundsPropertyFirst) {
    // The worked example: 315 with tax 15 at 物业 30%.
    db.AddTicket("00123", "S1", "2013-05-06", "2013-05-07", QString(), 315, "现金", "甲公司",
                 QString(), "D1");
    db.Exec("UPDATE 票据 SET 地址 = '1号楼' WHERE 票据编号 = '00123'");
    db.AddLine("S1", "00123", "02", 315, "15");
    db.AddTicket("R", "S1", "2013-05-08", "2013-05-08", QString(), 10.01, "现金", "甲", QString(),
                 "D1");
    db.AddLine("S1", "R", "02", 10.01, "NULL");
    conditions.From = QDate(2013, 5, 1);
    conditions.To = QDate(2013, 5, 31);
    ASSERT_TRUE(Run());
    ASSERT_EQ(statement->FeeColumnCount(), 3);
    const int r = RowOf("00123");
    EXPECT_EQ(Rows().DateText(r), QStringLiteral("2013-05-06"));
    EXPECT_EQ(Rows().SpecialNo(r), QStringLiteral("00123"));
    EXPECT_EQ(Rows().FeeAmount(r, 1), 210);
    EXPECT_EQ(Rows().FeeAmount(r, 2), 90);
    EXPECT_EQ(Rows().FeeAmount(r, 3), 15);
    EXPECT_EQ(Rows().RowTotal(r), 315);
    EXPECT_EQ(Rows().PayerText(r), QStringLiteral("甲公司 1号楼"));
    // 10.01 * 0.3 = 3.003 → 3.00; the developer takes the rest to the cent.
    const int s = RowOf("R");
    EXPECT_DOUBLE_EQ(Rows().FeeAmount(s, 2), 3.0);
    EXPECT_DOUBLE_EQ(Rows().FeeAmount(s, 1), 7.01);
}

TEST_F(InvoiceStatementRows, TotalsAndPaymentMethodBreakdown) {
    Paid("1", "S1", "2024-01-05", "01", 100, "6");
    Paid("2", "S3", "2024-01-06", "01", 50, "3", "微信支付");
    Paid("3", "S4", "2024-01-07", "01", 30, "NULL", "支票");  // not in the list
    Paid("4", "S2", "2024-01-08", "01", 20, "NULL");
    ASSERT_TRUE(Run());
    const int t = TotalRow();
    ASSERT_EQ(t, 5);
    EXPECT_EQ(Rows().FeeAmount(t, 1), 191);
    EXPECT_EQ(Rows().FeeAmount(t, 2), 9);
    EXPECT_EQ(Rows().RowTotal(t), 200);
    EXPECT_TRUE(Rows().PayMethod(t).isEmpty());
    ASSERT_EQ(Rows().UpperBound(), 7);
    EXPECT_EQ(Rows().DateText(6), kOf);
    EXPECT_EQ(Rows().PayMethod(6), QStringLiteral("现金"));
    EXPECT_EQ(Rows().RowTotal(6), 120);
    EXPECT_TRUE(Rows().DateText(7).isEmpty());
    EXPECT_EQ(Rows().PayMethod(7), QStringLiteral("微信支付"));
    EXPECT_EQ(Rows().RowTotal(7), 50);
    EXPECT_EQ(Rows().ElectronicNo(2), QStringLiteral("2"));
    EXPECT_EQ(Rows().ReceiptNo(3), QStringLiteral("3"));
}

TEST_F(InvoiceStatementRows, AllVoidedGivesZeroTotalAndNoBreakdown) {
    db.AddTicket("V", "S1", "2024-01-05", "2024-01-05", "2024-01-06", 100, "现金", "甲", QString(),
                 "D1");
    db.AddLine("S1", "V", "01", 100, "6");
    ASSERT_TRUE(Run());
    ASSERT_EQ(Rows().UpperBound(), 2);
    EXPECT_EQ(Rows().DateText(2), kTotal);
    EXPECT_EQ(Rows().RowTotal(2), 0);
    EXPECT_EQ(Rows().FeeAmount(2, 1), 0);
    EXPECT_EQ(statement->PageCount(), 1);
}

TEST_F(InvoiceStatementRows, EmptyWindowFindsNoItemAndFixedAmountTicketsNoRows) {
    Paid("1", "S1", "2023-01-05", "01", 100, "6");
    session = db.Session();
    statement = std::make_unique<InvoiceStatement>(*session);
    statement->ExtractFeeItems(conditions, grid2, grid1);
    EXPECT_EQ(statement->FeeItems().size(), 1u);
    EXPECT_EQ(grid2.Rows(), 1);

    // The extraction knows no ticket types; the statement does.
    db.AddTicket("Q", "S9", "2024-02-01", "2024-02-01", QString(), 5, "现金", "甲", QString(),
                 "D1");
    db.AddLine("S9", "Q", "02", 5, "NULL");
    EXPECT_FALSE(Run());
    EXPECT_EQ(statement->FeeItems().size(), 2u);
    EXPECT_EQ(grid2.Rows(), 2);
}

TEST_F(InvoiceStatementRows, PageCountTakesInTheAppendedRows) {
    for (int i = 1; i <= 21; ++i) Paid(QString::number(i), "S1", "2024-02-01", "01", 10, "NULL");
    ASSERT_TRUE(Run(22));
    EXPECT_EQ(Rows().UpperBound(), 23);
    EXPECT_EQ(statement->PageCount(), 2);

    db.Exec("DELETE FROM 票据 WHERE 票据编号 = '21'");
    ASSERT_TRUE(Run(22));
    EXPECT_EQ(Rows().UpperBound(), 22);
    EXPECT_EQ(statement->PageCount(), 1);
}

TEST_F(InvoiceStatementRows, NullPayerIsInvalidUseOfNull) {
    db.AddTicket("1", "S1", "2024-02-01", "2024-02-01", QString(), 10, "现金", QString(), QString(),
                 "D1");
    db.AddLine("S1", "1", "01", 10, "NULL");
    try {
        Run();
        FAIL() << "no error";
    } catch (const RuntimeError& e) {
        EXPECT_EQ(e.number(), 94);
    }
}

TEST_F(InvoiceStatementRows, FixedAmountItemIsExtractedButHasNoTickets) {
    Paid("1", "S1", "2024-02-01", "01", 10, "NULL");
    db.AddTicket("Q", "S9", "2024-02-01", "2024-02-01", QString(), 5, "现金", "甲", QString(),
                 "D1");
    db.Exec("INSERT INTO setupsfxm VALUES ('03','热水(5%)',NULL,'其他','热水')");
    db.AddLine("S9", "Q", "03", 5, "NULL");
    ASSERT_TRUE(Run());
    ASSERT_EQ(statement->FeeItems().size(), 3u);
    EXPECT_EQ(statement->FeeItems()[2].ItemName, QStringLiteral("热水5"));
    EXPECT_EQ(statement->FeeItems()[2].TaxAlias, QStringLiteral("热水5税额"));
    EXPECT_EQ(Numbers(), QStringList{"1"});
}

class InvoiceStatementPage : public InvoiceStatementRows {};

TEST_F(InvoiceStatementPage, WritesOnePageWithNumbersAcrossPages) {
    for (int i = 1; i <= 5; ++i)
        Paid(QString("%1").arg(i, 5, 10, QChar('0')), "S1", "2024-02-0" + QString::number(i), "02",
             100.5, "NULL");
    db.Exec(
        "UPDATE 票据 SET 付款人 = '一个很长很长很长很长很长很长很长很长很长很长的付款人名称' "
        "WHERE 票据编号 = '00004'");
    ASSERT_TRUE(Run(3));
    ASSERT_EQ(Rows().UpperBound(), 7);  // 5 tickets, 合  计, 其中
    ASSERT_EQ(statement->PageCount(), 3);
    const int n = statement->FeeColumnCount();
    EstimatedTextMeasure measure;

    statement->ShowPage(grid1, 2, 3, measure);
    ASSERT_EQ(grid1.Rows(), 5);
    EXPECT_EQ(grid1.TextMatrix(2, 0), QStringLiteral("4"));
    EXPECT_EQ(grid1.TextMatrix(2, 1), QStringLiteral("2024-02-04"));
    EXPECT_EQ(grid1.TextMatrix(2, 2), QStringLiteral("00004"));
    EXPECT_EQ(grid1.TextMatrix(2, 6), QStringLiteral("70.35"));
    EXPECT_EQ(grid1.TextMatrix(2, 7), QStringLiteral("30.15"));
    EXPECT_EQ(grid1.TextMatrix(2, 8), QStringLiteral("0.00"));
    EXPECT_EQ(grid1.TextMatrix(2, 6 + n), QStringLiteral("100.50"));
    EXPECT_EQ(grid1.TextMatrix(2, 7 + n), QStringLiteral("现金"));
    EXPECT_EQ(grid1.RowHeight(2), 600);
    EXPECT_NE(grid1.RowHeight(3), 600);
    EXPECT_EQ(grid1.TextMatrix(4, 0), QStringLiteral("6"));
    EXPECT_EQ(grid1.TextMatrix(4, 1), kTotal);
    EXPECT_EQ(grid1.TextMatrix(4, 6), QStringLiteral("351.75"));
    EXPECT_EQ(grid1.TextMatrix(4, 6 + n), QStringLiteral("502.50"));

    statement->ShowPage(grid1, 3, 3, measure);
    ASSERT_EQ(grid1.Rows(), 3);
    EXPECT_EQ(grid1.TextMatrix(2, 0), QStringLiteral("7"));
    EXPECT_EQ(grid1.TextMatrix(2, 1), kOf);
    EXPECT_EQ(grid1.TextMatrix(2, 2), QString());
    EXPECT_EQ(grid1.TextMatrix(2, 6 + n), QStringLiteral("502.50"));
    EXPECT_EQ(grid1.TextMatrix(2, 7 + n), QStringLiteral("现金"));
}
