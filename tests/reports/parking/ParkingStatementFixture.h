#pragma once

#include "reports/parking/ParkingStatement.h"
#include "support/TicketLedger.h"

namespace yunqi {

// The ticket ledger with a second parking item, 08 临时停车费(含税5%), and a
// third method, 支付宝.
class ParkingLedger : public TicketLedger<ParkingStatement> {
  protected:
    void SetUp() override {
        TicketLedger::SetUp();
        db.Exec(QStringLiteral("INSERT INTO setupsfxm VALUES "
                               "('08','临时停车费(含税5%)',0.05,'临时停车','临时停车费')"));
        db.Exec(QStringLiteral("INSERT INTO 收款方式列表 VALUES ('支付宝')"));
    }

    // A ticket of D1 issued and paid at `paid`, with one line of `item`; tax
    // "NULL" for none. An order number makes it electronic.
    void Ticket(const QString& no, const QString& note, const QString& paid, double amount,
                const QString& tax = QStringLiteral("NULL"),
                const QString& method = QStringLiteral("现金"),
                const QString& order = QString(), const QString& item = QStringLiteral("02")) {
        Paid(no, note, paid, item, amount, tax, method);
        if (!order.isNull())
            db.Exec(QStringLiteral("UPDATE 票据 SET 交易订单号 = %1 WHERE 票据编号 = %2 AND "
                                   "入库单编号 = %3")
                        .arg(SqlText(order), SqlText(no), SqlText(note)));
    }
    // Table-driven cases start each from a ledger without tickets.
    void ClearTickets() {
        db.Exec(QStringLiteral("DELETE FROM 票据"));
        db.Exec(QStringLiteral("DELETE FROM 票据开票数据"));
    }

    // Command3 on a freshly loaded window.
    void Extract() {
        session = db.Session();
        statement = std::make_unique<ParkingStatement>(*session);
        statement->InitGridHeader(grid1);
        statement->ExtractFeeItems(conditions, grid2, grid1);
    }
    // Command6: the header of the current ratios, then the statement.
    bool Statistics(int pageSize = 1000) {
        statement->BuildGridHeader(grid1, grid2);
        return statement->RunStatistics(conditions, grid2, pageSize);
    }
    void SetRatio(int row, const QString& developer, const QString& property) {
        grid2.SetTextMatrix(row, SplitRatios::kDeveloperCol, developer);
        grid2.SetTextMatrix(row, SplitRatios::kPropertyCol, property);
    }

    // The rows' ticket ranges and labels, in order.
    QStringList Ranges() const {
        QStringList out;
        for (int r = 1; r <= Rows().UpperBound(); ++r) out << Rows().TicketNo(r);
        return out;
    }
    // "method=sum" of the rows after "合计", in order.
    QStringList Breakdown() const {
        QStringList out;
        for (int r = RowOf(QStringLiteral("合计")) + 1; r <= Rows().UpperBound(); ++r)
            out << Rows().PayMethod(r) + '=' + QString::number(Rows().RowTotal(r));
        return out;
    }
};

}  // namespace yunqi
