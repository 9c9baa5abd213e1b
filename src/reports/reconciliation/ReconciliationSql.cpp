// The SQL texts of the reconciliation, exactly as they are sent.
#include "core/ValueRules.h"
#include "frame/FeeSql.h"
#include "reports/reconciliation/ReconciliationStatement.h"

namespace yunqi {

using namespace ValueRules;

namespace {

// What the invoice sums and the fee-item sums share after their head.
QString Joins() {
    return QStringLiteral(" From 票据开票数据") +
           QStringLiteral(
               " Inner Join 票据  on 票据开票数据.入库单编号  =票据.入库单编号 and "
               "票据开票数据.票据编号 = 票据.票据编号") +
           QStringLiteral(
               " Inner Join 票据入库单 on 票据开票数据.入库单编号 =票据入库单.入库单编号") +
           QStringLiteral(
               " Inner Join 票据类型 on 票据入库单.票据类型编号 =票据类型.票据类型代号") +
           QStringLiteral(" Inner Join 税控盘收费项目设置 on 收费项目代号=dh");
}

// One invoice sum per rate of the month: SpecialQuery, OrdinaryQuery, ReceiptQuery.
QString InvoiceSql(const QString& head, const QString& voided, const QString& typeCodes,
                   const QString& feeCodeList, const StatementConditions& conditions,
                   const QString& month) {
    return head + Joins() + QStringLiteral(" Where CONVERT(char(6),开票日期,112) ='") + month +
           QStringLiteral("'") + QStringLiteral(" And 收费项目代号 in (") + feeCodeList +
           QStringLiteral(")") + voided + QStringLiteral(" And 开票部门编号 ='") +
           conditions.DeptCode + QStringLiteral("'") +
           QStringLiteral(" And 税控盘收费项目设置.管理处 ='") + conditions.SiteCode +
           QStringLiteral("'") + QStringLiteral(" And 票据类型代号 IN (") + typeCodes +
           QStringLiteral(")") + QStringLiteral(" group by 税控盘收费项目设置.税率");
}

// What finance took in for one item: paid this month, invoiced then or before.
QString ItemSql(const FeeItem& item, const StatementConditions& conditions, const QString& month) {
    return QStringLiteral("Select SUM(票据开票数据.金额) as ") + item.ItemName +
           QStringLiteral(", 税控盘收费项目设置.税率") + Joins() +
           QStringLiteral(" Where ((CONVERT(char(6),开票日期,112) ='") + month +
           QStringLiteral("' And CONVERT(char(6),收款日期,112) ='") + month + QStringLiteral("')") +
           QStringLiteral(" Or (CONVERT(char(6),收款日期 ,112) ='") + month +
           QStringLiteral("' And CONVERT(char(6),开票日期,112) < CONVERT(char(6),收款日期,112)))") +
           QStringLiteral(" And 收费项目代号 in (") + item.ItemCode + QStringLiteral(")") +
           QStringLiteral(" And 作废日期 is null and 收款日期 is not null") +
           QStringLiteral(" And 开票部门编号 ='") + conditions.DeptCode + QStringLiteral("'") +
           QStringLiteral(" And 税控盘收费项目设置.管理处 ='") + conditions.SiteCode +
           QStringLiteral("'") + QStringLiteral(" And 票据类型代号 IN (") +
           conditions.InvoiceTypeList + QStringLiteral(")") +
           QStringLiteral(" group by 税控盘收费项目设置.税率");
}

// The pre-invoiced sums share everything after their head and their month test.
QString PreInvoicedSql(const QString& head, const QString& where, const QString& voided,
                       const QString& feeCodeList, const StatementConditions& conditions) {
    return head + QStringLiteral(" From 票据开票数据") +
           QStringLiteral(
               " Inner Join 票据  on 票据开票数据.入库单编号  =票据.入库单编号 and "
               "票据开票数据.票据编号  =票据.票据编号") +
           QStringLiteral(
               " Inner Join 票据入库单 on 票据开票数据.入库单编号 =票据入库单.入库单编号") +
           QStringLiteral(
               " Inner Join 票据类型 on 票据入库单.票据类型编号 =票据类型.票据类型代号") +
           where + voided + QStringLiteral(" And 收费项目代号 in (") + feeCodeList +
           QStringLiteral(")") + QStringLiteral(" And 开票部门编号 ='") + conditions.DeptCode +
           QStringLiteral("'") + QStringLiteral(" And 票据类型代号 IN (") +
           conditions.InvoiceTypeList + QStringLiteral(")");
}

}  // namespace

QString ReconciliationStatement::FeeItemSql(const StatementConditions& conditions) {
    QString sql = QStringLiteral(
        "Select distinct 收费项目代号, 税控盘收费项目设置.税率,XM , 收费类别,显示名称");
    sql += QStringLiteral(" From 票据");
    sql += QStringLiteral(
        " inner join 票据开票数据 on 票据.票据编号  =票据开票数据.票据编号 And 票据.入库单编号 = "
        "票据开票数据.入库单编号");
    sql += QStringLiteral(" inner join 票据入库单 on 票据.入库单编号 =票据入库单.入库单编号");
    sql += QStringLiteral(" inner join 票据类型 on 票据入库单.票据类型编号 =票据类型.票据类型代号");
    sql += QStringLiteral(" inner join setupsfxm on 收费项目代号=dh");
    sql +=
        QStringLiteral(" Inner Join 税控盘收费项目设置 ON setupsfxm.dh = 税控盘收费项目设置.DH ");
    sql += QStringLiteral(" where CONVERT(char(6),开票日期,112) between '") + conditions.Year +
           conditions.FromMonth + QStringLiteral("' and '") + conditions.Year + conditions.ToMonth +
           QStringLiteral("'");
    sql += QStringLiteral(" and 作废日期 is null ");
    sql += QStringLiteral(" And 开票部门编号 ='") + conditions.DeptCode + QStringLiteral("'");
    sql +=
        QStringLiteral(" And 票据类型代号 In (") + conditions.InvoiceTypeList + QStringLiteral(")");
    sql += QStringLiteral(" And 税控盘收费项目设置.管理处 ='") + conditions.SiteCode +
           QStringLiteral("'");
    sql += QStringLiteral(" group by  税控盘收费项目设置.税率,收费项目代号,xm,收费类别,显示名称");
    sql += QStringLiteral(" order by 收费项目代号");
    return sql;
}

QString ReconciliationStatement::FeeCodeList() const {
    QString list;
    for (std::size_t i = 1; i < feeItems_.size(); ++i) {
        if (i > 1) list += QLatin1Char(',');
        list += feeItems_[i].ItemCode;
    }
    return list;
}

QString ReconciliationStatement::MonthSql(const StatementConditions& conditions,
                                          const QString& month) const {
    const QString codes = FeeCodeList();
    const int n = int(feeItems_.size()) - 1;
    const QString voided = QStringLiteral(" And 作废日期 is null");
    QString sql = QStringLiteral(
        "Select Distinct CASE WHEN A.税率 IS NULL THEN 100 else A.税率 END AS S税率 ,");
    sql += QStringLiteral(
        " A1.专用发票, A1.专发税额, A2.普通发票, A2.普发税额, CASE WHEN A.税率 IS not NULL THEN "
        "NULL ELSE A3.收据 End As S收据 ");
    for (int i = 1; i <= n; ++i) {
        const QString& c = feeItems_[i].ItemName;
        const QString b = QStringLiteral("B") + QString::number(i);
        if (feeItems_[i].TaxRate == 0)
            sql += QStringLiteral(" , CASE WHEN (A.税率 IS not NULL And A.税率>0) THEN 0 ELSE ") +
                   b + QLatin1Char('.') + c + QStringLiteral(" END AS ") + c;
        else
            sql += QStringLiteral(" ,") + b + QLatin1Char('.') + c;
    }
    sql += QStringLiteral(" From 税控盘收费项目设置 A");
    sql +=
        QStringLiteral(" LEFT Join (") +
        InvoiceSql(QStringLiteral("Select SUM(票据开票数据.金额) as 专用发票, SUM(Case When "
                                  "票据开票数据.税额 Is Null Then 0 Else 票据开票数据.税额 End) as "
                                  "专发税额, 税控盘收费项目设置.税率"),
                   voided, special_, codes, conditions, month) +
        QStringLiteral(") A1 On A.税率=A1.税率");
    sql +=
        QStringLiteral(" LEFT Join (") +
        InvoiceSql(QStringLiteral("Select SUM(票据开票数据.金额) as 普通发票,  SUM(Case When "
                                  "票据开票数据.税额 Is Null Then 0 Else 票据开票数据.税额 End) as "
                                  "普发税额, 税控盘收费项目设置.税率"),
                   voided, ordinary_, codes, conditions, month) +
        QStringLiteral(") A2 On A.税率=A2.税率");
    sql += QStringLiteral(" LEFT Join (") +
           InvoiceSql(
               QStringLiteral("Select SUM(票据开票数据.金额) as 收据, 税控盘收费项目设置.税率 "),
               voided + QLatin1Char(' '), receipt_, codes, conditions, month) +
           QStringLiteral(") A3 On (A.税率=A3.税率 Or A3.税率 Is Null)");
    for (int i = 1; i <= n; ++i) {
        const QString b = QStringLiteral("B") + QString::number(i);
        sql += QStringLiteral(" LEFT Join (") + ItemSql(feeItems_[i], conditions, month) +
               QStringLiteral(") ") + b;
        if (feeItems_[i].TaxRate == 0)
            sql += QStringLiteral(" On (A.税率= ") + b + QStringLiteral(".税率 Or ") + b +
                   QStringLiteral(".税率 Is Null)");
        else
            sql += QStringLiteral(" On A.税率= ") + b + QStringLiteral(".税率");
    }
    sql += QStringLiteral(
        " Where (专用发票 Is Not Null Or 普通发票 Is Not Null Or A3.收据 Is Not Null)");
    sql += QStringLiteral(" order by  S税率");
    return sql;
}

QString ReconciliationStatement::CollectedSql(const StatementConditions& conditions,
                                              const QString& feeCodeList, const QString& month) {
    return PreInvoicedSql(
        QStringLiteral("Select SUM(票据开票数据.金额) 当月收预开"),
        QStringLiteral(" Where CONVERT(char(6),收款日期 ,112) ='") + month +
            QStringLiteral("' And CONVERT(char(6),开票日期,112) < CONVERT(char(6),收款日期,112)"),
        QStringLiteral(" And 作废日期 is null and 收款日期 is not null"), feeCodeList, conditions);
}

QString ReconciliationStatement::UncollectedSql(const StatementConditions& conditions,
                                                const QString& feeCodeList, const QString& month) {
    return PreInvoicedSql(
        QStringLiteral("Select SUM(票据开票数据.金额) 当月未收预开票"),
        QStringLiteral(" Where CONVERT(char(6),开票日期 ,112) ='") + month +
            QStringLiteral("' And (收款日期 Is Null Or CONVERT(char(6),收款日期,112) > "
                           "CONVERT(char(6),开票日期,112))"),
        QStringLiteral(" And 作废日期 is null"), feeCodeList, conditions);
}

}  // namespace yunqi
