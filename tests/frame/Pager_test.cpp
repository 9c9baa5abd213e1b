#include "frame/Pager.h"

#include <gtest/gtest.h>

#include <QFile>

#include "cli/GridCsv.h"
#include "core/RuntimeError.h"
#include "frame/Conditions.h"
#include "frame/SplitRatios.h"
#include "frame/TextMeasure.h"
#include "reports/Reports.h"
#include "support/TestDatabase.h"

using namespace yunqi;
using namespace Pager;

TEST(PagerArithmetic, PageSizeCountAndFirstRow) {
    // Rounded after the header row is taken off: 21.5 and 20.5 would both give 21.
    for (const auto& [height, size] :
         std::vector<std::pair<int, int>>{{7500, 24}, {7000, 22}, {6750, 22}, {6450, 20}, {600, 1}})
        EXPECT_EQ(PageSizeFor(height, 300), size) << height;
    // {rows, page size, pages}: a page more only for a remainder.
    for (const auto& [rows, size, pages] : std::vector<std::tuple<int, int, int>>{
             {10, 5, 2}, {11, 5, 3}, {22, 22, 1}, {23, 22, 2}, {1, 22, 1}, {0, 22, 0}})
        EXPECT_EQ(PageCountOf(rows, size), pages) << rows << '/' << size;
    EXPECT_THROW(PageCountOf(3, 0), RuntimeError);
    EXPECT_EQ(FirstRowOf(1, 22), 1);
    EXPECT_EQ(FirstRowOf(3, 22), 45);
}

TEST(PagerText, PadsToTwoDigitsWithoutCutting) {
    EXPECT_EQ(PageText(1, 3), "第 01 页 共 03 页");
    EXPECT_EQ(PageText(12, 123), "第 12 页 共 123 页");
    EXPECT_EQ(PageText(0, 0), EmptyPageText());
}

TEST(PagerImages, StayInsideTheStatement) {
    using enum PagerImage;
    // {image, current page, target} of five pages; a page beyond the count
    // (left by a resize) goes back to the last.
    for (const auto& [image, current, target] :
         std::vector<std::tuple<PagerImage, int, int>>{{First, 3, 1},
                                                       {Last, 3, 5},
                                                       {Previous, 3, 2},
                                                       {Previous, 1, 1},
                                                       {Previous, 0, 1},
                                                       {Next, 3, 4},
                                                       {Next, 5, 5},
                                                       {Next, 7, 5}})
        EXPECT_EQ(TargetPage(image, current, 5), target) << int(image) << ' ' << current;
    EXPECT_EQ(TargetPage(Next, 1, 1), 1);
}

TEST(PagerPageText, NumericValueRoundedTiesToEvenWithinTheCount) {
    // {text, pages, page or 0 for none}; the range is checked before rounding.
    for (const auto& [text, pages, page] :
         std::vector<std::tuple<QString, int, int>>{{"2", 3, 2},
                                                    {" 3页", 3, 3},
                                                    {"2.5", 3, 2},
                                                    {"3.5", 4, 4},
                                                    {"1.5", 4, 2},
                                                    {"0.4", 3, 0},
                                                    {"0", 3, -1},
                                                    {"abc", 3, -1},
                                                    {"", 3, -1},
                                                    {"-1", 3, -1},
                                                    {"4", 3, -1},
                                                    {"3.5", 3, -1},
                                                    {"1", 0, -1}})
        EXPECT_EQ(PageFromText(text, pages).value_or(-1), page) << text.toStdString();
}

// Each paged statement on the golden ledger, shown page by page at every page
// size: the pages hold the statement's rows in order, numbered across pages,
// the total and 其中 rows included, as the companion's CSV lists them.
class PagedStatements : public ::testing::TestWithParam<const ReportDefinition*> {};

std::vector<const ReportDefinition*> PagedReports() {
    std::vector<const ReportDefinition*> paged;
    for (const ReportDefinition* report : AllReports())
        if (report->conditions == ConditionsKind::DateWindow) paged.push_back(report);
    return paged;
}

TEST_P(PagedStatements, PagesTogetherAreTheWholeStatement) {
    TestDatabase db;
    FillGoldenLedger(db);
    auto session = db.Session();
    const StatementConditions conditions{"D1", "GY01", Conditions::LoadInvoiceTypes(*session),
                                         QDate(2024, 3, 1), QDate(2024, 3, 31)};
    auto statement = MakeStatement<PagedStatement>(*GetParam(), *session);
    FlexGrid statementGrid, ratios = SplitRatios::NewGrid();
    statement->InitGridHeader(statementGrid);
    statement->ExtractFeeItems(conditions, ratios, statementGrid);
    ASSERT_EQ(ratios.Rows(), 2);
    ratios.SetTextMatrix(1, SplitRatios::kDeveloperCol, "66.7");
    ratios.SetTextMatrix(1, SplitRatios::kPropertyCol, "33.3");
    statement->BuildGridHeader(statementGrid, ratios);
    QFile golden(QStringLiteral(YUNQI_TEST_DIR "/fixtures/golden/") + GetParam()->command +
                 "/statement.csv");
    ASSERT_TRUE(golden.open(QIODevice::ReadOnly));
    const QString whole = QString::fromUtf8(golden.readAll()).section('\n', 2);
    ASSERT_TRUE(statement->RunStatistics(conditions, ratios, 1));
    const int records = statement->UpperBound();
    for (int size = 1; size <= records + 1; ++size) {
        SCOPED_TRACE(size);
        ASSERT_TRUE(statement->RunStatistics(conditions, ratios, size));
        ASSERT_EQ(statement->PageCount(), (records + size - 1) / size);
        QString pages;
        for (int page = 1; page <= statement->PageCount(); ++page) {
            statement->ShowPage(statementGrid, page, size, EstimatedTextMeasure());
            pages += GridCsv(statementGrid, 2);
        }
        EXPECT_EQ(pages, whole);
    }
}

INSTANTIATE_TEST_SUITE_P(Reports, PagedStatements, ::testing::ValuesIn(PagedReports()),
                         [](const auto& info) { return info.param->command.toStdString(); });
