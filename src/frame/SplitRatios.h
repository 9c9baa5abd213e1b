#pragma once

#include <QString>
#include <vector>

#include "frame/FeeItem.h"
#include "frame/FlexGrid.h"

namespace yunqi {

// MSFlexGrid2: one row per parking item, the 开发商 percentage in column 2, the
// 物业 percentage in column 3, the item's code hidden in column 4. The
// percentages live only in these cells; statements read them back from here.
namespace SplitRatios {

constexpr int kDeveloperCol = 2;
constexpr int kPropertyCol = 3;
constexpr int kCodeCol = 4;

// The grid as the window loads it: 5 columns, the header row alone.
FlexGrid NewGrid();
// Resets the grid to its header and adds a row with "70" and "30" for each
// parking item, in the order of the items.
void Fill(FlexGrid& grid, const FeeItemList& items);
// The 物业 share of a row as a plain decimal fraction: "30" gives 0.3,
// "33.3" gives 0.333, "100" gives 1. A cell that is no number: Type mismatch.
QString RatioText(const FlexGrid& grid, int row);
// The rows of the grid that belong to an item (its quoted code in column 4).
std::vector<int> RowsOf(const FlexGrid& grid, const QString& itemCode);
// The first row of the item whose code, without its quotes, is code; -1 if none.
int RowOfItem(const FlexGrid& grid, const QString& code);
// The two percentages of a row, as the editor takes them.
void SetShares(FlexGrid& grid, int row, const QString& developer, const QString& property);
// The editor's rule: the two shares of a row add up to exactly 100.
bool SumIsHundred(const FlexGrid& grid, int row);
QString SumMessage();

}  // namespace SplitRatios

}  // namespace yunqi
