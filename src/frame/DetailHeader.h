#pragma once

#include <QString>
#include <vector>

#include "frame/FeeItem.h"
#include "frame/FlexGrid.h"

namespace yunqi {

// The two-row header of the ticket statements: the report's leading columns,
// the money columns of the fee items, then 合计, 收款方式 and 付款人.
struct DetailHeaderPlan {
    struct Column {
        QString top;
        QString bottom;
        int width;
        bool mergeDown;
    };
    std::vector<Column> leading;
    // The default header's second pass puts 收款方式's width on 合计.
    bool initWidthOnTotal = false;

    int TrailingStart(int feeColumnCount) const { return int(leading.size()) + feeColumnCount; }
};

namespace DetailHeader {

// The default header, before any fee item is known.
void Init(FlexGrid& grid1, const DetailHeaderPlan& plan);
// The header of the items, with the percentages of MSFlexGrid2. Returns
// FeeColumnCount.
int Build(FlexGrid& grid1, const DetailHeaderPlan& plan, const FeeItemList& items,
          const FlexGrid& grid2);
// "税额" + rate in percent + "%": 0.05 gives 税额5%.
QString TaxHeading(double taxRate);

}  // namespace DetailHeader

}  // namespace yunqi
