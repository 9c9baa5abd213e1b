#include "core/Dialogs.h"
#include "reports/preinvoice/PreInvoiceStatement.h"
#include "support/TicketLedger.h"

using namespace yunqi;

// Most of the statement is held by the golden fixtures; these are the cases
// that need a ledger of their own.
class PreInvoiceRows : public TicketLedger<PreInvoiceStatement> {
  protected:
    void SetUp() override {
        TicketLedger::SetUp();
        conditions.From = QDate(2024, 3, 1);
        conditions.To = QDate(2024, 3, 31);
        SetAppDialogs(&dialogs);
    }
    void TearDown() override { SetAppDialogs(nullptr); }
    void Ticket(const QString& no, const QString& note, const QString& issued, const QString& paid,
                const QString& voided = QString(), const QString& payer = QStringLiteral("甲")) {
        db.AddTicket(no, note, issued, paid, voided, 106, "现金", payer, QString(), "D1");
        db.AddLine(note, no, "01", 106, "6");
    }
    RecordingDialogs dialogs;
};

TEST_F(PreInvoiceRows, UnpaidByTheLastDayOfTheWindow) {
    Ticket("A", "S1", "2024-03-31 10:00:00", "2024-04-01 09:00:00");  // paid the next day
    Ticket("B", "S1", "2024-03-31 10:00:00", "2024-03-31 17:00:00");  // paid that same day
    Ticket("C", "S1", "2024-02-28 10:00:00", QString());              // issued before
    Ticket("D", "S1", "2024-03-01 00:00:00", QString());              // unpaid, first day
    ASSERT_TRUE(Run());
    ASSERT_EQ(Rows().UpperBound(), 3);
    EXPECT_EQ(Rows().TicketNo(1), "D");
    EXPECT_EQ(Rows().TicketNo(2), "A");
    EXPECT_EQ(Rows().DateText(3), QStringLiteral("合  计"));
    EXPECT_EQ(Rows().RowTotal(3), 212);
    EXPECT_EQ(Rows().PayMethod(1), QStringLiteral("预开"));
    EXPECT_TRUE(Rows().PayMethod(3).isEmpty());
}

TEST_F(PreInvoiceRows, AVoidedTicketSharingANumberShowsTheOthersSums) {
    Ticket("N1", "S1", "2024-03-05", QString());
    Ticket("N1", "S2", "2024-03-06", QString(), "2024-03-07");  // voided, another stock-in note
    ASSERT_TRUE(Run());
    ASSERT_EQ(Rows().UpperBound(), 3);
    EXPECT_FALSE(Rows().IsVoided(1));
    EXPECT_TRUE(Rows().IsVoided(2));
    EXPECT_EQ(Rows().OrdinaryNo(2), "N1");
    EXPECT_EQ(Rows().FeeAmount(2, 1), 100);
    EXPECT_EQ(Rows().FeeAmount(2, 2), 6);
}

TEST_F(PreInvoiceRows, AFailureIsShownByTheTrapAndGivesNoRows) {
    Ticket("P", "S1", "2024-03-05", QString(), QString(), QString());  // Null 付款人
    EXPECT_FALSE(Run());
    ASSERT_EQ(dialogs.messages.size(), 1u);
    EXPECT_EQ(dialogs.messages[0].text, QStringLiteral("94Invalid use of Null"));
    EXPECT_EQ(dialogs.messages[0].title, QStringLiteral("系统提示"));
}
