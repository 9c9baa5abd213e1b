#pragma once

#include <QString>

#include "frame/DetailRows.h"

namespace yunqi {

class DatabaseSession;

// The rows that close a ticket statement: the total row, then the breakdown
// of the totals by payment method.
namespace StatementTotals {

// Which text field of a row carries the labels of the appended rows.
enum class LabelField { DateText, TicketNo };

void SetLabel(DetailRows& rows, int r, LabelField field, const QString& label);

// Appends the total row: each money column and RowTotal summed over every row
// so far. Returns its index.
int AppendTotalRow(DetailRows& rows, LabelField field, const QString& label);

struct BreakdownRule {
    LabelField field;                // where "其中" goes, on the first row only
    bool weChatAsWeChatPay = false;  // a row's 微信 counts under 微信支付
};

// Reads 收款方式列表 and, for each method in its order, sums RowTotal of every
// row whose PayMethod equals its name exactly; the scan takes in every row
// there is, the total row too. A method whose sum is exactly 0 gets no row.
void AppendBreakdown(DetailRows& rows, DatabaseSession& session, const BreakdownRule& rule);

}  // namespace StatementTotals

}  // namespace yunqi
