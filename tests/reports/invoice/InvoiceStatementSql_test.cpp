#include "reports/invoice/InvoiceStatement.h"
#include "support/TicketLedger.h"

using namespace yunqi;

// The exact texts are held by the golden fixtures under tests/fixtures/golden.
class InvoiceStatementSql : public TicketLedger<InvoiceStatement> {};

TEST_F(InvoiceStatementSql, RatioTextFollowsThePropertyCell) {
    Paid("2", "S1", "2024-03-02", "02", 105, "5");
    session = db.Session();
    InvoiceStatement statement(*session);
    statement.ExtractFeeItems(conditions, grid2, grid1);
    for (const auto& [cell, text] : std::vector<std::pair<QString, QString>>{
             {"30", " * 0.3 as"}, {"100", " * 1 as"}, {"0", " * 0 as"}, {"12.5", " * 0.125 as"}}) {
        grid2.SetTextMatrix(1, SplitRatios::kPropertyCol, cell);
        EXPECT_TRUE(statement.StatisticsSql(conditions, grid2).contains(text))
            << cell.toStdString();
    }
}
