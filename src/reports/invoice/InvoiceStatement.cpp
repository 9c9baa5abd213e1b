#include "reports/invoice/InvoiceStatement.h"

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
            {QStringLiteral("增值税发票"), QStringLiteral("电子发票"), 1200, false},
            {QStringLiteral("收据"), QStringLiteral("收据"), 2000, true},
        }),
        DetailHeader::TicketTrailing(),
        1200,
        true,
    };
    return plan;
}

// A ticket belongs to the window when issued in it, or paid in it and issued
// before the day of payment.
QString DateClause(const QString& d1, const QString& d2) {
    return QStringLiteral(" And (Convert(Char(8),开票日期,112) Between '") + d1 +
           QStringLiteral("' And '") + d2 + QStringLiteral("'") +
           QStringLiteral(" Or (Convert(Char(8),收款日期,112) Between '") + d1 +
           QStringLiteral("' And '") + d2 +
           QStringLiteral("' And CONVERT(char(8),开票日期,112)<CONVERT(char(8),收款日期,112)))");
}

// Each line of an item as it stands, with the ticket's two keys.
const FeeSubQuery::Form& LineForm() {
    static const QString net = QStringLiteral(
        "票据开票数据.金额 - (Case When 票据开票数据.税额 Is Null Then 0 Else 票据开票数据.税额 "
        "End)");
    static const FeeSubQuery::Form form{
        QStringLiteral("Select  ") + net,
        QStringLiteral(" , 票据开票数据.税额 as "),
        QStringLiteral("Select (票据开票数据.金额-(Case When 票据开票数据.税额 Is Null Then 0 Else "
                       "票据开票数据.税额 End))"),
        QStringLiteral(" (") + net + QStringLiteral(")"),
        QStringLiteral(" 票据开票数据.税额 as "),
        QStringLiteral(", 票据开票数据.票据编号 , 票据开票数据.入库单编号"),
    };
    return form;
}

}  // namespace

InvoiceStatement::InvoiceStatement(DatabaseSession& session) : TicketStatement(session, Plan()) {}

QString InvoiceStatement::FeeItemSql(const StatementConditions& conditions) {
    const QString d1 = FormatYmd(conditions.From), d2 = FormatYmd(conditions.To);
    QString sql = FeeItemSelect();
    sql += QStringLiteral(" Where  (作废日期 Is Null Or 作废日期 Is Not Null)");
    sql += DateClause(d1, d2);
    sql += QStringLiteral(" And 开票部门编号 ='") + conditions.DeptCode + QStringLiteral("'");
    sql += QStringLiteral(" group by  setupsfxm.税率,收费项目代号,xm,收费类别,显示名称");
    sql += QStringLiteral(" order by 收费项目代号");
    return sql;
}

Trapped InvoiceStatement::ExtractFeeItems(const StatementConditions& conditions, FlexGrid& ratios,
                                          FlexGrid& statementGrid) {
    LoadItems(FeeItemSql(conditions), ratios, statementGrid);
    return {};
}

QString InvoiceStatement::StatisticsSql(const StatementConditions& conditions,
                                        const FlexGrid& ratios) const {
    const QString d1 = FormatYmd(conditions.From), d2 = FormatYmd(conditions.To);
    const QString dateClause = DateClause(d1, d2);
    const int count = int(feeItems_.size()) - 1;

    // Stage one: the lines of each fee item.
    std::vector<QString> sub(count + 1);
    for (int i = 1; i <= count; ++i) {
        const FeeItem& item = feeItems_[i];
        QString& s = sub[i];
        s = FeeSubQuery::Head(item, ratios, LineForm());
        s += QStringLiteral(" Where  (作废日期 Is Null Or 作废日期 Is Not Null)");
        s += dateClause;
        s += FeeSubQuery::Filter(item, conditions);
    }

    // Stage two: the tickets with the items' lines beside them.
    QString sql = TicketsSelect(QStringLiteral(", 票据.被换票票据编号 "), ratios, sub, true,
                                conditions.DeptCode);
    sql +=
        QStringLiteral(" And 票据类型代号 In (") + conditions.InvoiceTypeList + QStringLiteral(")");
    sql += QStringLiteral(" And (") + PresenceCondition(feeItems_) + QStringLiteral(")");
    sql += dateClause;
    sql += QStringLiteral(" Order by 票据.开票日期,票据编号");
    return sql;
}

