#include "frame/SplitRatios.h"

#include <gtest/gtest.h>

#include "core/RuntimeError.h"

using namespace yunqi;

using namespace SplitRatios;

namespace {

FeeItem Item(const QString& code, const QString& name, const QString& category) {
    FeeItem item;
    item.ItemCode = '\'' + code + '\'';
    item.ItemName = name;
    item.Category = category;
    return item;
}

// One row of shares, as the editor leaves them.
FlexGrid Shares(const QString& developer, const QString& property) {
    FlexGrid grid = NewGrid();
    Fill(grid, {FeeItem{}, Item("02", "停车费", "停车收费")});
    grid.SetTextMatrix(1, kDeveloperCol, developer);
    grid.SetTextMatrix(1, kPropertyCol, property);
    return grid;
}

}  // namespace

TEST(SplitRatiosGrid, FillTakesParkingItemsInItemOrderWithDefaultShares) {
    FlexGrid grid = NewGrid();
    Fill(grid, {FeeItem{}, Item("01", "物业费", "物业收费"), Item("05", "月租停车", "停车收费"),
                Item("03", "临停", "临时停车"), Item("04", "水费", "代收")});
    ASSERT_EQ(grid.Rows(), 3);
    EXPECT_EQ(grid.ColWidth(kCodeCol), 0);  // the code column is hidden
    const QStringList row1{"1", "月租停车", "70", "30", "'05'"};
    const QStringList row2{"2", "临停", "70", "30", "'03'"};
    for (int c = 0; c < 5; ++c) {
        EXPECT_EQ(grid.TextMatrix(1, c), row1[c]);
        EXPECT_EQ(grid.TextMatrix(2, c), row2[c]);
    }
}

TEST(SplitRatiosGrid, EachFillResetsEditedShares) {
    FlexGrid grid = NewGrid();
    Fill(grid, {FeeItem{}, Item("02", "停车费", "停车收费"), Item("03", "临停", "停车收费")});
    grid.SetTextMatrix(1, kDeveloperCol, "60");
    grid.SetTextMatrix(1, kPropertyCol, "40");

    Fill(grid, {FeeItem{}, Item("02", "停车费", "停车收费")});
    ASSERT_EQ(grid.Rows(), 2);
    EXPECT_EQ(grid.TextMatrix(1, kDeveloperCol), "70");
    EXPECT_EQ(grid.TextMatrix(1, kPropertyCol), "30");

    Fill(grid, {FeeItem{}, Item("01", "物业费", "物业收费")});
    EXPECT_EQ(grid.Rows(), 1);
    Fill(grid, {FeeItem{}, Item("03", "临停", "停车收费")});
    EXPECT_EQ(grid.TextMatrix(1, 0), "1");
    EXPECT_EQ(grid.TextMatrix(1, kCodeCol), "'03'");
}

// The property share as a plain decimal; the developer's takes no part. A
// cell that is no number is a type mismatch (13).
TEST(SplitRatiosRatioText, PlainDecimalOfThePropertyShare) {
    for (const auto& [developer, property, text] :
         std::vector<std::tuple<QString, QString, QString>>{{"70", "30", "0.3"},
                                                            {"66.7", "33.3", "0.333"},
                                                            {"87.5", "12.5", "0.125"},
                                                            {"0", "100", "1"},
                                                            {"100", "0", "0"},
                                                            {"70", " 30 ", "0.3"},
                                                            {"abc", "30", "0.3"},
                                                            {"70", "abc", "13"},
                                                            {"70", "", "13"}}) {
        QString got;
        try {
            got = RatioText(Shares(developer, property), 1);
        } catch (const RuntimeError& e) {
            got = QString::number(e.number());
        }
        EXPECT_EQ(got, text) << property.toStdString();
    }
}

TEST(SplitRatiosSum, TheTwoSharesMustAddUpToExactlyHundred) {
    struct Case {
        const char* name;
        const char* developer;
        const char* property;
        bool accepted;
    };
    const Case cases[] = {
        {"sixty and forty", "60", "40", true},
        {"thirds to a tenth", "66.7", "33.3", true},
        {"all to one side", "0", "100", true},
        {"ten under", "60", "30", false},
        {"ten over", "70", "40", false},
        {"a cent over", "70", "30.01", false},
        {"each a hundred", "100", "100", false},
        // No tolerance either way.
        {"a hair under", "70", "29.9999999999999", false},
        {"a hair over", "70", "30.0000000000001", false},
        // Cells are read by their leading number.
        {"a percent sign", "70%", "30", true},
        {"an empty cell", "", "100", true},
        {"a word", "abc", "100", true},
        {"both empty", "", "", false},
        {"a percent sign over", "100%", "1", false},
    };
    for (const Case& c : cases)
        EXPECT_EQ(SumIsHundred(Shares(c.developer, c.property), 1), c.accepted) << c.name;
}
