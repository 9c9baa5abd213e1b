// The reconciliation grid's two header rows.
#include "reports/reconciliation/ReconciliationColumns.h"
#include "reports/reconciliation/ReconciliationStatement.h"

namespace yunqi {

using namespace ReconciliationColumns;

namespace {

struct HeaderColumn {
    QString top, bottom;
    int width;
};

void WriteHeaderColumn(FlexGrid& grid, int c, const HeaderColumn& h) {
    grid.SetTextMatrix(0, c, h.top);
    grid.SetTextMatrix(1, c, h.bottom);
    grid.SetColWidth(c, h.width);
}

// The header of n items; n = 0 is the default header, with "财务交账" over "小计" alone.
void LayHeader(FlexGrid& grid, const FeeItemList& items) {
    const int n = int(items.size()) - 1;
    const int cols = n + 13;
    grid.SetRows(2);
    grid.SetCols(cols);
    grid.SetFixedRows(2);
    grid.SetRow(0);
    grid.SetMergeCells(FlexGrid::MergeRestrictColumns);
    static const HeaderColumn leading[] = {
        {QStringLiteral("序"), QStringLiteral("序"), 500},
        {QStringLiteral("开票年月"), QStringLiteral("开票年月"), 900},
        {QStringLiteral("税率"), QStringLiteral("税率"), 600},
        {QStringLiteral("增值税专用发票"), QStringLiteral("金额"), 1300},
        {QStringLiteral("增值税专用发票"), QStringLiteral("税额"), 1200},
        {QStringLiteral("增值税普通发票"), QStringLiteral("金额"), 1300},
        {QStringLiteral("增值税普通发票"), QStringLiteral("税额"), 1200},
        {QStringLiteral("收据"), QStringLiteral("金额"), 1200},
    };
    for (int c = 0; c < 8; ++c) WriteHeaderColumn(grid, c, leading[c]);
    const QString finance = QStringLiteral("财务交账");
    for (int i = 1; i <= n; ++i) WriteHeaderColumn(grid, i + 7, {finance, items[i].ItemName, 1200});
    const HeaderColumn trailing[] = {
        {finance, kSubtotal, 1200},
        {QStringLiteral("当月收预开票"), QStringLiteral("金额"), 1200},
        {QStringLiteral("当月未收预开"), QStringLiteral("金额"), 1200},
        {QStringLiteral("核对结果"), QStringLiteral("差额"), 1200},
        {QStringLiteral("备注"), QStringLiteral("备注"), 1600},
    };
    for (int j = 0; j < 5; ++j) WriteHeaderColumn(grid, FinanceColumn(n) + j, trailing[j]);
    for (int c = 0; c < cols; ++c) {
        grid.SetFixedAlignment(c, FlexGrid::AlignCenterCenter);
        grid.SetMergeCol(c, false);
    }
    grid.SetMergeRow(0, true);
    for (int c : {0, 1, 2, DifferenceColumn(n), n + 12}) grid.SetMergeCol(c, true);
}

}  // namespace

void ReconciliationStatement::InitGridHeader(FlexGrid& statementGrid) const {
    LayHeader(statementGrid, FeeItemList(1));
}

void ReconciliationStatement::BuildGridHeader(FlexGrid& statementGrid) const {
    LayHeader(statementGrid, feeItems_);
}

}  // namespace yunqi
