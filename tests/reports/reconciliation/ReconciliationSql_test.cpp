#include "reports/reconciliation/ReconciliationLedger.h"

using namespace yunqi;

// The texts go to the server as they stand; every blank is part of them.
class ReconciliationSql : public ReconciliationLedger {
  protected:
    void SetUp() override {
        ReconciliationLedger::SetUp();
        Ticket("1", "S1", "2024-03-01", "2024-03-01", "001", 106, "6");
        Ticket("2", "S2", "2024-03-02", "2024-03-02", "002", 50, "NULL");
        conditions.FromMonth = "01";
        conditions.ToMonth = "03";
        Run();
    }
};

TEST_F(ReconciliationSql, MonthQueryOfTwoItemsOneAtRateZero) {
    ASSERT_EQ(statement->FeeItems().size(), 3u);
    EXPECT_EQ(statement->FeeItems()[2].TaxRate, 0.0);
    conditions.InvoiceTypeList = "'01','02','04'";
    statement->SetTypeCodes("'01'", "'02'", "'04'");
    EXPECT_EQ(statement->MonthSql(conditions, "202403") + '\n', Fixture("month_query.sql"));
}

TEST_F(ReconciliationSql, FeeItemAndPreInvoicedQueries) {
    conditions.InvoiceTypeList = "'01','02','04'";
    const QStringList expected = Fixture("run_queries.sql").split('\n');
    ASSERT_GE(expected.size(), 3);
    EXPECT_EQ(ReconciliationStatement::FeeItemSql(conditions), expected[0]);
    EXPECT_EQ(ReconciliationStatement::CollectedSql(conditions, "'001','002'", "202403"),
              expected[1]);
    EXPECT_EQ(ReconciliationStatement::UncollectedSql(conditions, "'001','002'", "202403"),
              expected[2]);
}

TEST_F(ReconciliationSql, TypeListsOfTheLoad) {
    EXPECT_EQ(conditions.InvoiceTypeList, "'01','02','03','04'");
    EXPECT_EQ(statement->SpecialTypeCodes(), "'01'");
    EXPECT_EQ(statement->OrdinaryTypeCodes(), "'02'");
    EXPECT_EQ(statement->ReceiptTypeCodes(), "'04'");
    EXPECT_EQ(statement->FeeCodeList(), "'001','002'");
}
