#include "frame/FeeItemReader.h"

#include "core/RuntimeError.h"
#include "core/ValueRules.h"
#include "frame/FeeSql.h"
#include "frame/SplitRatios.h"

namespace yunqi {

using namespace ValueRules;

FeeItemList ReadFeeItems(Recordset& rs) {
    FeeItemList items(1);
    ReadFeeItems(rs, items);
    return items;
}

void ReadFeeItems(Recordset& rs, FeeItemList& items) {
    const int fCode = rs.IndexOf(QStringLiteral("收费项目代号"));
    const int fRate = rs.IndexOf(QStringLiteral("税率"));
    const int fName = rs.IndexOf(QStringLiteral("xm"));
    const int fCategory = rs.IndexOf(QStringLiteral("收费类别"));
    for (; !rs.AtEnd(); rs.MoveNext()) {
        FeeItem item;
        if (!rs.IsNull(fCode)) item.ItemCode = '\'' + TextOf(rs.Value(fCode)) + '\'';
        item.ItemName = AliasSafeName(TextOrEmpty(rs.Value(fName)));
        item.Category = TextOrEmpty(rs.Value(fCategory));
        try {
            item.TaxRate = rs.IsNull(fRate) ? 0 : Round2(NumberOf(rs.Value(fRate)));
        } catch (const RuntimeError& e) {
            // A rate beyond the number forms: the item that has it.
            throw NamingTheValue(
                e, QStringLiteral("收费项目代号 ") + item.ItemCode + QStringLiteral(" 税率"));
        }
        if (!item.ItemName.isEmpty()) item.TaxAlias = item.ItemName + QStringLiteral("税额");
        items.push_back(std::move(item));
    }
}

void LoadFeeItems(DatabaseSession& session, const QString& sql, FlexGrid& ratios,
                  FeeItemList& items) {
    session.SetCommandTimeout(0);
    Recordset rs = session.Open(sql);
    items.assign(1, FeeItem{});
    ReadFeeItems(rs, items);
    SplitRatios::Fill(ratios, items);
}

}  // namespace yunqi
