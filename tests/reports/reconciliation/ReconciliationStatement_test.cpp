#include "core/Dialogs.h"
#include "core/RuntimeError.h"
#include "reports/reconciliation/ReconciliationLedger.h"

using namespace yunqi;

namespace {

struct Line {
    const char* no;
    const char* note;  // S1 专用, S2 普通, S4 收据
    const char* issued;
    const char* paid;  // "" not paid
    const char* item;
    double amount;
    const char* tax;  // SQL literal
    const char* voided = "";
};

struct Case {
    const char* name;
    const char* from;
    const char* to;
    std::vector<Line> tickets;
    QStringList body;  // grid rows from 2 on, as CSV
};

// Columns: 序, 年月, 税率, 专用 金额 税额, 普通 金额 税额, 收据, the items, 小计,
// 当月收预开票, 当月未收预开, 差额, 备注.
const Case kCases[] = {
    {"net amounts and a month that checks out: 117.00 with tax 17.00, 17.00 not yet paid",
     "03",
     "03",
     {{"1", "S1", "2024-03-01", "2024-03-01", "001", 100, "14.53"},
      {"2", "S1", "2024-03-05", "", "001", 17, "2.47"}},
     {"1,202403,0.06,100.00,17.00,0.00,0.00,0.00,100.00,100.00,,,,",
      "2,202403,小计,100.00,17.00,0.00,0.00,0.00,100.00,100.00,0.00,17.00,0.00,",
      "3,合计,,100.00,17.00,0.00,0.00,0.00,100.00,100.00,0.00,17.00,,"}},
    {"invoiced in January, paid in March: no difference in either month; February adds nothing",
     "01",
     "03",
     {{"3", "S2", "2024-01-10", "2024-03-05", "001", 50, "NULL"},
      {"4", "S2", "2024-03-02", "2024-03-02", "001", 30, "NULL"}},
     {"1,202401,0.06,0.00,0.00,50.00,0.00,0.00,0.00,0.00,,,,",
      "2,202401,小计,0.00,0.00,50.00,0.00,0.00,0.00,0.00,0.00,50.00,0.00,",
      "3,202403,0.06,0.00,0.00,30.00,0.00,0.00,80.00,80.00,,,,",
      "4,202403,小计,0.00,0.00,30.00,0.00,0.00,80.00,80.00,50.00,0.00,0.00,",
      "5,合计,,0.00,0.00,80.00,0.00,0.00,80.00,80.00,50.00,50.00,,"}},
    {"receipts never reach column 7 but count with finance: a difference of their size",
     "03",
     "03",
     {{"5", "S2", "2024-03-01", "2024-03-01", "001", 30, "NULL"},
      {"6", "S4", "2024-03-01", "2024-03-01", "001", 40, "NULL"}},
     {"1,202403,0.06,0.00,0.00,30.00,0.00,0.00,70.00,70.00,,,,",
      "2,202403,小计,0.00,0.00,30.00,0.00,0.00,70.00,70.00,0.00,0.00,-40.00,",
      "3,合计,,0.00,0.00,30.00,0.00,0.00,70.00,70.00,0.00,0.00,,"}},
    {"rate rows that cancel: no 小计, and the month stays out of the 合计",
     "03",
     "04",
     {{"7", "S2", "2024-03-01", "2024-03-01", "001", 50, "NULL"},
      {"8", "S2", "2024-03-02", "2024-03-02", "003", -50, "NULL"},
      {"9", "S2", "2024-04-01", "2024-04-01", "001", 20, "NULL"}},
     {"1,202403,0.06,0.00,0.00,50.00,0.00,0.00,50.00,0.00,50.00,,,,",
      "2,202403,0.13,0.00,0.00,-50.00,0.00,0.00,0.00,-50.00,-50.00,,,,",
      "3,202404,0.06,0.00,0.00,20.00,0.00,0.00,20.00,0.00,20.00,,,,",
      "4,202404,小计,0.00,0.00,20.00,0.00,0.00,20.00,0.00,20.00,0.00,0.00,0.00,",
      "5,合计,,0.00,0.00,20.00,0.00,0.00,20.00,0.00,20.00,0.00,0.00,,"}},
    {"every month cancels: no 合计 row",
     "03",
     "03",
     {{"7", "S2", "2024-03-01", "2024-03-01", "001", 50, "NULL"},
      {"8", "S2", "2024-03-02", "2024-03-02", "003", -50, "NULL"}},
     {"1,202403,0.06,0.00,0.00,50.00,0.00,0.00,50.00,0.00,50.00,,,,",
      "2,202403,0.13,0.00,0.00,-50.00,0.00,0.00,0.00,-50.00,-50.00,,,,"}},
    // A receipt of a Null-rate item joins every rate of the set-up table: the
    // Null rate's row (100) is skipped, the rate-0 item's CASE keeps it to rate 0.
    {"voided tickets count nowhere; a Null-rate receipt opens every rate",
     "03",
     "03",
     {{"10", "S2", "2024-03-01", "2024-03-01", "001", 30, "NULL"},
      {"11", "S2", "2024-03-01", "2024-03-01", "001", 99, "NULL", "2024-03-02"},
      {"12", "S4", "2024-03-01", "2024-03-01", "006", 15, "NULL"}},
     {"1,202403,0,0.00,0.00,0.00,0.00,0.00,0.00,15.00,15.00,,,,",
      "2,202403,0.05,0.00,0.00,0.00,0.00,0.00,0.00,0.00,0.00,,,,",
      "3,202403,0.06,0.00,0.00,30.00,0.00,0.00,30.00,0.00,30.00,,,,",
      "4,202403,0.13,0.00,0.00,0.00,0.00,0.00,0.00,0.00,0.00,,,,",
      "5,202403,小计,0.00,0.00,30.00,0.00,0.00,30.00,15.00,45.00,0.00,0.00,-15.00,",
      "6,合计,,0.00,0.00,30.00,0.00,0.00,30.00,15.00,45.00,0.00,0.00,,"}},
};

}  // namespace

