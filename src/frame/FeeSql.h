#pragma once

#include <QString>
#include <vector>

#include "frame/FeeItem.h"
#include "frame/FlexGrid.h"

namespace yunqi {

// The SQL pieces of the fee items that the ticket statements assemble.

// The money columns of the main statement, from position 10 or 11 on:
// " ,Bi.name , Bi.tax" for an ordinary item, and for a parking item, per
// matching row of the split-ratio grid, " ,Bi.nameKFS ,Bi.nameWY , Bi.tax".
QString FeeColumnsSelect(const FeeItemList& items, const FlexGrid& ratios);
// The extraction's select over the tickets, their lines, stock-in notes and
// item settings, up to its Where.
QString FeeItemSelect();

// Pieces of the derived tables that sum or list an item's lines per ticket.
// 金额 less 税额 of a line, a Null tax counting as 0.
QString NetAmountSql();
// " From 票据开票数据" joined to its ticket and the ticket's stock-in note.
QString FeeLinesFrom();
// " And 收费项目代号 in (code) And 开票部门编号 ='dept'".
QString ItemLinesOf(const FeeItem& item, const QString& deptCode);
// " LEFT Join (sub[i]) Bi On 票据.票据编号 = Bi.票据编号" for items 1 on; byNote
// adds " And 票据.入库单编号 = Bi.入库单编号".
QString JoinDerivedTables(const std::vector<QString>& sub, bool byNote);

// The name without the characters a bare SQL alias can't hold: ( ) ） （ %.
QString AliasSafeName(QString name);
// "A Is Not Null Or B Is Not Null ...": a parking item is tested by its KFS
// column; the names stand bare.
QString PresenceCondition(const FeeItemList& items);

}  // namespace yunqi
