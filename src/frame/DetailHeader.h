#pragma once

#include <QString>
#include <vector>

#include "frame/FeeItem.h"
#include "frame/FlexGrid.h"

namespace yunqi {

// The two-row header of the ticket statements: the report's leading columns,
// the money columns of the fee items, then its trailing columns.
struct DetailHeaderPlan {
    struct Column {
        QString top;
        QString bottom;
        int width;
        bool mergeDown;
        int initWidth = 0;  // the width in the default header, when it differs
    };
    std::vector<Column> leading;
    std::vector<Column> trailing;
    int feeWidth = 1200;  // each money column
    // The default header's second pass puts the second trailing column's
    // width on the first one.
    bool initWidthOnTotal = false;
};

namespace DetailHeader {

// 序 and 开票日期, as the ticket statements begin, followed by the report's own.
std::vector<DetailHeaderPlan::Column> TicketLeading(std::vector<DetailHeaderPlan::Column> more);
// 合计, 收款方式 and 付款人, as the ticket statements end.
std::vector<DetailHeaderPlan::Column> TicketTrailing();

// The default header, before any fee item is known.
void Init(FlexGrid& statementGrid, const DetailHeaderPlan& plan);
// The header of the items, with the percentages of MSFlexGrid2. Returns
// FeeColumnCount.
int Build(FlexGrid& statementGrid, const DetailHeaderPlan& plan, const FeeItemList& items,
          const FlexGrid& ratios);
// "税额" + rate in percent + "%": 0.05 gives 税额5%.
QString TaxHeading(double taxRate);

}  // namespace DetailHeader

}  // namespace yunqi
