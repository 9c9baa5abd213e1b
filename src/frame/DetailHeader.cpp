#include "frame/DetailHeader.h"

#include "frame/SplitRatios.h"
#include "core/ValueRules.h"

namespace yunqi {

namespace DetailHeader {
namespace {

const QString kTotal = QStringLiteral("合计");
const QString kPayMethod = QStringLiteral("收款方式");
const QString kPayer = QStringLiteral("付款人");

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

void WriteTrailing(FlexGrid& grid, int row, int first, int payerWidth) {
    grid.SetTextMatrix(row, first, kTotal);
    grid.SetColWidth(first, 1400);
    grid.SetTextMatrix(row, first + 1, kPayMethod);
    grid.SetColWidth(first + 1, 900);
    grid.SetTextMatrix(row, first + 2, kPayer);
    grid.SetColWidth(first + 2, payerWidth);
    for (int c = first; c < first + 3; ++c) grid.SetMergeCol(c, true);
}

}  // namespace

QString TaxHeading(double taxRate) {
    return QStringLiteral("税额") + ValueRules::DoubleText(taxRate * 100) + '%';
}

void Init(FlexGrid& grid, const DetailHeaderPlan& plan) {
    const int first = int(plan.leading.size());
    Start(grid, first + 3);
    WriteLeading(grid, plan, 0);
    WriteTrailing(grid, 0, first, 1200);
    grid.SetMergeRow(0, true);
    grid.SetRow(1);
    WriteLeading(grid, plan, 1);
    WriteTrailing(grid, 1, first, 1200);
    if (plan.initWidthOnTotal) {
        // 收款方式's width lands on 合计 in this pass; 收款方式 keeps the first one.
        grid.SetColWidth(first, 900);
    }
    grid.Touch();
}

int Build(FlexGrid& grid, const DetailHeaderPlan& plan, const FeeItemList& items,
          const FlexGrid& grid2) {
    const int n = FeeColumnCountOf(items);
    const int first = int(plan.leading.size());
    const int trailing = first + n;
    Start(grid, trailing + 3);

    WriteLeading(grid, plan, 0);
    int c = first;
    for (std::size_t i = 1; i < items.size(); ++i)
        for (int k = 0; k < items[i].ColumnCount(); ++k, ++c) {
            grid.SetTextMatrix(0, c, items[i].ItemName);
            grid.SetColWidth(c, 1200);
        }
    WriteTrailing(grid, 0, trailing, 3800);
    grid.SetMergeRow(0, true);

    grid.SetRow(1);
    WriteLeading(grid, plan, 1);
    c = first;
    for (std::size_t i = 1; i < items.size(); ++i) {
        const FeeItem& item = items[i];
        if (item.IsParking()) {
            for (int r = 1; r < grid2.Rows(); ++r) {
                if (grid2.TextMatrix(r, SplitRatios::kCodeCol) != item.ItemCode) continue;
                grid.SetTextMatrix(1, c,
                                   QStringLiteral("开发商") +
                                       grid2.TextMatrix(r, SplitRatios::kDeveloperCol) + '%');
                grid.SetTextMatrix(
                    1, c + 1,
                    QStringLiteral("物业") + grid2.TextMatrix(r, SplitRatios::kPropertyCol) + '%');
            }
        } else {
            grid.SetTextMatrix(1, c, QStringLiteral("金额"));
        }
        const int tax = c + item.ColumnCount() - 1;
        grid.SetTextMatrix(1, tax, TaxHeading(item.TaxRate));
        for (int k = c; k <= tax; ++k) {
            grid.SetColWidth(k, 1200);
            grid.SetMergeCol(k, false);
        }
        c = tax + 1;
    }
    WriteTrailing(grid, 1, trailing, 3800);
    grid.Touch();
    return n;
}

}  // namespace DetailHeader

}  // namespace yunqi
