#include "frame/StatementTotals.h"

#include <gtest/gtest.h>

#include "support/TestDatabase.h"

using namespace yunqi;
using StatementTotals::LabelField;

namespace {

// Rows with one money column: (PayMethod, amount).
DetailRows RowsOf(const std::vector<std::pair<QString, double>>& tickets) {
    DetailRows rows(1);
    for (const auto& [method, amount] : tickets) {
        const int r = rows.Append();
        rows.SetPayMethod(r, method);
        rows.SetFeeAmount(r, 1, amount);
        rows.SetRowTotal(r, amount);
    }
    return rows;
}

// (label, PayMethod, RowTotal) of the rows after the tickets.
using Appended = std::vector<std::tuple<QString, QString, double>>;
Appended AfterTickets(const DetailRows& rows, int tickets, LabelField field) {
    Appended out;
    for (int r = tickets + 1; r <= rows.UpperBound(); ++r)
        out.emplace_back(field == LabelField::DateText ? rows.DateText(r) : rows.TicketNo(r),
                         rows.PayMethod(r), rows.RowTotal(r));
    return out;
}

TEST(StatementTotalsTest, BreakdownScansEveryRowTheTotalRowIncluded) {
    TestDatabase db;
    db.Exec(
        "INSERT INTO 收款方式列表 VALUES ('现金'),(''),('微信支付'),('支票'),('微信'),('转账')");
    auto session = db.Session();
    struct Case {
        LabelField field;
        bool weChatAsWeChatPay;
        Appended expected;
    } cases[] = {
        // The total row's empty method is summed by the empty name; 支票 cancels to
        // exactly 0 and gets no row; 微信 counts as itself; 转账's refund shows
        // with its negative sum.
        {LabelField::DateText,
         false,
         {{"合  计", "", 16},
          {"其中", "现金", 10},
          {"", "", 16},
          {"", "微信支付", 3},
          {"", "微信", 2},
          {"", "转账", -4}}},
        // 微信 read as 微信支付: the 微信 entry of the list then collects nothing.
        {LabelField::TicketNo,
         true,
         {{"合  计", "", 16},
          {"其中", "现金", 10},
          {"", "", 16},
          {"", "微信支付", 5},
          {"", "转账", -4}}},
    };
    for (const Case& c : cases) {
        DetailRows rows = RowsOf({{"现金", 10},
                                  {"微信支付", 3},
                                  {"微信", 2},
                                  {"支票", 5},
                                  {"支票", -5},
                                  {"其它", 5},
                                  {"转账", -4}});
        const int total = StatementTotals::AppendTotalRow(rows, c.field, QStringLiteral("合  计"));
        EXPECT_EQ(rows.FeeAmount(total, 1), 16);
        StatementTotals::AppendBreakdown(rows, *session, {c.field, c.weChatAsWeChatPay});
        EXPECT_EQ(AfterTickets(rows, 7, c.field), c.expected) << c.weChatAsWeChatPay;
    }
}

}  // namespace
