#include "frame/FeeItemReader.h"

#include "core/ValueRules.h"
#include "frame/SplitRatios.h"

namespace yunqi {

using namespace ValueRules;

QString AliasSafeName(QString name) {
    for (const QString& c : {QStringLiteral("("), QStringLiteral(")"), QStringLiteral("）"),
                             QStringLiteral("（"), QStringLiteral("%")})
        name.remove(c);
    return name;
}

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
        item.TaxRate = rs.IsNull(fRate) ? 0 : Round2(NumberOf(rs.Value(fRate)));
        if (!item.ItemName.isEmpty()) item.TaxAlias = item.ItemName + QStringLiteral("税额");
        items.push_back(std::move(item));
    }
}

FeeItemList LoadFeeItems(DatabaseSession& session, const QString& sql, FlexGrid& grid2) {
    FeeItemList items(1);
    LoadFeeItems(session, sql, grid2, items);
    return items;
}

void LoadFeeItems(DatabaseSession& session, const QString& sql, FlexGrid& grid2,
                  FeeItemList& items) {
    session.SetCommandTimeout(0);
    Recordset rs = session.Open(sql);
    ReadFeeItems(rs, items);
    SplitRatios::Fill(grid2, items);
}

QString FeeColumnsSelect(const FeeItemList& items, const FlexGrid& grid2) {
    QString sql;
    for (std::size_t i = 1; i < items.size(); ++i) {
        const FeeItem& item = items[i];
        const QString b = QStringLiteral("B") + QString::number(i);
        if (!item.IsParking()) {
            sql += QStringLiteral(" ,") + b + '.' + item.ItemName + QStringLiteral(" , ") + b + '.' +
                   item.TaxAlias;
            continue;
        }
        for (int r : SplitRatios::RowsOf(grid2, item.ItemCode)) {
            (void)r;
            sql += QStringLiteral(" ,") + b + '.' + item.ItemName + QStringLiteral("KFS");
            sql += QStringLiteral(" ,") + b + '.' + item.ItemName + QStringLiteral("WY");
            sql += QStringLiteral(" , ") + b + '.' + item.TaxAlias;
        }
    }
    return sql;
}

QString PresenceCondition(const FeeItemList& items) {
    QString text;
    for (std::size_t i = 1; i < items.size(); ++i) {
        const QString name =
            items[i].IsParking() ? items[i].ItemName + QStringLiteral("KFS") : items[i].ItemName;
        if (text.isEmpty())
            text = name + QStringLiteral(" Is Not Null");
        else
            text += QStringLiteral(" Or ") + name + QStringLiteral(" Is Not Null");
    }
    return text;
}

}  // namespace yunqi
