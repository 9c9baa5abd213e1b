#include "frame/DetailHeader.h"

#include <gtest/gtest.h>

#include "frame/SplitRatios.h"
#include "frame/StatementConditions.h"
#include "reports/invoice/InvoiceStatement.h"
#include "support/TestDatabase.h"

using namespace yunqi;

namespace {

// A department whose one ticket carries a line of every item in setupsfxm,
// so the extraction finds them all and lays the header. The golden
// statements hold a header of an ordinary and a parking item, with its widths.
class InvoiceHeader : public ::testing::Test {
  protected:
    void SetUp() override {
        db.Types("01");
        db.Add({.no = "T1", .issued = "2024-03-01 09:00:00", .amount = 100, .item = ""});
        conditions.DeptCode = "D1";
        conditions.From = QDate(2024, 1, 1);
        conditions.To = QDate(2024, 12, 31);
    }
    void AddItem(const QString& code, const QString& name, const QString& rate,
                 const QString& category) {
        db.Item(code, name, rate, category);
        db.Line("T1", code, 10);
    }
    void Extract() {
        session = db.Session();
        statement = std::make_unique<InvoiceStatement>(*session);
        statement->InitGridHeader(grid1);
        statement->ExtractFeeItems(conditions, grid2, grid1);
    }
    QStringList HeaderRow(int row) const {
        QStringList texts;
        for (int c = 0; c < grid1.Cols(); ++c) texts << grid1.TextMatrix(row, c);
        return texts;
    }

    TestDatabase db;
    StatementConditions conditions;
    FlexGrid grid1;
    FlexGrid grid2 = SplitRatios::NewGrid();
    std::unique_ptr<DatabaseSession> session;
    std::unique_ptr<InvoiceStatement> statement;
};

}  // namespace

TEST_F(InvoiceHeader, ItemsLayTwoOrThreeMoneyColumnsEach) {
    AddItem("01", "物业费", "0.06", "物业收费");
    AddItem("02", "停车费(月租)", "0.05", "停车收费");
    AddItem("03", "垃圾费（代收）%", "NULL", "代收");
    AddItem("04", "临停", "0.125", "临时停车");
    Extract();
    EXPECT_EQ(statement->FeeColumnCount(), 10);
    EXPECT_EQ(HeaderRow(0), (QStringList{"序", "开票日期", "增值税发票", "增值税发票", "增值税发票",
                                         "收据", "物业费", "物业费", "停车费月租", "停车费月租",
                                         "停车费月租", "垃圾费代收", "垃圾费代收", "临停", "临停",
                                         "临停", "合计", "收款方式", "付款人"}));
    // 0.125 is read as 0.13 ("0.00"); a Null rate is 0.
    EXPECT_EQ(HeaderRow(1),
              (QStringList{"序", "开票日期", "专用发票", "普通发票", "电子发票", "收据", "金额",
                           "税额6%", "开发商70%", "物业30%", "税额5%", "金额", "税额0%",
                           "开发商70%", "物业30%", "税额13%", "合计", "收款方式", "付款人"}));
}

TEST_F(InvoiceHeader, PercentagesAreMatchedByCodeAndTakenAtTheNextBuild) {
    AddItem("02", "月租", "0.05", "停车收费");
    AddItem("04", "临停", "0.05", "停车收费");
    Extract();
    ASSERT_EQ(grid2.Rows(), 3);
    // The rows swapped: each item must find its own by the hidden code.
    const QStringList rows[] = {{"'04'", "60", "40"}, {"'02'", "87.5", "12.5"}};
    for (int r = 1; r <= 2; ++r) {
        grid2.SetTextMatrix(r, SplitRatios::kCodeCol, rows[r - 1][0]);
        grid2.SetTextMatrix(r, SplitRatios::kDeveloperCol, rows[r - 1][1]);
        grid2.SetTextMatrix(r, SplitRatios::kPropertyCol, rows[r - 1][2]);
    }
    EXPECT_EQ(grid1.TextMatrix(1, 6), "开发商70%");
    statement->BuildGridHeader(grid1, grid2);
    EXPECT_EQ(HeaderRow(1).mid(6, 5),
              (QStringList{"开发商87.5%", "物业12.5%", "税额5%", "开发商60%", "物业40%"}));
}

TEST(DetailHeaderTax, RateInPercentAsPlainText) {
    for (const auto& [rate, text] : std::vector<std::pair<double, QString>>{
             {0.05, "税额5%"}, {0, "税额0%"}, {0.065, "税额6.5%"}, {0.13, "税额13%"}, {0.57, "税额57%"}})
        EXPECT_EQ(DetailHeader::TaxHeading(rate), text) << rate;
}
