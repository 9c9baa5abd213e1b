#pragma once

#include <gtest/gtest.h>

#include "frame/FlexGrid.h"
#include "frame/SplitRatios.h"
#include "frame/StatementConditions.h"
#include "support/TestDatabase.h"

namespace yunqi {

// The ticket statements over department D1 in 2024: every ticket type, items
// 01 物业费 (ordinary) and 02 停车费 (parking), methods 现金 and 微信支付.
// Tickets are added by each test.
template <typename Statement>
class TicketLedger : public ::testing::Test {
  protected:
    void SetUp() override {
        db.Types();
        db.Item("01", "物业费", "0.06", "物业收费");
        db.Item("02", "停车费", "0.05", "停车收费");
        db.Methods({"现金", "微信支付"});
        conditions.DeptCode = "D1";
        conditions.InvoiceTypeList = "'01','02','03','04'";
        conditions.From = QDate(2024, 1, 1);
        conditions.To = QDate(2024, 12, 31);
    }

    // Extraction then statistics, as Command3 and Command6 do.
    bool Run(int pageSize = 1000) {
        session = db.Session();
        statement = std::make_unique<Statement>(*session);
        statement->ExtractFeeItems(conditions, ratios, statementGrid);
        return statement->RunStatistics(conditions, ratios, pageSize);
    }

    const DetailRows& Rows() const { return statement->Rows(); }
    // The first row whose ticket number (or label) is no.
    int RowOf(const QString& no) const {
        for (int r = 1; r <= Rows().UpperBound(); ++r)
            if (Rows().TicketNo(r) == no) return r;
        return -1;
    }

    TestDatabase db;
    StatementConditions conditions;
    FlexGrid statementGrid;
    FlexGrid ratios = SplitRatios::NewGrid();
    std::unique_ptr<DatabaseSession> session;
    std::unique_ptr<Statement> statement;
};

}  // namespace yunqi
