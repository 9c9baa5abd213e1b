#include "reports/parking/ParkingWorkbook.h"

#include "core/ValueRules.h"
#include "frame/Conditions.h"
#include "reports/parking/ParkingStatement.h"

namespace yunqi {

namespace {
constexpr int kLightBlue = 16761024;
}  // namespace

void WriteParkingSheet(const ParkingStatement& statement, SheetModel& sheet,
                       ExportFrame::ExportSteps& steps, const WorkbookContext& in) {
    using ValueRules::Format0_00;
    const FlexGrid& grid = in.grid1;
    const DetailRows& rows = statement.Rows();
    const int c = grid.Cols();
    const int n = statement.FeeColumnCount();
    const int u = rows.UpperBound();

    auto title = sheet.RangeOf(1, 1, 1, c);
    title.SetMergeCells(true);
    title.SetHorizontalAlignment(SheetModel::kAlignCenter);
    sheet.Cells(1, 1).SetValue(in.title);
    auto dept = sheet.RangeOf(2, 1, 2, 4);
    dept.SetMergeCells(true);
    dept.SetHorizontalAlignment(SheetModel::kAlignLeft);
    sheet.Cells(2, 1).SetValue(QStringLiteral(" 统计部门 : ") +
                               Conditions::EntryBeforeBracket(in.entry));
    auto dates = sheet.RangeOf(3, 1, 3, 4);
    dates.SetMergeCells(true);
    dates.SetHorizontalAlignment(SheetModel::kAlignLeft);
    sheet.Cells(3, 1).SetValue(QStringLiteral(" 开票日期 : ") +
                               ValueRules::FormatYmdDash(in.conditions.From) +
                               QStringLiteral(" 至 ") + ValueRules::FormatYmdDash(in.conditions.To));
    sheet.RangeOf(4, 1, 5, c).SetHorizontalAlignment(SheetModel::kAlignCenter);
    for (int headerRow = 0; headerRow <= 1; ++headerRow)
        for (int g = 0; g < c; ++g) {
            sheet.SetColumnWidth(g + 1, grid.ColWidth(g) / 110.0);
            sheet.Cells(4 + headerRow, g + 1).SetValue(grid.TextMatrix(headerRow, g));
        }

    for (int col = 1; col <= 3; ++col) sheet.RangeOf(4, col, 5, col).SetMergeCells(true);
    const FeeItemList& items = statement.FeeItems();
    for (std::size_t k = 1; k < items.size(); ++k)
        sheet.RangeOf(4, 3 * int(k) + 1, 4, 3 * int(k) + 3).SetMergeCells(true);
    sheet.RangeOf(4, c, 5, c).SetMergeCells(true);
    sheet.RangeOf(4, 1, 5, c).SetInteriorColor(kLightBlue);

    steps.HeaderWritten();

    for (int r = 1; r <= u; ++r) {
        steps.Row(r);
        const int s = r + 5;
        auto number = sheet.Cells(s, 1);
        number.SetValue(double(r));
        number.SetHorizontalAlignment(SheetModel::kAlignCenter);
        if (statement.IsSummaryRow(r)) {
            auto label = sheet.Cells(s, 2);
            label.SetValue(rows.TicketNo(r));
            label.SetHorizontalAlignment(SheetModel::kAlignCenter);
            auto method = sheet.Cells(s, c - 1);
            method.SetValue(rows.PayMethod(r));
            method.SetHorizontalAlignment(SheetModel::kAlignRight);
            auto total = sheet.Cells(s, c);
            total.SetValue(rows.RowTotal(r));
            total.SetHorizontalAlignment(SheetModel::kAlignRight);
            sheet.RangeOf(s, 1, s, c).SetInteriorColor(kLightBlue);
        } else {
            const int col = rows.TicketKind(r) == ParkingStatement::kPaper ? 2 : 3;
            auto range = sheet.Cells(s, col);
            // The apostrophe keeps the numbers as text.
            range.SetValue(QLatin1Char('\'') + rows.TicketNo(r));
            range.SetHorizontalAlignment(SheetModel::kAlignCenter);
            for (int j = 1; j <= n; ++j)
                sheet.Cells(s, j + 3).SetValue(Format0_00(rows.FeeAmount(r, j)));
            sheet.Cells(s, c).SetValue(Format0_00(rows.RowTotal(r)));
        }
    }

    auto money = sheet.RangeOf(6, 4, u + 5, c);
    money.SetNumberFormat(QStringLiteral("#0.00"));
    money.SetHorizontalAlignment(SheetModel::kAlignRight);
    auto head = sheet.RangeOf(1, 1, 1, c);
    head.SetFontName(QStringLiteral("微软雅黑"));
    head.SetFontBold(true);
    auto body = sheet.RangeOf(2, 1, u + 6, c);
    body.SetFontName(QStringLiteral("微软雅黑"));
    body.SetFontSize(9);
    sheet.RangeOf(4, 1, u + 5, c).SetBordersLineStyle(1);

    sheet.Cells(u + 6, 1).SetValue(QStringLiteral("收款人:"));
    auto manager = sheet.Cells(u + 6, 2);
    manager.SetValue(QStringLiteral("经理:"));
    manager.SetHorizontalAlignment(SheetModel::kAlignCenter);
    auto payer = sheet.Cells(u + 6, 3);
    payer.SetValue(QStringLiteral("缴款人:"));
    payer.SetHorizontalAlignment(SheetModel::kAlignLeft);
    auto keeper = sheet.Cells(u + 6, 5);
    keeper.SetValue(QStringLiteral("总仓管理员:"));
    keeper.SetHorizontalAlignment(SheetModel::kAlignLeft);
    steps.FooterWritten();
}

}  // namespace yunqi