class ReconciliationRows : public ReconciliationLedger {};

TEST_F(ReconciliationRows, Cases) {
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.name);
        db.Exec("DELETE FROM 票据");
        db.Exec("DELETE FROM 票据开票数据");
        for (const Line& t : c.tickets)
            Ticket(t.no, t.note, t.issued, t.paid, t.item, t.amount, t.tax,
                   *t.voided ? QString(t.voided) : QString());
        conditions.FromMonth = c.from;
        conditions.ToMonth = c.to;
        grid1 = FlexGrid();
        Run();
        EXPECT_EQ(Body(), c.body);
    }
}

TEST_F(ReconciliationRows, ColoursOnExactlyTheClosingCells) {
    Ticket("1", "S1", "2024-03-01", "2024-03-01", "001", 100, "14.53");
    Ticket("2", "S1", "2024-03-05", "", "001", 17, "2.47");
    conditions.FromMonth = conditions.ToMonth = "03";
    Run();
    ASSERT_EQ(grid1.Rows(), 5);
    const int n = 1;
    for (int c = 0; c < grid1.Cols(); ++c) {
        SCOPED_TRACE(c);
        EXPECT_EQ(grid1.CellBackColorAt(2, c), -1);
        const bool subtotal = c >= 3 && c <= n + 11, total = c >= 3 && c <= n + 10;
        EXPECT_EQ(grid1.CellBackColorAt(3, c), subtotal ? 0xC0E0FF : -1);
        EXPECT_EQ(grid1.CellBackColorAt(4, c), total ? 0xFFC0C0 : -1);
    }
}

