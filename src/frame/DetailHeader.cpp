#include "frame/DetailHeader.h"

#include "core/ValueRules.h"
#include "frame/SplitRatios.h"

namespace yunqi {

namespace DetailHeader {
namespace {

void Start(FlexGrid& grid, int cols) {
    grid.SetRows(2);
    grid.SetCols(cols);
    // Both header rows stay in view and take part in the merges.
    grid.SetFixedRows(2);
    grid.SetRow(0);
    grid.SetMergeCells(FlexGrid::MergeRestrictColumns);
    for (int c = 0; c < cols; ++c) grid.SetFixedAlignment(c, FlexGrid::AlignCenterCenter);
}

// Writes one header row's leading columns with their widths and merge marks.
void WriteLeading(FlexGrid& grid, const DetailHeaderPlan& plan, int row) {
    for (std::size_t c = 0; c < plan.leading.size(); ++c) {
        const auto& col = plan.leading[c];
        grid.SetTextMatrix(row, int(c), row == 0 ? col.top : col.bottom);
        grid.SetColWidth(int(c), col.width);
        if (row == 0 && col.mergeDown) grid.SetMergeCol(int(c), true);
    }
}

void WriteTrailing(FlexGrid& grid, const DetailHeaderPlan& plan, int row, int first, bool init) {
    for (std::size_t k = 0; k < plan.trailing.size(); ++k) {
        const auto& col = plan.trailing[k];
        const int c = first + int(k);
        grid.SetTextMatrix(row, c, row == 0 ? col.top : col.bottom);
        grid.SetColWidth(c, init && col.initWidth ? col.initWidth : col.width);
        if (col.mergeDown) grid.SetMergeCol(c, true);
    }
}

}  // namespace

std::vector<DetailHeaderPlan::Column> TicketLeading(std::vector<DetailHeaderPlan::Column> more) {
    std::vector<DetailHeaderPlan::Column> columns{
        {QStringLiteral("序"), QStringLiteral("序"), 500, true},
        {QStringLiteral("开票日期"), QStringLiteral("开票日期"), 1200, true},
    };
    columns.insert(columns.end(), more.begin(), more.end());
    return columns;
}

std::vector<DetailHeaderPlan::Column> TicketTrailing() {
    return {
        {QStringLiteral("合计"), QStringLiteral("合计"), 1400, true},
        {QStringLiteral("收款方式"), QStringLiteral("收款方式"), 900, true},
        {QStringLiteral("付款人"), QStringLiteral("付款人"), 3800, true, 1200},
    };
}

QString TaxHeading(double taxRate) {
    return QStringLiteral("税额") + ValueRules::DoubleText(taxRate * 100) + '%';
}

void Init(FlexGrid& grid, const DetailHeaderPlan& plan) {
    const int first = int(plan.leading.size());
    Start(grid, first + int(plan.trailing.size()));
    WriteLeading(grid, plan, 0);
    WriteTrailing(grid, plan, 0, first, true);
    grid.SetMergeRow(0, true);
    grid.SetRow(1);
    WriteLeading(grid, plan, 1);
    WriteTrailing(grid, plan, 1, first, true);
    if (plan.initWidthOnTotal) {
        // The second column's width lands on the first in this pass; the
        // second keeps the one of the first pass.
        grid.SetColWidth(first, plan.trailing[1].width);
    }
}

int Build(FlexGrid& grid, const DetailHeaderPlan& plan, const FeeItemList& items,
          const FlexGrid& ratios) {
    const int n = FeeColumnCountOf(items);
    const int first = int(plan.leading.size());
    const int trailing = first + n;
    Start(grid, trailing + int(plan.trailing.size()));

    WriteLeading(grid, plan, 0);
    int c = first;
    for (std::size_t i = 1; i < items.size(); ++i)
        for (int k = 0; k < items[i].ColumnCount(); ++k, ++c) {
            grid.SetTextMatrix(0, c, items[i].ItemName);
            grid.SetColWidth(c, plan.feeWidth);
        }
    WriteTrailing(grid, plan, 0, trailing, false);
    grid.SetMergeRow(0, true);

    grid.SetRow(1);
    WriteLeading(grid, plan, 1);
    c = first;
    for (std::size_t i = 1; i < items.size(); ++i) {
        const FeeItem& item = items[i];
        if (item.IsParking()) {
            for (int r : SplitRatios::RowsOf(ratios, item.ItemCode)) {
                grid.SetTextMatrix(1, c,
                                   QStringLiteral("开发商") +
                                       ratios.TextMatrix(r, SplitRatios::kDeveloperCol) + '%');
                grid.SetTextMatrix(
                    1, c + 1,
                    QStringLiteral("物业") + ratios.TextMatrix(r, SplitRatios::kPropertyCol) + '%');
            }
        } else {
            grid.SetTextMatrix(1, c, QStringLiteral("金额"));
        }
        const int tax = c + item.ColumnCount() - 1;
        grid.SetTextMatrix(1, tax, TaxHeading(item.TaxRate));
        for (int k = c; k <= tax; ++k) {
            grid.SetColWidth(k, plan.feeWidth);
            grid.SetMergeCol(k, false);
        }
        c = tax + 1;
    }
    WriteTrailing(grid, plan, 1, trailing, false);
    return n;
}

}  // namespace DetailHeader

}  // namespace yunqi
