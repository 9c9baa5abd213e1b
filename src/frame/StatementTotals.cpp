#include "frame/StatementTotals.h"

#include <QStringList>
#include <vector>

#include "core/ValueRules.h"
#include "db/DatabaseSession.h"

namespace yunqi {

namespace StatementTotals {

void SetLabel(DetailRows& rows, int r, LabelField field, const QString& label) {
    if (field == LabelField::DateText)
        rows.SetDateText(r, label);
    else
        rows.SetTicket(r, label, DetailRows::Kind::None);
}

int AppendTotalRow(DetailRows& rows, LabelField field, const QString& label) {
    const int n = rows.FeeColumnCount();
    const int last = rows.UpperBound();
    std::vector<double> totals(n + 2, 0.0);
    for (int r = 1; r <= last; ++r) {
        for (int c = 1; c <= n; ++c) totals[c] += rows.FeeAmount(r, c);
        totals[n + 1] += rows.RowTotal(r);
    }
    const int total = rows.Append();
    SetLabel(rows, total, field, label);
    for (int c = 1; c <= n; ++c) rows.SetFeeAmount(total, c, totals[c]);
    rows.SetRowTotal(total, totals[n + 1]);
    return total;
}

void AppendBreakdown(DetailRows& rows, DatabaseSession& session, const BreakdownRule& rule) {
    session.SetCommandTimeout(0);
    Recordset methods = session.Open(QStringLiteral("Select * From 收款方式列表"));
    const int fName = methods.IndexOf(QStringLiteral("收款方式"));
    QStringList names;
    for (; !methods.AtEnd(); methods.MoveNext())
        names << ValueRules::TextOrEmpty(methods.Value(fName));

    const QString weChat = QStringLiteral("微信"), weChatPay = QStringLiteral("微信支付");
    auto methodOf = [&](int r) -> const QString& {
        const QString& m = rows.PayMethod(r);
        return rule.weChatAsWeChatPay && m == weChat ? weChatPay : m;
    };
    const int last = rows.UpperBound();
    std::vector<double> sums(names.size(), 0.0);
    for (int i = 0; i < names.size(); ++i)
        for (int r = 1; r <= last; ++r)
            if (methodOf(r) == names[i]) sums[i] += rows.RowTotal(r);

    bool first = true;
    for (int i = 0; i < names.size(); ++i) {
        if (sums[i] == 0) continue;
        const int r = rows.Append();
        if (first) SetLabel(rows, r, rule.field, QStringLiteral("其中"));
        first = false;
        rows.SetPayMethod(r, names[i]);
        rows.SetRowTotal(r, sums[i]);
    }
}

}  // namespace StatementTotals

}  // namespace yunqi
