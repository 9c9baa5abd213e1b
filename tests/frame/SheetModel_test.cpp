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
        {"'00123", VT::Text, 0, "00123"},
        {"00123", VT::Number, 123, ""},
        {"-12.50", VT::Number, -12.5, ""},
        {"2013-05-06", VT::Date, 41400, ""},  // its serial
        {"合  计", VT::Text, 0, "合  计"},
        {"'", VT::Text, 0, ""},
        {"2013-02-30", VT::Text, 0, "2013-02-30"},
        {"12 楼", VT::Text, 0, "12 楼"},
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

namespace {

// Keeps what each completed row held when it was handed on.
class RowLog : public SheetModel::RowSink {
  public:
    void WriteRow(const SheetModel& sheet, int row) override {
        rows.push_back(row);
        texts.push_back(sheet.ValueAt(row, 1).text);
        rightAligned.push_back(sheet.StyleAt(row, 2).horizontalAlignment ==
                               SheetModel::kAlignRight);
        bordered.push_back(sheet.StyleAt(row, 1).borderLineStyle == 1);
    }
    std::vector<int> rows;
    std::vector<QString> texts;
    std::vector<bool> rightAligned, bordered;
};

}  // namespace

// Settings of the finished table are declared before the rows and taken by
// each row as it completes, after the row's own; completed rows leave.
TEST(SheetModelTest, RowsStreamOutWithTheTableSettingsDeclaredFirst) {
    RowLog log;
    SheetModel sheet(&log);
    sheet.Cells(1, 1).SetValue("'标题");
    sheet.Finally(2, 2, 4, 2).SetHorizontalAlignment(SheetModel::kAlignRight);
    sheet.Finally(1, 1, 4, 3).SetBordersLineStyle(1);
    for (int r = 2; r <= 4; ++r) {
        sheet.CompleteRowsThrough(r - 1);
        sheet.Cells(r, 1).SetValue(QStringLiteral("'行%1").arg(r));
        // The row's own setting is overlaid, as if the table's came last.
        sheet.Cells(r, 2).SetHorizontalAlignment(SheetModel::kAlignCenter);
    }
    EXPECT_EQ(log.rows, (std::vector<int>{1, 2, 3}));
    EXPECT_EQ(sheet.UsedCols(1), 0) << "a handed row is dropped";
    EXPECT_THROW(sheet.Cells(2, 1).SetValue("late"), std::logic_error);
    EXPECT_THROW(sheet.Finally(3, 1, 5, 1).SetFontBold(true), std::logic_error);
    sheet.Complete();
    EXPECT_EQ(log.rows, (std::vector<int>{1, 2, 3, 4}));
    EXPECT_EQ(log.texts, (std::vector<QString>{"标题", "行2", "行3", "行4"}));
    EXPECT_EQ(log.rightAligned, (std::vector<bool>{false, true, true, true}));
    EXPECT_EQ(log.bordered, (std::vector<bool>{true, true, true, true}));
}
