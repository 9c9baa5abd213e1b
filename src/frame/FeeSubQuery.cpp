#include "frame/FeeSubQuery.h"

#include "frame/FeeItemReader.h"
#include "frame/FeeSql.h"
#include "frame/SplitRatios.h"

namespace yunqi {

namespace FeeSubQuery {

QString Head(const FeeItem& item, const FlexGrid& ratios, const Form& form) {
    QString s;
    if (!item.IsParking()) {
        s = form.ordinary + QStringLiteral(" as ") + item.ItemName + form.ordinaryTax +
            item.TaxAlias + form.keys;
    } else {
        for (int r : SplitRatios::RowsOf(ratios, item.ItemCode)) {
            s = form.scaled + QStringLiteral(" * ") + SplitRatios::RatioText(ratios, r) +
                QStringLiteral(" as ") + item.ItemName + QStringLiteral("WY") + QStringLiteral(",");
            s += form.whole + QStringLiteral(" As ") + item.ItemName + QStringLiteral("KFS") +
                 QStringLiteral(",");
        }
        s += form.parkingTax + item.TaxAlias + form.keys;
    }
    s += FeeLinesFrom();
    s += QStringLiteral(" Inner Join 票据类型 on 票据入库单.票据类型编号 =票据类型.票据类型代号");
    return s;
}

QString Filter(const FeeItem& item, const StatementConditions& conditions) {
    return ItemLinesOf(item, conditions.DeptCode) + QStringLiteral(" And 票据类型代号 In (") +
           conditions.InvoiceTypeList + QStringLiteral(")");
}

}  // namespace FeeSubQuery

}  // namespace yunqi
