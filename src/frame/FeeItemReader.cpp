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
    FeeItemList items;
    LoadFeeItems(session, sql, grid2, items);
    return items;
}

void LoadFeeItems(DatabaseSession& session, const QString& sql, FlexGrid& grid2,
                  FeeItemList& items) {
    session.SetCommandTimeout(0);
    Recordset rs = session.Open(sql);
    items.assign(1, FeeItem{});
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

QString FeeItemSelect() {
    return QStringLiteral("Select distinct 收费项目代号, setupsfxm.税率,XM , 收费类别,显示名称") +
           QStringLiteral(" From 票据") +
           QStringLiteral(
               " inner join 票据开票数据 on 票据.票据编号  =票据开票数据.票据编号 And 票据.入库单编号 = "
               "票据开票数据.入库单编号") +
           QStringLiteral(" inner join 票据入库单 on 票据.入库单编号 =票据入库单.入库单编号") +
           QStringLiteral(" inner join setupsfxm on 收费项目代号=dh");
}

QString NetAmountSql() {
    return QStringLiteral(
        "票据开票数据.金额-(Case When 票据开票数据.税额 Is Null Then 0 Else 票据开票数据.税额 End)");
}

QString FeeLinesFrom() {
    return QStringLiteral(" From 票据开票数据") +
           QStringLiteral(
               " Inner Join 票据  on 票据开票数据.入库单编号  =票据.入库单编号 and "
               "票据开票数据.票据编号 = 票据.票据编号") +
           QStringLiteral(" Inner Join 票据入库单 on 票据开票数据.入库单编号 =票据入库单.入库单编号");
}

QString ItemLinesOf(const FeeItem& item, const QString& deptCode) {
    return QStringLiteral(" And 收费项目代号 in (") + item.ItemCode + QStringLiteral(")") +
           QStringLiteral(" And 开票部门编号 ='") + deptCode + QStringLiteral("'");
}

QString JoinDerivedTables(const std::vector<QString>& sub, bool byNote) {
    QString sql;
    for (std::size_t i = 1; i < sub.size(); ++i) {
        const QString b = QStringLiteral("B") + QString::number(i);
        sql += QStringLiteral(" LEFT Join (") + sub[i] + QStringLiteral(") ") + b +
               QStringLiteral(" On 票据.票据编号 = ") + b + QStringLiteral(".票据编号");
        if (byNote) sql += QStringLiteral(" And 票据.入库单编号 = ") + b + QStringLiteral(".入库单编号");
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