TEST_F(ReconciliationRows, HeaderOfTheItemsAndTheDefault) {
    statement = std::make_unique<ReconciliationStatement>(*(session = db.Session()));
    statement->InitGridHeader(grid1);
    ASSERT_EQ(grid1.Cols(), 13);
    EXPECT_EQ(GridCsv(grid1),
              "序,开票年月,税率,增值税专用发票,增值税专用发票,增值税普通发票,增值税普通发票,收据,"
              "财务交账,当月收预开票,当月未收预开,核对结果,备注\n"
              "序,开票年月,税率,金额,税额,金额,税额,金额,小计,金额,金额,差额,备注\n");

    Ticket("1", "S2", "2024-03-01", "2024-03-01", "003", 10, "NULL");
    Ticket("2", "S2", "2024-03-01", "2024-03-01", "001", 10, "NULL");
    conditions.FromMonth = conditions.ToMonth = "03";
    Run();
    ASSERT_EQ(grid1.Cols(), 15);
    EXPECT_EQ(grid1.TextMatrix(1, 8), "物业费");
    EXPECT_EQ(grid1.TextMatrix(1, 9), "电费");
    EXPECT_EQ(grid1.TextMatrix(0, 10), "财务交账");
    EXPECT_EQ(grid1.TextMatrix(1, 10), "小计");
    const int widths[] = {500,  900,  600,  1300, 1200, 1300, 1200, 1200,
                          1200, 1200, 1200, 1200, 1200, 1200, 1600};
    for (int c = 0; c < 15; ++c) {
        SCOPED_TRACE(c);
        EXPECT_EQ(grid1.ColWidth(c), widths[c]);
        EXPECT_EQ(grid1.MergeCol(c), c <= 2 || c >= 13);
        EXPECT_EQ(grid1.FixedAlignment(c), FlexGrid::AlignCenterCenter);
    }
    EXPECT_TRUE(grid1.MergeRow(0));
    EXPECT_EQ(grid1.MergeCells(), FlexGrid::MergeRestrictColumns);
}

TEST_F(ReconciliationRows, NoItemLeavesTheDefaultHeader) {
    Ticket("1", "S2", "2023-03-01", "2023-03-01", "001", 10, "NULL");
    Run();
    EXPECT_EQ(statement->FeeItems().size(), 1u);
    EXPECT_EQ(grid1.Rows(), 2);
    EXPECT_EQ(grid1.Cols(), 13);
}

TEST_F(ReconciliationRows, MonthsCompareAsText) {
    EXPECT_TRUE(MonthsInOrder("03", "03"));
    EXPECT_TRUE(MonthsInOrder("01", "12"));
    EXPECT_FALSE(MonthsInOrder("12", "01"));
}

TEST_F(ReconciliationRows, TrappedAndUntrappedFailures) {
    RecordingDialogs dialogs;
    SetAppDialogs(&dialogs);
    Ticket("1", "S2", "2024-03-01", "2024-03-01", "001", 10, "NULL");
    // No type at 定额 0: the extraction's In () fails, shown as number and text run together.
    db.Exec("UPDATE 票据类型 SET 定额 = 1");
    Run();
    EXPECT_EQ(statement->FeeItems().size(), 1u);
    EXPECT_EQ(dialogs.texts(), QStringList{"102Incorrect syntax near ')'."});
    EXPECT_EQ(dialogs.messages.at(0).title, "系统提示");

    // A name that is no alias stops the monthly rows: nothing traps it.
    db.Exec("UPDATE 票据类型 SET 定额 = 0 WHERE 票据类型代号 <> '09'");
    db.Exec("UPDATE setupsfxm SET xm = '物业 费' WHERE dh = '001'");
    session = db.Session();
    statement = std::make_unique<ReconciliationStatement>(*session);
    conditions.InvoiceTypeList = statement->LoadInvoiceTypes();
    conditions.FromMonth = conditions.ToMonth = "03";
    statement->ExtractFeeItems(conditions, grid1);
    ASSERT_EQ(statement->FeeItems().size(), 2u);
    EXPECT_THROW(statement->RunReconciliation(conditions, grid1), RuntimeError);
    EXPECT_EQ(grid1.Rows(), 2);
    SetAppDialogs(nullptr);
}
