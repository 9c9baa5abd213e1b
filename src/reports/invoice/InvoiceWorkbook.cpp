#include "reports/invoice/InvoiceWorkbook.h"

#include "reports/invoice/InvoiceStatement.h"

#include "frame/Conditions.h"
#include "frame/WorkbookLayout.h"
#include "core/ValueRules.h"

namespace yunqi {

namespace {

constexpr int kLightBlue = 16761024;
const QString kTotal = QStringLiteral("合  计");
const QString kOf = QStringLiteral("其中");

}  // namespace

void WriteInvoiceSheet(const InvoiceStatement& statement, SheetModel& sheet, ExportFrame::ExportSteps& steps,
                       const WorkbookContext& in) {
    using ValueRules::Format0_00;
    const FlexGrid& grid = in.grid1;
    const DetailRows& rows = statement.Rows();
    const int c = grid.Cols();
    const int n = statement.FeeColumnCount();
    const int u = rows.UpperBound();

    WorkbookLayout::TitleBlock(
        sheet, c, in.title, QStringLiteral(" 统计部门 : ") + Conditions::EntryBeforeBracket(in.entry),
        QStringLiteral(" 开票日期 : ") + ValueRules::FormatYmdDash(in.conditions.From) +
            QStringLiteral(" 至 ") + ValueRules::FormatYmdDash(in.conditions.To));
    WorkbookLayout::GridHeader(sheet, grid);

    sheet.RangeOf(4, 1, 5, 1).SetMergeCells(true);
    sheet.RangeOf(4, 2, 5, 2).SetMergeCells(true);
    sheet.RangeOf(4, 3, 4, 5).SetMergeCells(true);
    sheet.RangeOf(4, 6, 5, 6).SetMergeCells(true);
    int k = 6;
    const FeeItemList& items = statement.FeeItems();
    for (std::size_t i = 1; i < items.size(); ++i) {
        const int width = items[i].IsParking() ? 3 : 2;
        sheet.RangeOf(4, k + 1, 4, k + width).SetMergeCells(true);
        k += width;
    }
    for (int col = c - 2; col <= c; ++col) sheet.RangeOf(4, col, 5, col).SetMergeCells(true);
    sheet.RangeOf(4, 1, 5, c).SetInteriorColor(kLightBlue);

    steps.HeaderWritten();

    for (int r = 1; r <= u; ++r) {
        steps.Row(r);
        const int s = r + 5;
        auto number = sheet.Cells(s, 1);
        number.SetValue(double(r));
        number.SetHorizontalAlignment(SheetModel::kAlignCenter);
        const QString& date = rows.DateText(r);
        auto second = sheet.Cells(s, 2);
        if (!date.isEmpty() && date != kOf) {
            second.SetValue(date);
            second.SetNumberFormat(QStringLiteral("yyyy-mm-dd"));
            second.SetHorizontalAlignment(SheetModel::kAlignCenter);
            const QString* numbers[] = {&rows.SpecialNo(r), &rows.OrdinaryNo(r),
                                        &rows.ElectronicNo(r), &rows.ReceiptNo(r)};
            for (int j = 0; j < 4; ++j) {
                auto cell = sheet.Cells(s, 3 + j);
                cell.SetValue(QLatin1Char('\'') + *numbers[j]);
                cell.SetHorizontalAlignment(SheetModel::kAlignCenter);
            }
            for (int j = 1; j <= n; ++j)
                sheet.Cells(s, j + 6).SetValue(Format0_00(rows.FeeAmount(r, j)));
            sheet.Cells(s, c - 2).SetValue(Format0_00(rows.RowTotal(r)));
            sheet.Cells(s, c - 1).SetValue(rows.PayMethod(r));
            sheet.Cells(s, c).SetValue(rows.PayerText(r));
            sheet.SetRowWrapText(s, true);
            if (date == kTotal) sheet.RangeOf(s, 1, s, c).SetInteriorColor(kLightBlue);
        } else {
            second.SetValue(date);
            second.SetHorizontalAlignment(SheetModel::kAlignCenter);
            sheet.Cells(s, c - 2).SetValue(Format0_00(rows.RowTotal(r)));
            sheet.Cells(s, c - 1).SetValue(rows.PayMethod(r));
            sheet.RangeOf(s, 1, s, c).SetInteriorColor(kLightBlue);
        }
    }

    WorkbookLayout::Finish(sheet, c, {6, 7, u + 5, n + 7}, u + 5, u + 5);

    sheet.Cells(u + 6, 2).SetValue(QStringLiteral("收款人:"));
    sheet.Cells(u + 6, 7).SetValue(QStringLiteral("经理:"));
    sheet.Cells(u + 6, 13).SetValue(QStringLiteral("缴款人:"));
    steps.FooterWritten();
}

}  // namespace yunqi
