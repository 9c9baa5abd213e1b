#pragma once

#include <QString>

#include "frame/FeeItem.h"
#include "frame/FlexGrid.h"
#include "frame/StatementConditions.h"

namespace yunqi {

// The sub-query of one fee item in the two-stage ticket statements: the
// select list in the statement's own form, the lines joined to their tickets,
// and the filter by item, department and ticket type.
namespace FeeSubQuery {

struct Form {
    QString ordinary;     // the net amount of an ordinary item, up to " as "
    QString ordinaryTax;  // between the item's name and its tax alias
    QString scaled;       // a parking item's 物业 share, up to " * " ratio
    QString whole;        // a parking item's 开发商 column, up to " As "
    QString parkingTax;   // before a parking item's tax alias
    QString keys;         // the columns that end the select list
};

// The select list and " From 票据开票数据" with its joins; a parking item's
// shares per matching row of the split-ratio grid, the last one standing.
QString Head(const FeeItem& item, const FlexGrid& ratios, const Form& form);
// " And 收费项目代号 in (...) And 开票部门编号 ='...' And 票据类型代号 In (...)".
QString Filter(const FeeItem& item, const StatementConditions& conditions);

}  // namespace FeeSubQuery

}  // namespace yunqi
