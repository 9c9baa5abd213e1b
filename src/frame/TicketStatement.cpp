#include "frame/TicketStatement.h"

#include "frame/FeeItemReader.h"
#include "frame/FeeSql.h"

namespace yunqi {

void TicketStatement::LoadItems(const QString& sql, FlexGrid& ratios, FlexGrid& statementGrid) {
    LoadFeeItems(session_, sql, ratios, feeItems_);
    if (feeItems_.size() > 1) BuildGridHeader(statementGrid, ratios);
}

QString TicketStatement::TicketsSelect(const QString& moreColumns, const FlexGrid& ratios,
                                       const std::vector<QString>& sub, bool byNote,
                                       const QString& deptCode) const {
    QString sql = QStringLiteral(
                      "Select 票据.票据编号 ,票据.入库单编号 , 票据类型.票据类型 ,开票日期, "
                      "收款日期, 作废日期, 票据.金额, 收款方式, 付款人, 地址") +
                  moreColumns;
    sql += FeeColumnsSelect(feeItems_, ratios);
    sql += QStringLiteral(" From 票据");
    sql += QStringLiteral(" inner join 票据入库单 on 票据.入库单编号 =票据入库单.入库单编号");
    sql += QStringLiteral(" inner join 票据类型 on 票据入库单.票据类型编号 =票据类型.票据类型代号");
    sql += JoinDerivedTables(sub, byNote);
    sql += QStringLiteral(" Where 票据.开票部门编号 ='") + deptCode + QStringLiteral("'");
    return sql;
}

DetailRows::Kind TicketStatement::KindOf(const QString& typeName, bool electronicColumn) {
    if (typeName.contains(QStringLiteral("专用发票"))) return DetailRows::Kind::Special;
    if (typeName.contains(QStringLiteral("普通发票"))) return DetailRows::Kind::Ordinary;
    if (electronicColumn && typeName.contains(QStringLiteral("电子发票")))
        return DetailRows::Kind::Electronic;
    return DetailRows::Kind::Receipt;
}

}  // namespace yunqi
