#pragma once

#include "frame/DetailRows.h"
#include "frame/GridRow.h"
#include "frame/TextMeasure.h"

namespace yunqi {

namespace DetailPage {

// The end of a ticket row on the page: the money columns after column first,
// each "0.00", then RowTotal, PayMethod and, left-aligned, PayerText; a payer
// wider than its column makes the row 600 high so that it wraps.
void WriteMoneyAndPayer(GridRow& row, const DetailRows& rows, int r, int first,
                        const TextMeasure& measure);

}  // namespace DetailPage

}  // namespace yunqi
