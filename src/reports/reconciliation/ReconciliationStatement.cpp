#include "reports/reconciliation/ReconciliationStatement.h"

#include <vector>

#include "core/MessageForms.h"
#include "core/RuntimeError.h"
#include "core/ValueRules.h"
#include "frame/Conditions.h"
#include "frame/FeeItemReader.h"
#include "frame/FeeSql.h"
#include "reports/reconciliation/ReconciliationWorkbook.h"

namespace yunqi {

using namespace ValueRules;

namespace {

const QString kSubtotal = QStringLiteral("小计");
const QString kTotal = QStringLiteral("合计");
const QString kZero = QStringLiteral("0.00");

// Columns with n fee items: 3 to 7 invoices and receipts, 8 to n+7 the items.
int FinanceColumn(int n) { return n + 8; }
int CollectedColumn(int n) { return n + 9; }
int UncollectedColumn(int n) { return n + 10; }
int DifferenceColumn(int n) { return n + 11; }

int AddRow(FlexGrid& grid) {
    grid.SetRows(grid.Rows() + 1);
    grid.SetRow(grid.Rows() - 1);
    return grid.Row();
}

QString Amount(const Recordset& rs, int field) {
    return rs.IsNull(field) ? kZero : Format0_00(NumberOf(rs.Value(field)));
}

// The months of the run, as the combo texts give them.
std::vector<QString> MonthKeys(const StatementConditions& k) {
    std::vector<QString> keys;
    for (long m = RoundHalfEven(Val(k.FromMonth)); m <= RoundHalfEven(Val(k.ToMonth)); ++m)
        keys.push_back(k.Year + Format00(m));
    return keys;
}

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
                   const QString& feeCodeList, const StatementConditions& k, const QString& month) {
    return head + Joins() + QStringLiteral(" Where CONVERT(char(6),开票日期,112) ='") + month +
           QStringLiteral("'") + QStringLiteral(" And 收费项目代号 in (") + feeCodeList +
           QStringLiteral(")") + voided + QStringLiteral(" And 开票部门编号 ='") + k.DeptCode +
           QStringLiteral("'") + QStringLiteral(" And 税控盘收费项目设置.管理处 ='") + k.SiteCode +
           QStringLiteral("'") + QStringLiteral(" And 票据类型代号 IN (") + typeCodes +
           QStringLiteral(")") + QStringLiteral(" group by 税控盘收费项目设置.税率");
}

// What finance took in for one item: paid this month, invoiced then or before.
QString ItemSql(const FeeItem& item, const StatementConditions& k, const QString& month) {
    return QStringLiteral("Select SUM(票据开票数据.金额) as ") + item.ItemName +
           QStringLiteral(", 税控盘收费项目设置.税率") + Joins() +
           QStringLiteral(" Where ((CONVERT(char(6),开票日期,112) ='") + month +
           QStringLiteral("' And CONVERT(char(6),收款日期,112) ='") + month + QStringLiteral("')") +
           QStringLiteral(" Or (CONVERT(char(6),收款日期 ,112) ='") + month +
           QStringLiteral("' And CONVERT(char(6),开票日期,112) < CONVERT(char(6),收款日期,112)))") +
           QStringLiteral(" And 收费项目代号 in (") + item.ItemCode + QStringLiteral(")") +
           QStringLiteral(" And 作废日期 is null and 收款日期 is not null") +
           QStringLiteral(" And 开票部门编号 ='") + k.DeptCode + QStringLiteral("'") +
           QStringLiteral(" And 税控盘收费项目设置.管理处 ='") + k.SiteCode + QStringLiteral("'") +
           QStringLiteral(" And 票据类型代号 IN (") + k.InvoiceTypeList + QStringLiteral(")") +
           QStringLiteral(" group by 税控盘收费项目设置.税率");
}

// The pre-invoiced sums share everything after their head and their month test.
QString PreInvoicedSql(const QString& head, const QString& where, const QString& voided,
                       const QString& feeCodeList, const StatementConditions& k) {
    return head + QStringLiteral(" From 票据开票数据") +
           QStringLiteral(
               " Inner Join 票据  on 票据开票数据.入库单编号  =票据.入库单编号 and "
               "票据开票数据.票据编号  =票据.票据编号") +
           QStringLiteral(
               " Inner Join 票据入库单 on 票据开票数据.入库单编号 =票据入库单.入库单编号") +
           QStringLiteral(
               " Inner Join 票据类型 on 票据入库单.票据类型编号 =票据类型.票据类型代号") +
           where + voided + QStringLiteral(" And 收费项目代号 in (") + feeCodeList +
           QStringLiteral(")") + QStringLiteral(" And 开票部门编号 ='") + k.DeptCode +
           QStringLiteral("'") + QStringLiteral(" And 票据类型代号 IN (") + k.InvoiceTypeList +
           QStringLiteral(")");
}

struct HeaderColumn {
    QString top, bottom;
    int width;
};

void WriteHeaderColumn(FlexGrid& grid, int c, const HeaderColumn& h) {
    grid.SetTextMatrix(0, c, h.top);
    grid.SetTextMatrix(1, c, h.bottom);
    grid.SetColWidth(c, h.width);
}

// The header of n items; n = 0 is the default header, with "财务交账" over "小计" alone.
void LayHeader(FlexGrid& grid, const FeeItemList& items) {
    const int n = int(items.size()) - 1;
    const int cols = n + 13;
    grid.SetRows(2);
    grid.SetCols(cols);
    grid.SetFixedRows(2);
    grid.SetRow(0);
    grid.SetMergeCells(FlexGrid::MergeRestrictColumns);
    static const HeaderColumn leading[] = {
        {QStringLiteral("序"), QStringLiteral("序"), 500},
        {QStringLiteral("开票年月"), QStringLiteral("开票年月"), 900},
        {QStringLiteral("税率"), QStringLiteral("税率"), 600},
        {QStringLiteral("增值税专用发票"), QStringLiteral("金额"), 1300},
        {QStringLiteral("增值税专用发票"), QStringLiteral("税额"), 1200},
        {QStringLiteral("增值税普通发票"), QStringLiteral("金额"), 1300},
        {QStringLiteral("增值税普通发票"), QStringLiteral("税额"), 1200},
        {QStringLiteral("收据"), QStringLiteral("金额"), 1200},
    };
    for (int c = 0; c < 8; ++c) WriteHeaderColumn(grid, c, leading[c]);
    const QString finance = QStringLiteral("财务交账");
    for (int i = 1; i <= n; ++i) WriteHeaderColumn(grid, i + 7, {finance, items[i].ItemName, 1200});
    const HeaderColumn trailing[] = {
        {finance, kSubtotal, 1200},
        {QStringLiteral("当月收预开票"), QStringLiteral("金额"), 1200},
        {QStringLiteral("当月未收预开"), QStringLiteral("金额"), 1200},
        {QStringLiteral("核对结果"), QStringLiteral("差额"), 1200},
        {QStringLiteral("备注"), QStringLiteral("备注"), 1600},
    };
    for (int j = 0; j < 5; ++j) WriteHeaderColumn(grid, FinanceColumn(n) + j, trailing[j]);
    for (int c = 0; c < cols; ++c) {
        grid.SetFixedAlignment(c, FlexGrid::AlignCenterCenter);
        grid.SetMergeCol(c, false);
    }
    grid.SetMergeRow(0, true);
    for (int c : {0, 1, 2, DifferenceColumn(n), n + 12}) grid.SetMergeCol(c, true);
}

}  // namespace

