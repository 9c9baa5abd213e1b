// Money with four decimals, as the server's money type carries it, reaches
// every ticket statement rounded to the cent, half away from zero; the
// developer's share of a parking item is the net amount less the rounded
// property share, rounded too.
#include <vector>

#include "reports/invoice/InvoiceStatement.h"
#include "reports/parking/ParkingStatement.h"
#include "reports/preinvoice/PreInvoiceStatement.h"
#include "support/TicketLedger.h"

using namespace yunqi;

namespace {

// When a ticket is paid for the statement to show it: the pre-issue statement
// takes those unpaid by the window's last day.
template <typename Statement>
QString PaidOn(const QString& issued) {
    return issued;
}
template <>
QString PaidOn<PreInvoiceStatement>(const QString&) {
    return QStringLiteral("2025-01-10");
}

struct Line {
    double amount;
    const char* tax;  // SQL literal
};

// One ticket of a line of 物业费 (01) and a line of 停车费 (02) at the default
// 70/30 split; the expected columns of each item.
struct Case {
    const char* name;
    Line ordinary, parking;
    std::vector<double> ordinaryColumns;  // amount, tax
    std::vector<double> parkingColumns;   // 开发商, 物业, tax
};

const std::vector<Case>& Cases() {
    static const std::vector<Case> cases{
        // 12.68 - 2.675 = 10.005; 10.02 - 0.015 = 10.005: 物业 3.0015, 开发商 7.005.
        {"half a cent rounds up",
         {12.68, "2.6750"},
         {10.02, "0.0150"},
         {10.01, 2.68},
         {7.01, 3.00, 0.02}},
        // 2.675 at 30%: 物业 0.8025, 开发商 1.875.
        {"the developer's half cent",
         {2.6751, "0.0001"},
         {2.675, "NULL"},
         {2.68, 0},
         {1.88, 0.80, 0}},
        {"a negative half cent rounds away from zero",
         {-0.005, "NULL"},
         {-0.01, "-0.0050"},
         {-0.01, 0},
         {-0.01, 0, -0.01}},
        // 0.05 at 30%: 物业 0.015 rounds up first, 开发商 takes 0.03.
        {"the property share rounds first",
         {0.0149, "0.0049"},
         {0.05, "NULL"},
         {0.01, 0},
         {0.03, 0.02, 0}},
        {"under a half cent rounds down",
         {10.0049, "2.6749"},
         {10.0149, "0.0049"},
         {7.33, 2.67},
         {7.01, 3.00, 0}},
    };
    return cases;
}

}  // namespace

template <typename Statement>
class TicketAmounts : public TicketLedger<Statement> {};

using Statements = ::testing::Types<InvoiceStatement, ParkingStatement, PreInvoiceStatement>;
TYPED_TEST_SUITE(TicketAmounts, Statements);

TYPED_TEST(TicketAmounts, FourDecimalsAreRoundedToTheCentWhenRead) {
    const std::vector<Case>& cases = Cases();
    for (std::size_t i = 0; i < cases.size(); ++i) {
        const Case& c = cases[i];
        // A day of its own: a batch of its own in the parking statement.
        const QString no = QStringLiteral("T%1").arg(i + 1);
        const QString day = QStringLiteral("2024-03-%1").arg(i + 10);
        this->db.Add({.no = no,
                      .issued = day,
                      .paid = PaidOn<TypeParam>(day),
                      .amount = c.ordinary.amount + c.parking.amount,
                      .item = ""});
        this->db.Line(no, "01", c.ordinary.amount, c.ordinary.tax);
        this->db.Line(no, "02", c.parking.amount, c.parking.tax);
    }
    ASSERT_TRUE(this->Run());

    // Each item's columns, in the statement's order of its items.
    const FeeItemList& items = this->statement->FeeItems();
    ASSERT_GE(items.size(), 2u);
    for (std::size_t i = 0; i < cases.size(); ++i) {
        const Case& c = cases[i];
        SCOPED_TRACE(c.name);
        const int r = this->RowOf(QStringLiteral("T%1").arg(i + 1));
        ASSERT_GT(r, 0);
        std::vector<double> expected;
        for (std::size_t k = 1; k < items.size(); ++k) {
            const std::vector<double>& item =
                items[k].IsParking() ? c.parkingColumns : c.ordinaryColumns;
            expected.insert(expected.end(), item.begin(), item.end());
        }
        ASSERT_EQ(this->Rows().FeeColumnCount(), int(expected.size()));
        double total = 0;
        for (std::size_t j = 0; j < expected.size(); ++j) {
            EXPECT_DOUBLE_EQ(this->Rows().FeeAmount(r, int(j) + 1), expected[j])
                << "column " << j + 1;
            total += expected[j];
        }
        EXPECT_DOUBLE_EQ(this->Rows().RowTotal(r), total);
    }
}
