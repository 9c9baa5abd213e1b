#include "frame/DetailHeader.h"

#include <gtest/gtest.h>

#include "reports/invoice/InvoiceStatement.h"
#include "support/TicketLedger.h"

using namespace yunqi;

// The ticket ledger's items 01 物业费 and 02 停车费 and the test's own on one
// ticket, so the extraction finds them all and lays the header. The golden
// statements hold a header of an ordinary and a parking item, with its widths.
class InvoiceHeader : public TicketLedger<InvoiceStatement> {
  protected:
    void Extract(const std::vector<std::tuple<QString, QString, QString, QString>>& items) {
        db.Add({.no = "T1", .issued = "2024-03-01", .amount = 100, .item = ""});
        db.Line("T1", "01", 10);
        db.Line("T1", "02", 10);
        for (const auto& [code, name, rate, category] : items) {
            db.Item(code, name, rate, category);
            db.Line("T1", code, 10);
        }
        session = db.Session();
        statement = std::make_unique<InvoiceStatement>(*session);
        statement->InitGridHeader(statementGrid);
        statement->ExtractFeeItems(conditions, ratios, statementGrid);
    }
    QStringList HeaderRow(int row) const {
        QStringList texts;
        for (int c = 0; c < statementGrid.Cols(); ++c) texts << statementGrid.TextMatrix(row, c);
        return texts;
    }
};

TEST_F(InvoiceHeader, ItemsLayTwoOrThreeMoneyColumnsEach) {
    Extract({{"03", "垃圾费（代收）%", "NULL", "代收"}, {"04", "临停", "0.125", "临时停车"}});
    EXPECT_EQ(statement->FeeColumnCount(), 10);
    EXPECT_EQ(HeaderRow(0),
              (QStringList{"序", "开票日期", "增值税发票", "增值税发票", "增值税发票", "收据",
                           "物业费", "物业费", "停车费", "停车费", "停车费", "垃圾费代收",
                           "垃圾费代收", "临停", "临停", "临停", "合计", "收款方式", "付款人"}));
    // 0.125 is read as 0.13 ("0.00"); a Null rate is 0.
    EXPECT_EQ(HeaderRow(1),
              (QStringList{"序", "开票日期", "专用发票", "普通发票", "电子发票", "收据", "金额",
                           "税额6%", "开发商70%", "物业30%", "税额5%", "金额", "税额0%",
                           "开发商70%", "物业30%", "税额13%", "合计", "收款方式", "付款人"}));
}

TEST_F(InvoiceHeader, PercentagesAreMatchedByCodeAndTakenAtTheNextBuild) {
    Extract({{"04", "临停", "0.05", "停车收费"}});
    ASSERT_EQ(ratios.Rows(), 3);
    // The rows swapped: each item must find its own by the hidden code.
    const QStringList rows[] = {{"'04'", "60", "40"}, {"'02'", "87.5", "12.5"}};
    for (int r = 1; r <= 2; ++r) {
        ratios.SetTextMatrix(r, SplitRatios::kCodeCol, rows[r - 1][0]);
        ratios.SetTextMatrix(r, SplitRatios::kDeveloperCol, rows[r - 1][1]);
        ratios.SetTextMatrix(r, SplitRatios::kPropertyCol, rows[r - 1][2]);
    }
    EXPECT_EQ(statementGrid.TextMatrix(1, 8), "开发商70%");
    statement->BuildGridHeader(statementGrid, ratios);
    EXPECT_EQ(HeaderRow(1).mid(8, 5),
              (QStringList{"开发商87.5%", "物业12.5%", "税额5%", "开发商60%", "物业40%"}));
}

TEST(DetailHeaderTax, RateInPercentAsPlainText) {
    for (const auto& [rate, text] : std::vector<std::pair<double, QString>>{{0.05, "税额5%"},
                                                                            {0, "税额0%"},
                                                                            {0.065, "税额6.5%"},
                                                                            {0.13, "税额13%"},
                                                                            {0.57, "税额57%"}})
        EXPECT_EQ(DetailHeader::TaxHeading(rate), text) << rate;
}
