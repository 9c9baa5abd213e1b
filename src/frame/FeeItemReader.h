#pragma once

#include <QString>

#include "frame/FeeItem.h"
#include "db/Recordset.h"

namespace yunqi {

// FeeItems from the result of an extraction statement (收费项目代号, 税率, xm,
// 收费类别), in the order delivered. Index 0 is an empty item.
FeeItemList ReadFeeItems(Recordset& rs);
// The same, appended to items one by one, so that a failing fetch leaves the
// items read before it.
void ReadFeeItems(Recordset& rs, FeeItemList& items);
// The name without the characters a bare SQL alias can't hold: ( ) ） （ %.
QString AliasSafeName(QString name);
// "A Is Not Null Or B Is Not Null ...": a parking item is tested by its KFS
// column; the names stand bare.
QString PresenceCondition(const FeeItemList& items);

}  // namespace yunqi