void ReconciliationStatement::InitGridHeader(FlexGrid& grid1) const {
    LayHeader(grid1, FeeItemList(1));
}

void ReconciliationStatement::BuildGridHeader(FlexGrid& grid1) const {
    LayHeader(grid1, feeItems_);
}

QString ReconciliationStatement::LoadInvoiceTypes() {
    Recordset rs = session_.Open(QStringLiteral("Select * From 票据类型 ") +
                                 QStringLiteral(" where 定额=0 order by 票据类型代号 "));
    QString all;
    special_.clear();
    ordinary_.clear();
    receipt_.clear();
    const int fCode = rs.IndexOf(QStringLiteral("票据类型代号"));
    const int fName = rs.IndexOf(QStringLiteral("票据类型"));
    auto append = [](QString& list, const QString& code) {
        if (!list.isEmpty()) list += QLatin1Char(',');
        list += QLatin1Char('\'') + code + QLatin1Char('\'');
    };
    for (; !rs.AtEnd(); rs.MoveNext()) {
        const QString code = TextOf(rs.Value(fCode));
        const QString name = TextOrEmpty(rs.Value(fName));
        append(all, code);
        if (name.contains(QStringLiteral("增值税专用发票"))) append(special_, code);
        if (name.contains(QStringLiteral("增值税普通发票"))) append(ordinary_, code);
        if (name == QStringLiteral("收据")) append(receipt_, code);
    }
    return all;
}

