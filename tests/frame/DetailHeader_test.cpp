#include "frame/DetailHeader.h"

#include <gtest/gtest.h>

#include <QStringList>
#include <algorithm>

#include "frame/SplitRatios.h"
#include "frame/StatementConditions.h"
#include "reports/invoice/InvoiceStatement.h"
#include "support/TestDatabase.h"

using namespace yunqi;

namespace {

// A department whose one ticket carries a line of every item in setupsfxm,
// so the extraction finds them all and lays the header.
class InvoiceHeader : public ::testing::Test {
  protected:
    void SetUp() override {
        db.Exec("INSERT INTO 票据入库单 VALUES ('S1','01')");
        db.AddTicket("T1", "S1", "2024-03-01 09:00:00", "2024-03-01 09:00:00", QString(), 100,
                     "现金", "甲", QString(), "D1");
        conditions.DeptCode = "D1";
        conditions.From = QDate(2024, 1, 1);
        conditions.To = QDate(2024, 12, 31);
    }

    void AddItem(const QString& code, const QString& name, const QString& rate,
                 const QString& category) {
        db.Exec(QStringLiteral("INSERT INTO setupsfxm VALUES (%1,%2,%3,%4,%2)")
                    .arg(SqlText(code), SqlText(name), rate, SqlText(category)));
        db.AddLine("S1", "T1", code, 10, "NULL");
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

bool HasSpan(const std::vector<FlexGrid::Span>& spans, int row, int col, int rowSpan, int colSpan) {
    return std::any_of(spans.begin(), spans.end(), [&](const FlexGrid::Span& s) {
        return s.row == row && s.col == col && s.rowSpan == rowSpan && s.colSpan == colSpan;
    });
}

}  // namespace

TEST_F(InvoiceHeader, DefaultHeaderKeepsItsTwoWidthQuirks) {
    session = db.Session();
    statement = std::make_unique<InvoiceStatement>(*session);
    statement->InitGridHeader(grid1);
    EXPECT_EQ(grid1.Rows(), 2);
    EXPECT_EQ(grid1.FixedRows(), 2);
    ASSERT_EQ(grid1.Cols(), 9);
    EXPECT_EQ(HeaderRow(0), (QStringList{"序", "开票日期", "增值税发票", "增值税发票", "增值税发票",
                                         "收据", "合计", "收款方式", "付款人"}));
    EXPECT_EQ(HeaderRow(1), (QStringList{"序", "开票日期", "专用发票", "普通发票", "电子发票",
                                         "收据", "合计", "收款方式", "付款人"}));
    // 合计 takes 收款方式's 900 in the second pass; 付款人 is 1200 throughout.
    const int widths[] = {500, 1200, 1200, 1200, 1200, 2000, 900, 900, 1200};
    const bool mergeDown[] = {true, true, false, false, false, true, true, true, true};
    for (int c = 0; c < 9; ++c) {
        EXPECT_EQ(grid1.ColWidth(c), widths[c]) << "column " << c;
        EXPECT_EQ(grid1.MergeCol(c), mergeDown[c]) << "column " << c;
        EXPECT_EQ(grid1.FixedAlignment(c), FlexGrid::AlignCenterCenter);
    }
    EXPECT_TRUE(grid1.MergeRow(0));
    EXPECT_EQ(grid1.MergeCells(), FlexGrid::MergeRestrictColumns);
    EXPECT_EQ(statement->FeeColumnCount(), 0);
    const auto spans = grid1.MergedSpans();
    EXPECT_TRUE(HasSpan(spans, 0, 2, 1, 3));
    EXPECT_TRUE(HasSpan(spans, 0, 8, 2, 1));
}

TEST_F(InvoiceHeader, ItemsLayTwoOrThreeMoneyColumnsEach) {
    AddItem("01", "物业费", "0.06", "物业收费");
    AddItem("02", "停车费(月租)", "0.05", "停车收费");
    AddItem("03", "垃圾费（代收）%", "NULL", "代收");
    AddItem("04", "临停", "0.125", "临时停车");
    Extract();

    EXPECT_EQ(statement->FeeColumnCount(), 10);
    EXPECT_EQ(grid1.Rows(), 2);
    EXPECT_EQ(grid1.FixedRows(), 2);
    ASSERT_EQ(grid1.Cols(), 19);
    EXPECT_EQ(HeaderRow(0), (QStringList{"序", "开票日期", "增值税发票", "增值税发票", "增值税发票",
                                         "收据", "物业费", "物业费", "停车费月租", "停车费月租",
                                         "停车费月租", "垃圾费代收", "垃圾费代收", "临停", "临停",
                                         "临停", "合计", "收款方式", "付款人"}));
    // 0.125 is read as 0.13 ("0.00"); a Null rate is 0.
    EXPECT_EQ(HeaderRow(1),
              (QStringList{"序", "开票日期", "专用发票", "普通发票", "电子发票", "收据", "金额",
                           "税额6%", "开发商70%", "物业30%", "税额5%", "金额", "税额0%",
                           "开发商70%", "物业30%", "税额13%", "合计", "收款方式", "付款人"}));
    const int widths[] = {500,  1200, 1200, 1200, 1200, 2000, 1200, 1200, 1200, 1200,
                          1200, 1200, 1200, 1200, 1200, 1200, 1400, 900,  3800};
    for (int c = 0; c < 19; ++c) {
        const int width = widths[c];
        EXPECT_EQ(grid1.ColWidth(c), width) << "column " << c;
        const bool mergeDown = c == 0 || c == 1 || c == 5 || c >= 16;
        EXPECT_EQ(grid1.MergeCol(c), mergeDown) << "column " << c;
        EXPECT_EQ(grid1.FixedAlignment(c), FlexGrid::AlignCenterCenter);
    }

    const auto spans = grid1.MergedSpans();
    for (auto [col, width] : {std::pair{2, 3}, {6, 2}, {8, 3}, {11, 2}, {13, 3}})
        EXPECT_TRUE(HasSpan(spans, 0, col, 1, width)) << "band at " << col;
    for (int col : {0, 1, 5, 16, 17, 18})
        EXPECT_TRUE(HasSpan(spans, 0, col, 2, 1)) << "column " << col;
    EXPECT_EQ(spans.size(), 11u);
}

TEST_F(InvoiceHeader, PercentagesAreMatchedByCodeAndTakenAtTheNextBuild) {
    AddItem("02", "月租", "0.05", "停车收费");
    AddItem("04", "临停", "0.05", "停车收费");
    Extract();
    ASSERT_EQ(grid2.Rows(), 3);
    // The rows swapped: each item must find its own by the hidden code.
    grid2.SetTextMatrix(1, SplitRatios::kCodeCol, "'04'");
    grid2.SetTextMatrix(1, SplitRatios::kDeveloperCol, "60");
    grid2.SetTextMatrix(1, SplitRatios::kPropertyCol, "40");
    grid2.SetTextMatrix(2, SplitRatios::kCodeCol, "'02'");
    grid2.SetTextMatrix(2, SplitRatios::kDeveloperCol, "87.5");
    grid2.SetTextMatrix(2, SplitRatios::kPropertyCol, "12.5");
    EXPECT_EQ(grid1.TextMatrix(1, 6), "开发商70%");

    statement->BuildGridHeader(grid1, grid2);
    EXPECT_EQ(grid1.TextMatrix(1, 6), "开发商87.5%");
    EXPECT_EQ(grid1.TextMatrix(1, 7), "物业12.5%");
    EXPECT_EQ(grid1.TextMatrix(1, 9), "开发商60%");
    EXPECT_EQ(grid1.TextMatrix(1, 10), "物业40%");
    EXPECT_EQ(statement->FeeColumnCount(), 6);
}

TEST_F(InvoiceHeader, ItemsOfOneNameSideBySideShareOneBand) {
    AddItem("05", "服务费", "0.06", "物业收费");
    AddItem("06", "服务费%", "0.06", "物业收费");
    Extract();
    ASSERT_EQ(grid1.Cols(), 13);
    EXPECT_TRUE(HasSpan(grid1.MergedSpans(), 0, 6, 1, 4));
}

TEST(DetailHeaderTax, RateInPercentAsPlainText) {
    EXPECT_EQ(DetailHeader::TaxHeading(0.05), "税额5%");
    EXPECT_EQ(DetailHeader::TaxHeading(0), "税额0%");
    EXPECT_EQ(DetailHeader::TaxHeading(0.065), "税额6.5%");
    EXPECT_EQ(DetailHeader::TaxHeading(0.13), "税额13%");
    EXPECT_EQ(DetailHeader::TaxHeading(0.57), "税额57%");
}
