#include "frame/DetailPage.h"

#include "core/ValueRules.h"

namespace yunqi {

namespace DetailPage {

void WriteMoneyAndPayer(FlexGrid& grid, int g, const DetailRows& rows, int r, int first,
                        const TextMeasure& measure) {
    using ValueRules::Format0_00;
    const int n = rows.FeeColumnCount();
    for (int j = 1; j <= n; ++j) grid.SetTextMatrix(g, first + j, Format0_00(rows.FeeAmount(r, j)));
    grid.SetTextMatrix(g, first + n + 1, Format0_00(rows.RowTotal(r)));
    grid.SetTextMatrix(g, first + n + 2, rows.PayMethod(r));
    const int payer = first + n + 3;
    grid.SetColAlignment(payer, FlexGrid::AlignLeftCenter);
    grid.SetTextMatrix(g, payer, rows.PayerText(r));
    if (measure.TextWidth(rows.PayerText(r)) > grid.ColWidth(payer)) grid.SetRowHeight(g, 600);
}

}  // namespace DetailPage

}  // namespace yunqi