void ReconciliationStatement::SetTypeCodes(QString special, QString ordinary, QString receipt) {
    special_ = std::move(special);
    ordinary_ = std::move(ordinary);
    receipt_ = std::move(receipt);
}

QString ReconciliationStatement::TitleCaption(const QString& entry, const QString& year) const {
    return year + QStringLiteral("年度") + QStringLiteral("【") + Conditions::DepartmentOf(entry) +
           QStringLiteral("】票据核对表");
}

QString ReconciliationStatement::FeeItemSql(const StatementConditions& k) {
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
    sql += QStringLiteral(" where CONVERT(char(6),开票日期,112) between '") + k.Year + k.FromMonth +
           QStringLiteral("' and '") + k.Year + k.ToMonth + QStringLiteral("'");
    sql += QStringLiteral(" and 作废日期 is null ");
    sql += QStringLiteral(" And 开票部门编号 ='") + k.DeptCode + QStringLiteral("'");
    sql += QStringLiteral(" And 票据类型代号 In (") + k.InvoiceTypeList + QStringLiteral(")");
    sql += QStringLiteral(" And 税控盘收费项目设置.管理处 ='") + k.SiteCode + QStringLiteral("'");
    sql += QStringLiteral(" group by  税控盘收费项目设置.税率,收费项目代号,xm,收费类别,显示名称");
    sql += QStringLiteral(" order by 收费项目代号");
    return sql;
}

Trapped ReconciliationStatement::ExtractFeeItems(const StatementConditions& conditions,
                                                 FlexGrid& grid1) {
    feeItems_ = FeeItemList(1);
    try {
        session_.SetCommandTimeout(0);
        Recordset rs = session_.Open(FeeItemSql(conditions));
        feeItems_ = ReadFeeItems(rs);
        BuildGridHeader(grid1);
    } catch (const RuntimeError& e) {
        MessageForms::ShowTrap(e.number(), e.description());
        return e;
    }
    return {};
}

QString ReconciliationStatement::FeeCodeList() const {
    QString list;
    for (std::size_t i = 1; i < feeItems_.size(); ++i) {
        if (i > 1) list += QLatin1Char(',');
        list += feeItems_[i].ItemCode;
    }
    return list;
}

