// Most of the statement is held by the golden fixtures; these are the cases
// that need a ledger of their own.
#include "reports/preinvoice/PreInvoiceStatement.h"

#include "core/Dialogs.h"
#include "support/TicketLedger.h"

using namespace yunqi;

class PreInvoiceRows : public TicketLedger<PreInvoiceStatement> {
  protected:
    void SetUp() override {
        TicketLedger::SetUp();
        conditions.From = QDate(2024, 3, 1);
        conditions.To = QDate(2024, 3, 31);
        SetAppDialogs(&dialogs);
    }
    void TearDown() override { SetAppDialogs(nullptr); }
    RecordingDialogs dialogs;
};

TEST_F(PreInvoiceRows, AVoidedTicketSharingANumberShowsTheOthersSums) {
    db.Add({.no = "N1", .issued = "2024-03-05", .paid = kUnpaid, .amount = 106, .tax = "6"});
    // Voided, of another stock-in note.
    db.Add({.no = "N1",
            .note = "S2",
            .issued = "2024-03-06",
            .paid = kUnpaid,
            .voided = "2024-03-07",
            .amount = 106,
            .tax = "6"});
    ASSERT_TRUE(Run());
    ASSERT_EQ(Rows().UpperBound(), 3);
    EXPECT_FALSE(Rows().IsVoided(1));
    EXPECT_TRUE(Rows().IsVoided(2));
    EXPECT_EQ(Rows().OrdinaryNo(2), "N1");
    EXPECT_EQ(Rows().FeeAmount(2, 1), 100);
    EXPECT_EQ(Rows().FeeAmount(2, 2), 6);
}

TEST_F(PreInvoiceRows, AFailureIsShownByTheTrapAndGivesNoRows) {
    db.Add({.no = "P", .issued = "2024-03-05", .paid = kUnpaid, .amount = 106, .payer = QString()});
    EXPECT_FALSE(Run());
    ASSERT_EQ(dialogs.messages.size(), 1u);
    EXPECT_EQ(dialogs.messages[0].text, QStringLiteral("94Invalid use of Null"));
    EXPECT_EQ(dialogs.messages[0].title, QStringLiteral("系统提示"));
    // The extraction's trap has the same form: no type list, no items.
    dialogs.messages.clear();
    conditions.InvoiceTypeList.clear();
    EXPECT_TRUE(statement->ExtractFeeItems(conditions, ratios, statementGrid));
    EXPECT_EQ(dialogs.texts(), QStringList{"102Incorrect syntax near ')'."});
}
