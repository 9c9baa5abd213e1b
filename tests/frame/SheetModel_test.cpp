#include "frame/SheetModel.h"

#include <gtest/gtest.h>

using namespace yunqi;

using VT = SheetModel::ValueType;

TEST(SheetModelTest, AssignedTextConvertsAsTheSpreadsheetDoes) {
    struct Case {
        QString text;
        VT type;
        double number;
        QString shown;
    };
    const Case cases[] = {
        {"'00123", VT::Text, 0, "00123"},  {"00123", VT::Number, 123, ""},
        {"-12.50", VT::Number, -12.5, ""}, {"2013-05-06", VT::Date, 41400, ""},  // its serial
        {"合  计", VT::Text, 0, "合  计"},  {"'", VT::Text, 0, ""},
        {"2013-02-30", VT::Text, 0, "2013-02-30"}, {"12 楼", VT::Text, 0, "12 楼"},
    };
    SheetModel sheet;
    for (const Case& c : cases) {
        sheet.Cells(1, 1).SetValue(c.text);
        EXPECT_EQ(sheet.ValueAt(1, 1).type, c.type) << c.text.toStdString();
        if (c.type == VT::Text)
            EXPECT_EQ(sheet.ValueAt(1, 1).text, c.shown) << c.text.toStdString();
        else
            EXPECT_EQ(sheet.ValueAt(1, 1).number, c.number) << c.text.toStdString();
    }
    sheet.Cells(1, 9).SetValue(7.0);
    EXPECT_EQ(sheet.ValueAt(1, 9).number, 7);
    EXPECT_EQ(sheet.ValueAt(5, 5).type, VT::Empty);
}

TEST(SheetModelTest, LaterRangeSettingsOverlayCellByCell) {
    SheetModel sheet;
    sheet.Cells(2, 2).SetHorizontalAlignment(SheetModel::kAlignCenter);
    sheet.RangeOf(1, 1, 3, 3).SetInteriorColor(16761024);
    sheet.RangeOf(2, 1, 2, 3).SetHorizontalAlignment(SheetModel::kAlignRight);
    sheet.RangeOf(1, 1, 3, 3).SetFontSize(9);
    sheet.Cells(3, 3).SetInteriorColor(255);

    EXPECT_EQ(sheet.StyleAt(2, 2).horizontalAlignment, SheetModel::kAlignRight);
    EXPECT_EQ(sheet.StyleAt(2, 2).interiorColor, 16761024);
    EXPECT_EQ(sheet.StyleAt(1, 1).horizontalAlignment, 0);
    EXPECT_EQ(sheet.StyleAt(3, 3).interiorColor, 255);
    EXPECT_EQ(sheet.StyleAt(3, 3).fontSize, 9);
    EXPECT_EQ(sheet.StyleAt(4, 4).interiorColor, -1);
    // Equal settings share one style.
    EXPECT_EQ(sheet.StyleIndexAt(1, 1), sheet.StyleIndexAt(3, 1));

    // A merge replaces the merges it overlaps; unmerging removes them.
    sheet.RangeOf(1, 1, 1, 3).SetMergeCells(true);
    sheet.RangeOf(1, 3, 2, 3).SetMergeCells(true);
    ASSERT_EQ(sheet.Merges().size(), 1u);
    EXPECT_EQ(sheet.Merges()[0].top, 1);
    EXPECT_EQ(sheet.Merges()[0].left, 3);
    sheet.Cells(2, 3).SetMergeCells(false);
    EXPECT_TRUE(sheet.Merges().empty());

    sheet.Cells(5, 2).SetValue("x");
    sheet.SetRowWrapText(5, true);
    EXPECT_TRUE(sheet.StyleAt(5, 1).wrapText);
    EXPECT_TRUE(sheet.StyleAt(5, 3).wrapText);
    EXPECT_FALSE(sheet.StyleAt(4, 1).wrapText);
}
