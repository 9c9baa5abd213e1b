#pragma once

#include <QString>
#include <vector>

#include "db/DatabaseSession.h"
#include "db/Recordset.h"
#include "frame/FeeItem.h"
#include "frame/FlexGrid.h"

namespace yunqi {

// FeeItems from the result of an extraction statement (收费项目代号, 税率, xm,
// 收费类别), in the order delivered. Index 0 is an empty item.
FeeItemList ReadFeeItems(Recordset& rs);
// The same, appended to items one by one, so that a failing fetch leaves the
// items read before it.
void ReadFeeItems(Recordset& rs, FeeItemList& items);
// Runs an extraction statement into items, emptied to element 0 once the
// statement is open and filled one item at a time: after a failure it holds
// the items read before it, and the split-ratio grid is untouched; else the
// grid takes the default percentages of its parking items.
void LoadFeeItems(DatabaseSession& session, const QString& sql, FlexGrid& ratios,
                  FeeItemList& items);

}  // namespace yunqi
