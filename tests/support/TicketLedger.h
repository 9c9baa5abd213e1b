#pragma once

#include <gtest/gtest.h>

#include "frame/FlexGrid.h"
#include "frame/SplitRatios.h"
#include "frame/StatementConditions.h"
#include "frame/TextMeasure.h"
#include "support/TestDatabase.h"

namespace yunqi {

// A small ledger for the ticket statements: department D1, paper types 01 (专用发票) and 02 (普通发票),
// 03 (电子发票), 04 (收据), fixed-amount type 09; items 01 物业费 (ordinary),
// 02 停车费 (parking). Tickets are added by each test.
template <typename Statement>
class TicketLedger : public ::testing::Test {
  protected:
    void SetUp() override {
        db.Exec(QStringLiteral(
            "INSERT INTO 票据类型 VALUES ('01','增值税专用发票',0),('02','增值税普通发票',0),"
            "('03','增值税电子发票',0),('04','收据',0),('09','定额发票',1)"));
        db.Exec(QStringLiteral(
            "INSERT INTO 票据入库单 VALUES ('S1','01'),('S2','02'),('S3','03'),('S4','04'),"
            "('S9','09')"));
        db.Exec(
            QStringLiteral("INSERT INTO setupsfxm VALUES ('01','物业费',0.06,'物业收费','物业费'),"
                           "('02','停车费',0.05,'停车收费','停车费')"));
        db.Exec(QStringLiteral("INSERT INTO 收款方式列表 VALUES ('现金'),('微信支付')"));
        conditions.DeptCode = QStringLiteral("D1");
        conditions.InvoiceTypeList = QStringLiteral("'01','02','03','04'");
        conditions.From = QDate(2024, 1, 1);
        conditions.To = QDate(2024, 12, 31);
    }

    // A paid ticket of one line, tax included in the amount.
    void Paid(const QString& no, const QString& note, const QString& day, const QString& item,
              double amount, const QString& tax, const QString& method = QStringLiteral("现金")) {
        db.AddTicket(no, note, day, day, QString(), amount, method, QStringLiteral("甲"), QString(),
                     QStringLiteral("D1"));
        db.AddLine(note, no, item, amount, tax);
    }

    // Extraction then statistics, as Command3 and Command6 do.
    bool Run(int pageSize = 1000) {
        session = db.Session();
        statement = std::make_unique<Statement>(*session);
        statement->ExtractFeeItems(conditions, grid2, grid1);
        return statement->RunStatistics(conditions, grid2, pageSize);
    }

    const DetailRows& Rows() const { return statement->Rows(); }
    // The row whose payer/ticket number is no, first match.
    int RowOf(const QString& no) const {
        for (int r = 1; r <= Rows().UpperBound(); ++r)
            if (Rows().TicketNo(r) == no) return r;
        return -1;
    }

    TestDatabase db;
    StatementConditions conditions;
    FlexGrid grid1;
    FlexGrid grid2 = SplitRatios::NewGrid();
    std::unique_ptr<DatabaseSession> session;
    std::unique_ptr<Statement> statement;
};

}  // namespace yunqi
