#pragma once

#include <gtest/gtest.h>

#include "frame/FlexGrid.h"
#include "frame/SplitRatios.h"
#include "frame/StatementConditions.h"
#include "reports/parking/ParkingStatement.h"
#include "support/TestDatabase.h"

namespace yunqi {

// A small ledger: department D1, stock-in notes N1 to N3; items 01 物业费
// (not parking), 07 地下停车费 and 08 临时停车费(含税5%) (parking). Tickets
// are added by each test.
class ParkingLedger : public ::testing::Test {
  protected:
    void SetUp() override {
        db.Exec(QStringLiteral("INSERT INTO 票据类型 VALUES ('02','增值税普通发票',0)"));
        db.Exec(QStringLiteral(
            "INSERT INTO 票据入库单 VALUES ('N1','02'),('N2','02'),('N3','02')"));
        db.Exec(QStringLiteral(
            "INSERT INTO setupsfxm VALUES ('01','物业费',0.06,'物业收费','物业费'),"
            "('07','地下停车费',0.05,'停车收费','地下停车费'),"
            "('08','临时停车费(含税5%)',0.05,'临时停车','临时停车费')"));
        db.Exec(QStringLiteral("INSERT INTO 收款方式列表 VALUES ('现金'),('微信支付'),('支付宝')"));
        conditions.DeptCode = QStringLiteral("D1");
        conditions.From = QDate(2024, 1, 1);
        conditions.To = QDate(2024, 12, 31);
    }

    // A ticket of D1 issued and paid at `paid`, with one line of `item`; tax
    // "NULL" for none. An order number makes it electronic.
    void Ticket(const QString& no, const QString& note, const QString& paid, double amount,
                const QString& tax = QStringLiteral("NULL"),
                const QString& method = QStringLiteral("现金"),
                const QString& order = QString(), const QString& item = QStringLiteral("07")) {
        db.AddTicket(no, note, paid, paid, QString(), amount, method, QStringLiteral("甲"),
                     QString(), conditions.DeptCode);
        db.AddLine(note, no, item, amount, tax);
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

    // Command3, then Command6: header, statistics.
    bool Run(int pageSize = 1000) {
        Extract();
        return Statistics(pageSize);
    }
    void Extract() {
        session = db.Session();
        statement = std::make_unique<ParkingStatement>(*session);
        statement->InitGridHeader(grid1);
        statement->ExtractFeeItems(conditions, grid2, grid1);
    }
    bool Statistics(int pageSize = 1000) {
        statement->BuildGridHeader(grid1, grid2);
        return statement->RunStatistics(conditions, grid2, pageSize);
    }
    void SetRatio(int row, const QString& developer, const QString& property) {
        grid2.SetTextMatrix(row, SplitRatios::kDeveloperCol, developer);
        grid2.SetTextMatrix(row, SplitRatios::kPropertyCol, property);
    }

    const DetailRows& Rows() const { return statement->Rows(); }
    // The rows' ticket ranges and labels, in order.
    QStringList Ranges() const {
        QStringList out;
        for (int r = 1; r <= Rows().UpperBound(); ++r) out << Rows().TicketNo(r);
        return out;
    }
    // "method=sum" of the breakdown rows, in order.
    QStringList Breakdown() const {
        QStringList out;
        int r = 1;
        while (r <= Rows().UpperBound() && Rows().TicketNo(r) != QStringLiteral("合计")) ++r;
        for (++r; r <= Rows().UpperBound(); ++r)
            out << Rows().PayMethod(r) + '=' + QString::number(Rows().RowTotal(r));
        return out;
    }

    TestDatabase db;
    StatementConditions conditions;
    FlexGrid grid1;
    FlexGrid grid2 = SplitRatios::NewGrid();
    std::unique_ptr<DatabaseSession> session;
    std::unique_ptr<ParkingStatement> statement;
};

}  // namespace yunqi