QString ReconciliationStatement::MonthSql(const StatementConditions& k,
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
                   voided, special_, codes, k, month) +
        QStringLiteral(") A1 On A.税率=A1.税率");
    sql +=
        QStringLiteral(" LEFT Join (") +
        InvoiceSql(QStringLiteral("Select SUM(票据开票数据.金额) as 普通发票,  SUM(Case When "
                                  "票据开票数据.税额 Is Null Then 0 Else 票据开票数据.税额 End) as "
                                  "普发税额, 税控盘收费项目设置.税率"),
                   voided, ordinary_, codes, k, month) +
        QStringLiteral(") A2 On A.税率=A2.税率");
    sql += QStringLiteral(" LEFT Join (") +
           InvoiceSql(
               QStringLiteral("Select SUM(票据开票数据.金额) as 收据, 税控盘收费项目设置.税率 "),
               voided + QLatin1Char(' '), receipt_, codes, k, month) +
           QStringLiteral(") A3 On (A.税率=A3.税率 Or A3.税率 Is Null)");
    for (int i = 1; i <= n; ++i) {
        const QString b = QStringLiteral("B") + QString::number(i);
        sql += QStringLiteral(" LEFT Join (") + ItemSql(feeItems_[i], k, month) +
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

void ReconciliationStatement::FillMonthlyRows(const StatementConditions& k, FlexGrid& grid) {
    const int n = int(feeItems_.size()) - 1;
    const int finance = FinanceColumn(n);
    for (const QString& month : MonthKeys(k)) {
        std::vector<double> subtotals(grid.Cols(), 0.0);
        session_.SetCommandTimeout(0);
        Recordset rs = session_.Open(MonthSql(k, month));
        const int fRate = rs.IndexOf(QStringLiteral("S税率"));
        const int fSpecial = rs.IndexOf(QStringLiteral("专用发票"));
        const int fSpecialTax = rs.IndexOf(QStringLiteral("专发税额"));
        const int fOrdinary = rs.IndexOf(QStringLiteral("普通发票"));
        const int fOrdinaryTax = rs.IndexOf(QStringLiteral("普发税额"));
        const int fReceipt = rs.IndexOf(QStringLiteral("S收据"));
        for (; !rs.AtEnd(); rs.MoveNext()) {
            // 100 stands for a Null rate; with it goes the only receipt sum.
            const double rate = NumberOf(rs.Value(fRate));
            if (rate == 100) continue;
            const int r = AddRow(grid);
            for (int c = 0; c <= 2; ++c) grid.SetColAlignment(c, FlexGrid::AlignCenterCenter);
            grid.SetTextMatrix(r, 0, QString::number(r - 1));
            grid.SetTextMatrix(r, 1, month);
            grid.SetTextMatrix(r, 2, rate == 0 ? QStringLiteral("0") : DoubleText(rate));
            // Net amounts: the sum less its tax.
            grid.SetTextMatrix(r, 3,
                               rs.IsNull(fSpecial) ? kZero
                                                   : Format0_00(NumberOf(rs.Value(fSpecial)) -
                                                                NumberOf(rs.Value(fSpecialTax))));
            grid.SetTextMatrix(r, 4, Amount(rs, fSpecialTax));
            grid.SetTextMatrix(r, 5,
                               rs.IsNull(fOrdinary) ? kZero
                                                    : Format0_00(NumberOf(rs.Value(fOrdinary)) -
                                                                 NumberOf(rs.Value(fOrdinaryTax))));
            grid.SetTextMatrix(r, 6, Amount(rs, fOrdinaryTax));
            grid.SetTextMatrix(r, 7, Amount(rs, fReceipt));
            // The items by position: their aliases may repeat a column name.
            for (int i = 1; i <= n; ++i) grid.SetTextMatrix(r, i + 7, Amount(rs, i + 5));
            for (int i = 1; i <= n; ++i)
                grid.SetTextMatrix(
                    r, finance,
                    Format0_00(Val(grid.TextMatrix(r, finance)) + Val(grid.TextMatrix(r, i + 7))));
            for (int c = 3; c <= finance; ++c) subtotals[c] += Val(grid.TextMatrix(r, c));
        }
        if (subtotals[3] + subtotals[4] + subtotals[5] + subtotals[6] + subtotals[7] == 0) continue;
        const int r = AddRow(grid);
        grid.SetTextMatrix(r, 0, QString::number(r - 1));
        grid.SetTextMatrix(r, 1, month);
        grid.SetTextMatrix(r, 2, kSubtotal);
        for (int c = 3; c <= finance; ++c) {
            grid.SetTextMatrix(r, c, Format0_00(subtotals[c]));
            grid.SetCellBackColorAt(r, c, kSubtotalColor);
        }
    }
}

QString ReconciliationStatement::CollectedSql(const StatementConditions& k,
                                              const QString& feeCodeList, const QString& month) {
    return PreInvoicedSql(
        QStringLiteral("Select SUM(票据开票数据.金额) 当月收预开"),
        QStringLiteral(" Where CONVERT(char(6),收款日期 ,112) ='") + month +
            QStringLiteral("' And CONVERT(char(6),开票日期,112) < CONVERT(char(6),收款日期,112)"),
        QStringLiteral(" And 作废日期 is null and 收款日期 is not null"), feeCodeList, k);
}

QString ReconciliationStatement::UncollectedSql(const StatementConditions& k,
                                                const QString& feeCodeList, const QString& month) {
    return PreInvoicedSql(
        QStringLiteral("Select SUM(票据开票数据.金额) 当月未收预开票"),
        QStringLiteral(" Where CONVERT(char(6),开票日期 ,112) ='") + month +
            QStringLiteral("' And (收款日期 Is Null Or CONVERT(char(6),收款日期,112) > "
                           "CONVERT(char(6),开票日期,112))"),
        QStringLiteral(" And 作废日期 is null"), feeCodeList, k);
}

Trapped ReconciliationStatement::FillPreInvoiced(const StatementConditions& k, FlexGrid& grid,
                                              bool collected) {
    const int n = int(feeItems_.size()) - 1;
    const int column = collected ? CollectedColumn(n) : UncollectedColumn(n);
    const QString codes = FeeCodeList();
    try {
        for (const QString& month : MonthKeys(k)) {
            session_.SetCommandTimeout(0);
            Recordset rs = session_.Open(collected ? CollectedSql(k, codes, month)
                                                   : UncollectedSql(k, codes, month));
            // One sum for all rates: it stands on the month's 小计 row, if any.
            for (; !rs.AtEnd(); rs.MoveNext())
                for (int r = 2; r < grid.Rows(); ++r)
                    if (grid.TextMatrix(r, 1) == month && grid.TextMatrix(r, 2) == kSubtotal) {
                        grid.SetTextMatrix(r, column, Amount(rs, 0));
                        grid.SetCellBackColorAt(r, column, kSubtotalColor);
                    }
        }
    } catch (const RuntimeError& e) {
        MessageForms::ShowTrap(e.number(), e.description());
        return e;
    }
    return {};
}

Trapped ReconciliationStatement::FillCollectedPreInvoiced(const StatementConditions& k,
                                                          FlexGrid& grid1) {
    return FillPreInvoiced(k, grid1, true);
}

Trapped ReconciliationStatement::FillUncollectedPreInvoiced(const StatementConditions& k,
                                                            FlexGrid& grid1) {
    return FillPreInvoiced(k, grid1, false);
}

Trapped ReconciliationStatement::RunReconciliation(const StatementConditions& k, FlexGrid& grid) {
    const int n = int(feeItems_.size()) - 1;
    grid.SetRows(2);
    FillMonthlyRows(k, grid);
    Trapped trapped = FillCollectedPreInvoiced(k, grid);
    Trapped later = FillUncollectedPreInvoiced(k, grid);
    if (!trapped) trapped = std::move(later);

    // The difference of each month, from the texts as they stand; the
    // comparison with 0 is exact.
    const int cols = grid.Cols();
    for (int r = 2; r < grid.Rows(); ++r) {
        if (grid.TextMatrix(r, 2) != kSubtotal) continue;
        auto v = [&](int c) { return Val(grid.TextMatrix(r, c)); };
        const double d = v(3) + v(4) + v(5) + v(6) + v(7) - v(FinanceColumn(n)) +
                         v(CollectedColumn(n)) - v(UncollectedColumn(n));
        grid.SetTextMatrix(r, DifferenceColumn(n), d == 0 ? kZero : Format0_00(d));
        grid.SetCellBackColorAt(r, DifferenceColumn(n), kSubtotalColor);
    }

    std::vector<double> totals(cols, 0.0);
    for (int r = 2; r < grid.Rows(); ++r)
        if (grid.TextMatrix(r, 2) == kSubtotal)
            for (int c = 3; c <= cols - 3; ++c) totals[c] += Val(grid.TextMatrix(r, c));
    if (totals[3] + totals[4] + totals[5] + totals[6] + totals[7] != 0) {
        const int r = AddRow(grid);
        grid.SetTextMatrix(r, 0, QString::number(r - 1));
        grid.SetTextMatrix(r, 1, kTotal);
        for (int c = 3; c <= UncollectedColumn(n); ++c) {
            grid.SetTextMatrix(r, c, Format0_00(totals[c]));
            grid.SetCellBackColorAt(r, c, kTotalColor);
        }
    }
    return trapped;
}

void ReconciliationStatement::WriteSheet(SheetModel& sheet, ExportFrame::ExportSteps& steps,
                                         const WorkbookContext& context) const {
    WriteReconciliationSheet(sheet, steps, context);
}

}  // namespace yunqi
