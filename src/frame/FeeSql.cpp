#include "frame/FeeSql.h"

#include "frame/SplitRatios.h"

namespace yunqi {

QString AliasSafeName(QString name) {
    for (const QString& c : {QStringLiteral("("), QStringLiteral(")"), QStringLiteral("）"),
                             QStringLiteral("（"), QStringLiteral("%")})
        name.remove(c);
    return name;
}

QString FeeColumnsSelect(const FeeItemList& items, const FlexGrid& ratios) {
    QString sql;
    for (std::size_t i = 1; i < items.size(); ++i) {
        const FeeItem& item = items[i];
        const QString b = QStringLiteral("B") + QString::number(i);
        if (!item.IsParking()) {
            sql += QStringLiteral(" ,") + b + '.' + item.ItemName + QStringLiteral(" , ") + b +
                   '.' + item.TaxAlias;
            continue;
        }
        for (int r : SplitRatios::RowsOf(ratios, item.ItemCode)) {
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
               " inner join 票据开票数据 on 票据.票据编号  =票据开票数据.票据编号 And "
               "票据.入库单编号 = "
               "票据开票数据.入库单编号") +
           QStringLiteral(" inner join 票据入库单 on 票据.入库单编号 =票据入库单.入库单编号") +
           QStringLiteral(" inner join setupsfxm on 收费项目代号=dh");
}

QString NetAmountSql() {
    return QStringLiteral(
        "票据开票数据.金额-(Case When 票据开票数据.税额 Is Null Then 0 Else 票据开票数据.税额 "
        "End)");
}

QString FeeLinesFrom() {
    return QStringLiteral(" From 票据开票数据") +
           QStringLiteral(
               " Inner Join 票据  on 票据开票数据.入库单编号  =票据.入库单编号 and "
               "票据开票数据.票据编号 = 票据.票据编号") +
           QStringLiteral(
               " Inner Join 票据入库单 on 票据开票数据.入库单编号 =票据入库单.入库单编号");
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
        if (byNote)
            sql += QStringLiteral(" And 票据.入库单编号 = ") + b + QStringLiteral(".入库单编号");
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