PagedStatement::RunOutcome InvoiceStatement::RunStatistics(const StatementConditions& conditions,
                                                           const FlexGrid& ratios, int pageSize) {
    const QString sql = StatisticsSql(conditions, ratios);
    session_.SetCommandTimeout(0);
    Recordset rs = session_.Open(sql);

    const int n = feeColumnCount_;
    rows_ = DetailRows(n);
    const int fNo = rs.IndexOf(QStringLiteral("票据编号"));
    const int fType = rs.IndexOf(QStringLiteral("票据类型"));
    const int fIssued = rs.IndexOf(QStringLiteral("开票日期"));
    const int fPaid = rs.IndexOf(QStringLiteral("收款日期"));
    const int fVoided = rs.IndexOf(QStringLiteral("作废日期"));
    const int fAmount = rs.IndexOf(QStringLiteral("金额"));
    const int fMethod = rs.IndexOf(QStringLiteral("收款方式"));
    const int fPayer = rs.IndexOf(QStringLiteral("付款人"));
    const int fAddress = rs.IndexOf(QStringLiteral("地址"));
    const int fReplaced = rs.IndexOf(QStringLiteral("被换票票据编号"));
    const FeeColumnReader fees(rs, 10, n);
    const QString windowMonth = FormatYm(conditions.From);
    const QString windowEnd = FormatYmd(conditions.To);

    // Status words stand where the payment method would, with no money.
    auto status = [&](int r, const QString& positive, const QString& negative) {
        rows_.SetPayerText(r, PayerTextOf(rs.Value(fPayer), rs.Value(fAddress)));
        rows_.SetPayMethod(r, NumberOf(rs.Value(fAmount)) >= 0 ? positive : negative);
    };

    while (!rs.AtEnd()) {
        const int r = rows_.Append();
        const QVariant issued = rs.Value(fIssued);
        rows_.SetDateText(r, DateTextDash(issued));
        const bool voided = !rs.IsNull(fVoided);
        const bool replaced = !rs.IsNull(fReplaced);
        rows_.SetFlags(r, voided, replaced);
        rows_.SetTicket(r, TextOrEmpty(rs.Value(fNo)), KindOf(TextOrEmpty(rs.Value(fType)), true));
        if (voided) {
            status(r, QStringLiteral("作废"), QStringLiteral("负票"));
        } else if (replaced) {
            status(r, QStringLiteral("换票"), QStringLiteral("换负"));
        } else if (!(DateText6(issued) < windowMonth) &&
                   (rs.IsNull(fPaid) || DateText8(rs.Value(fPaid)) > windowEnd)) {
            // Issued ahead of payment.
            rows_.SetPayerText(r, PayerTextOf(rs.Value(fPayer), rs.Value(fAddress)));
            rows_.SetPayMethod(r, QStringLiteral("预开"));
        } else {
            fees.Read(rs, rows_.Fees(r));
            rows_.SetPayerText(r, PayerTextOf(rs.Value(fPayer), rs.Value(fAddress)));
            rows_.SetPayMethod(r, TextOrEmpty(rs.Value(fMethod)));
            rows_.SetRowTotal(r, FeeColumnReader::Total(rows_, r));
        }
        rs.MoveNext();
    }

    const int tickets = rows_.UpperBound();
    if (tickets == 0) return false;

    StatementTotals::AppendTotalRow(rows_, StatementTotals::LabelField::DateText,
                                    QStringLiteral("合  计"));
    StatementTotals::AppendBreakdown(rows_, session_, {StatementTotals::LabelField::DateText});

    pageCount_ = Pager::PageCountOf(rows_.UpperBound(), pageSize);
    return true;
}

void InvoiceStatement::WriteRow(GridRow& row, int r, const TextMeasure& measure) const {
    row.SetColAlignment(0, FlexGrid::AlignCenterCenter);
    const QString& date = rows_.DateText(r);
    if (date.isEmpty() || date == QStringLiteral("其中")) {
        const int n = feeColumnCount_;
        row.SetColAlignment(1, FlexGrid::AlignCenterCenter);
        row.SetText(1, date);
        row.SetText(6 + n, Format0_00(rows_.RowTotal(r)));
        row.SetText(7 + n, rows_.PayMethod(r));
        return;
    }
    for (int c = 1; c <= 5; ++c) row.SetColAlignment(c, FlexGrid::AlignCenterCenter);
    row.SetText(1, date);
    row.SetText(2, rows_.SpecialNo(r));
    row.SetText(3, rows_.OrdinaryNo(r));
    row.SetText(4, rows_.ElectronicNo(r));
    row.SetText(5, rows_.ReceiptNo(r));
    DetailPage::WriteMoneyAndPayer(row, rows_, r, 5, measure);
}

}  // namespace yunqi
