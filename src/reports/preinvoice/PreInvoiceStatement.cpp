#include "reports/preinvoice/PreInvoiceStatement.h"

#include "core/ErrorTrap.h"
#include "core/RuntimeError.h"
#include "core/ValueRules.h"
#include "frame/DetailHeader.h"
#include "frame/DetailPage.h"
#include "frame/FeeColumnReader.h"
#include "frame/FeeItemReader.h"
#include "frame/FeeSql.h"
#include "frame/FeeSubQuery.h"
#include "frame/Pager.h"
#include "frame/SplitRatios.h"
#include "frame/StatementTotals.h"

namespace yunqi {

using namespace ValueRules;

namespace {

const DetailHeaderPlan& Plan() {
    static const DetailHeaderPlan plan{
        DetailHeader::TicketLeading({
            {QStringLiteral("增值税发票"), QStringLiteral("专用发票"), 1200, false},
            {QStringLiteral("增值税发票"), QStringLiteral("普通发票"), 1200, false},
        }),
        DetailHeader::TicketTrailing(),
        1200,
        false,
    };
    return plan;
}

// Issued ahead of payment: not paid by the window's last day.
QString UnpaidBy(const QString& d2, const QString& lastNull) {
    return QStringLiteral(" And (convert(char(8),收款日期,112) > '") + d2 +
           QStringLiteral("' Or (收款日期 is null and 预开=1) Or 收款日期 ") + lastNull +
           QStringLiteral(")");
}

// Each item's lines summed per ticket number.
const FeeSubQuery::Form& SumForm() {
    static const QString net = QStringLiteral(
        "SUM(票据开票数据.金额-(Case When 票据开票数据.税额 Is Null Then 0 Else 票据开票数据.税额 "
        "End))");
    static const FeeSubQuery::Form form{
        QStringLiteral("Select ") + net,
        QStringLiteral(" ,SUM(票据开票数据.税额) as "),
        QStringLiteral("Select ") + net,
        QStringLiteral(" ") + net,
        QStringLiteral(" SUM(票据开票数据.税额) as "),
        QStringLiteral(", 票据开票数据.票据编号"),
    };
    return form;
}

}  // namespace

PreInvoiceStatement::PreInvoiceStatement(DatabaseSession& session)
    : TicketStatement(session, Plan()) {}

QString PreInvoiceStatement::FeeItemSql(const StatementConditions& conditions) {
    const QString d1 = FormatYmd(conditions.From), d2 = FormatYmd(conditions.To);
    QString sql =
        QStringLiteral("Select distinct 收费项目代号, setupsfxm.税率,XM , 收费类别,显示名称");
    sql += QStringLiteral(" From 票据");
    sql += QStringLiteral(
        " inner join 票据开票数据 on 票据.票据编号  = 票据开票数据.票据编号 And 票据.入库单编号 = "
        "票据开票数据.入库单编号 ");
    sql += QStringLiteral(" inner join 票据入库单 on 票据.入库单编号 = 票据入库单.入库单编号");
    sql += QStringLiteral(" inner join 票据类型 on 票据入库单.票据类型编号 =票据类型.票据类型代号");
    sql += QStringLiteral(" inner join setupsfxm on 收费项目代号=dh");
    sql += QStringLiteral(" where CONVERT(char(8),开票日期,112) between '") + d1 +
           QStringLiteral("' and '") + d2 + QStringLiteral("'");
    sql += UnpaidBy(d2, QStringLiteral("Is Null"));
    sql += QStringLiteral(" and 作废日期 is null ");
    sql += QStringLiteral(" And 开票部门编号 ='") + conditions.DeptCode + QStringLiteral("'");
    sql +=
        QStringLiteral(" And 票据类型代号 In (") + conditions.InvoiceTypeList + QStringLiteral(")");
    sql += QStringLiteral(" group by  setupsfxm.税率,收费项目代号,xm,收费类别,显示名称");
    sql += QStringLiteral(" order by 收费项目代号");
    return sql;
}

Trapped PreInvoiceStatement::ExtractFeeItems(const StatementConditions& conditions,
                                             FlexGrid& ratios, FlexGrid& statementGrid) {
    return RunTrapped(TrapForm::Trap,
                      [&] { LoadItems(FeeItemSql(conditions), ratios, statementGrid); });
}

QString PreInvoiceStatement::StatisticsSql(const StatementConditions& conditions,
                                           const FlexGrid& ratios) const {
    const QString d1 = FormatYmd(conditions.From), d2 = FormatYmd(conditions.To);
    const int count = int(feeItems_.size()) - 1;

    // Stage one: each item's lines summed per ticket number.
    std::vector<QString> sub(count + 1);
    for (int i = 1; i <= count; ++i) {
        const FeeItem& item = feeItems_[i];
        QString& s = sub[i];
        s = FeeSubQuery::Head(item, ratios, SumForm());
        s += QStringLiteral(" Where 作废日期 Is Null");
        s += QStringLiteral(" And Convert(Char(8),开票日期,112) Between '") + d1 +
             QStringLiteral("' And '") + d2 + QStringLiteral("'");
        s += UnpaidBy(d2, QStringLiteral("is null"));
        s += FeeSubQuery::Filter(item, conditions);
        s += QStringLiteral(" Group by 票据开票数据.票据编号");
    }

    // Stage two: the tickets beside their sums, joined by ticket number alone.
    QString sql = TicketsSelect(QStringLiteral(" "), ratios, sub, false, conditions.DeptCode);
    sql += QStringLiteral(" And (") + PresenceCondition(feeItems_) + QStringLiteral(")");
    sql += QStringLiteral(" Order by 票据.开票日期,票据编号");
    return sql;
}

PagedStatement::RunOutcome PreInvoiceStatement::RunStatistics(const StatementConditions& conditions,
                                                              const FlexGrid& ratios,
                                                              int pageSize) {
    bool found = false;
    const Trapped trapped =
        RunTrapped(TrapForm::Trap, [&] { found = Compute(conditions, ratios, pageSize); });
    return {found, trapped};
}

bool PreInvoiceStatement::Compute(const StatementConditions& conditions, const FlexGrid& ratios,
                                  int pageSize) {
    const QString sql = StatisticsSql(conditions, ratios);
    session_.SetCommandTimeout(0);
    Recordset rs = session_.Open(sql);

    rows_ = DetailRows(feeColumnCount_);
    const int fNo = rs.IndexOf(QStringLiteral("票据编号"));
    const int fType = rs.IndexOf(QStringLiteral("票据类型"));
    const int fIssued = rs.IndexOf(QStringLiteral("开票日期"));
    const int fVoided = rs.IndexOf(QStringLiteral("作废日期"));
    const int fPayer = rs.IndexOf(QStringLiteral("付款人"));
    const int fAddress = rs.IndexOf(QStringLiteral("地址"));
    const FeeColumnReader fees(rs, 9, feeColumnCount_);
    for (; !rs.AtEnd(); rs.MoveNext()) {
        const int r = rows_.Append();
        rows_.SetDateText(r, DateTextDash(rs.Value(fIssued)));
        rows_.SetFlags(r, !rs.IsNull(fVoided), false);
        rows_.SetTicket(r, TextOrEmpty(rs.Value(fNo)), KindOf(TextOrEmpty(rs.Value(fType)), false));
        fees.Read(rs, rows_.Fees(r));
        rows_.SetPayerText(r, PayerTextOf(rs.Value(fPayer), rs.Value(fAddress)));
        rows_.SetPayMethod(r, QStringLiteral("预开"));
        rows_.SetRowTotal(r, FeeColumnReader::Total(rows_, r));
    }
    if (rows_.UpperBound() == 0) return false;

    StatementTotals::AppendTotalRow(rows_, StatementTotals::LabelField::DateText,
                                    QStringLiteral("合  计"));
    pageCount_ = Pager::PageCountOf(rows_.UpperBound(), pageSize);
    return true;
}

void PreInvoiceStatement::WriteRow(GridRow& row, int r, const TextMeasure& measure) const {
    for (int c = 1; c <= 3; ++c) row.SetColAlignment(c, FlexGrid::AlignCenterCenter);
    row.SetText(1, rows_.DateText(r));
    row.SetText(2, rows_.SpecialNo(r));
    row.SetText(3, rows_.OrdinaryNo(r));
    DetailPage::WriteMoneyAndPayer(row, rows_, r, 3, measure);
}

}  // namespace yunqi
