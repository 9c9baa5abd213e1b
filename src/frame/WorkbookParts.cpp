#include "frame/WorkbookParts.h"

#include "core/ValueRules.h"
#include "frame/Conditions.h"

namespace yunqi {

namespace WorkbookParts {

void WriteTitleBlock(SheetModel& sheet, int c, const WorkbookContext& in) {
    WriteTitleBlock(sheet, c, in,
                    QStringLiteral(" 开票日期 : ") + ValueRules::FormatYmdDash(in.conditions.From) +
                        QStringLiteral(" 至 ") + ValueRules::FormatYmdDash(in.conditions.To));
}

void WriteTitleBlock(SheetModel& sheet, int c, const WorkbookContext& in,
                     const QString& periodLine) {
    auto title = sheet.RangeOf(1, 1, 1, c);
    title.SetMergeCells(true);
    title.SetHorizontalAlignment(SheetModel::kAlignCenter);
    sheet.Cells(1, 1).SetValue(in.title);

    auto dept = sheet.RangeOf(2, 1, 2, 4);
    dept.SetMergeCells(true);
    dept.SetHorizontalAlignment(SheetModel::kAlignLeft);
    sheet.Cells(2, 1).SetValue(QStringLiteral(" 统计部门 : ") +
                               Conditions::EntryBeforeBracket(in.entry));

    auto period = sheet.RangeOf(3, 1, 3, 4);
    period.SetMergeCells(true);
    period.SetHorizontalAlignment(SheetModel::kAlignLeft);
    sheet.Cells(3, 1).SetValue(periodLine);
}

void CopyGridHeader(SheetModel& sheet, const FlexGrid& grid) {
    const int c = grid.Cols();
    sheet.RangeOf(4, 1, 5, c).SetHorizontalAlignment(SheetModel::kAlignCenter);
    for (int headerRow = 0; headerRow <= 1; ++headerRow)
        for (int g = 0; g < c; ++g) {
            sheet.SetColumnWidth(g + 1, grid.ColWidth(g) / 110.0);
            sheet.Cells(4 + headerRow, g + 1).SetValue(grid.TextMatrix(headerRow, g));
        }
}

int MergeFeeBands(SheetModel& sheet, const FeeItemList& items, int first) {
    int k = first;
    for (std::size_t i = 1; i < items.size(); ++i) {
        const int width = items[i].ColumnCount();
        sheet.RangeOf(4, k + 1, 4, k + width).SetMergeCells(true);
        k += width;
    }
    return k;
}

namespace {

// Merges of one run of plan columns starting at sheet column first.
void MergePlanColumns(SheetModel& sheet, const std::vector<DetailHeaderPlan::Column>& columns,
                      int first) {
    for (std::size_t i = 0; i < columns.size();) {
        const int col = first + int(i);
        if (columns[i].mergeDown) {
            sheet.RangeOf(4, col, 5, col).SetMergeCells(true);
            ++i;
            continue;
        }
        std::size_t end = i + 1;
        while (end < columns.size() && !columns[end].mergeDown &&
               columns[end].top == columns[i].top)
            ++end;
        sheet.RangeOf(4, col, 4, first + int(end) - 1).SetMergeCells(true);
        i = end;
    }
}

}  // namespace

void WriteTicketHeader(SheetModel& sheet, const WorkbookContext& context,
                       const DetailHeaderPlan& plan, const FeeItemList& items) {
    const int c = context.statementGrid.Cols();
    WriteTitleBlock(sheet, c, context);
    CopyGridHeader(sheet, context.statementGrid);
    MergePlanColumns(sheet, plan.leading, 1);
    const int last = MergeFeeBands(sheet, items, int(plan.leading.size()));
    MergePlanColumns(sheet, plan.trailing, last + 1);
    sheet.RangeOf(4, 1, 5, c).SetInteriorColor(kLightBlue);
}

int StartRecordRow(SheetModel& sheet, ExportFrame::ExportSteps& steps, int r) {
    steps.Row(r);
    const int s = r + 5;
    sheet.CompleteRowsThrough(s - 1);
    auto number = sheet.Cells(s, 1);
    number.SetValue(double(r));
    number.SetHorizontalAlignment(SheetModel::kAlignCenter);
    return s;
}

void WriteTicketRow(SheetModel& sheet, int s, const DetailRows& rows, int r, int numberColumns,
                    int c) {
    auto date = sheet.Cells(s, 2);
    date.SetValue(rows.DateText(r));
    date.SetNumberFormat(QStringLiteral("yyyy-mm-dd"));
    date.SetHorizontalAlignment(SheetModel::kAlignCenter);
    for (int j = 0; j < numberColumns; ++j) {
        auto cell = sheet.Cells(s, 3 + j);
        // The apostrophe keeps the numbers as text.
        cell.SetValue(QLatin1Char('\'') +
                      rows.NumberIf(r, DetailRows::Kind(int(DetailRows::Kind::Special) + j)));
        cell.SetHorizontalAlignment(SheetModel::kAlignCenter);
    }
    const int first = 2 + numberColumns;
    for (int j = 1; j <= rows.FeeColumnCount(); ++j)
        sheet.Cells(s, first + j).SetValue(ValueRules::Format0_00(rows.FeeAmount(r, j)));
    sheet.Cells(s, c - 2).SetValue(ValueRules::Format0_00(rows.RowTotal(r)));
    sheet.Cells(s, c - 1).SetValue(rows.PayMethod(r));
    sheet.Cells(s, c).SetValue(rows.PayerText(r));
    sheet.SetRowWrapText(s, true);
}

void FinishTable(SheetModel& sheet, int lastRow, int c, int fontLastRow) {
    auto head = sheet.Finally(1, 1, 1, c);
    head.SetFontName(QStringLiteral("微软雅黑"));
    head.SetFontBold(true);
    auto body = sheet.Finally(2, 1, fontLastRow ? fontLastRow : lastRow, c);
    body.SetFontName(QStringLiteral("微软雅黑"));
    body.SetFontSize(9);
    sheet.Finally(4, 1, lastRow, c).SetBordersLineStyle(1);
}

void WriteSignatureLine(SheetModel& sheet, int row, const std::vector<SignatureText>& texts) {
    for (const SignatureText& t : texts) {
        auto cell = sheet.Cells(row, t.column);
        cell.SetValue(t.text);
        if (t.alignment != 0) cell.SetHorizontalAlignment(t.alignment);
    }
}

}  // namespace WorkbookParts

}  // namespace yunqi
