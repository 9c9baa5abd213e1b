#include "frame/DetailPage.h"

#include "core/ValueRules.h"

namespace yunqi {

namespace DetailPage {

void WriteMoneyAndPayer(GridRow& row, const DetailRows& rows, int r, int first,
                        const TextMeasure& measure) {
    using ValueRules::Format0_00;
    const int n = rows.FeeColumnCount();
    for (int j = 1; j <= n; ++j) row.SetText(first + j, Format0_00(rows.FeeAmount(r, j)));
    row.SetText(first + n + 1, Format0_00(rows.RowTotal(r)));
    row.SetText(first + n + 2, rows.PayMethod(r));
    const int payer = first + n + 3;
    row.SetColAlignment(payer, FlexGrid::AlignLeftCenter);
    row.SetText(payer, rows.PayerText(r));
    if (measure.TextWidth(rows.PayerText(r)) > row.ColWidth(payer)) row.SetHeight(600);
}

}  // namespace DetailPage

}  // namespace yunqi
