#pragma once

#include <gtest/gtest.h>

#include <QFile>

#include "cli/GridCsv.h"
#include "frame/FlexGrid.h"
#include "frame/StatementConditions.h"
#include "reports/reconciliation/ReconciliationStatement.h"
#include "support/TestDatabase.h"

namespace yunqi {

// A small ledger: department D1 at site GY01; types 01 专用, 02 普通, 03 电子,
// 04 收据, fixed-amount 09. Items 001 物业费 (0.06), 002 车位费 (rate 0),
// 003 电费 (0.13), 006 押金 (Null rate). Another site's set-up row for 001
// must not count. Tickets are added by each test.
class ReconciliationLedger : public ::testing::Test {
  protected:
    void SetUp() override {
        db.Exec("INSERT INTO 职能部门new VALUES ('D1','一部',NULL),('D2','二部',NULL)");
        db.Exec("INSERT INTO 设置管理处 VALUES ('D1','GY01','东区'),('D2','GY02','西区')");
        db.Exec(
            "INSERT INTO 票据类型 VALUES ('01','增值税专用发票',0),('02','增值税普通发票',0),"
            "('03','增值税电子发票',0),('04','收据',0),('09','定额发票',1)");
        db.Exec(
            "INSERT INTO 票据入库单 VALUES ('S1','01'),('S2','02'),('S3','03'),('S4','04'),"
            "('S9','09')");
        db.Exec(
            "INSERT INTO setupsfxm VALUES ('001','物业费',0.06,'物业收费','物业费'),"
            "('002','车位费',0,'停车收费','车位费'),('003','电费',0.13,'水电','电费'),"
            "('006','押金',NULL,'代收代付','押金')");
        db.Exec(
            "INSERT INTO 税控盘收费项目设置 VALUES ('001',0.06,'GY01'),('002',0,'GY01'),"
            "('003',0.13,'GY01'),('006',NULL,'GY01'),('001',0.05,'GY02')");
        conditions.DeptCode = "D1";
        conditions.SiteCode = "GY01";
        conditions.Year = "2024";
        conditions.FromMonth = "01";
        conditions.ToMonth = "12";
    }

    // One ticket of one line; paid may be empty (not paid).
    void Ticket(const QString& no, const QString& note, const QString& issued, const QString& paid,
                const QString& item, double amount, const QString& tax,
                const QString& voided = QString()) {
        db.AddTicket(no, note, issued, paid.isEmpty() ? QString() : paid, voided, amount, "现金",
                     "甲", QString(), "D1");
        db.AddLine(note, no, item, amount, tax);
    }

    // The window's run: types at load, extraction, then the reconciliation.
    void Run() {
        session = db.Session();
        statement = std::make_unique<ReconciliationStatement>(*session);
        conditions.InvoiceTypeList = statement->LoadInvoiceTypes();
        statement->InitGridHeader(grid1);
        statement->ExtractFeeItems(conditions, grid1);
        if (statement->FeeItems().size() > 1) statement->RunReconciliation(conditions, grid1);
    }

    // The body rows as CSV lines, 备注 and all.
    QStringList Body() const {
        QStringList lines = GridCsv(grid1, 2).split('\n');
        lines.removeLast();
        return lines;
    }

    TestDatabase db;
    StatementConditions conditions;
    FlexGrid grid1;
    std::unique_ptr<DatabaseSession> session;
    std::unique_ptr<ReconciliationStatement> statement;
};

inline QString Fixture(const QString& name) {
    QFile f(QStringLiteral(YUNQI_TEST_DIR "/fixtures/golden/reconciliation/") + name);
    if (!f.open(QIODevice::ReadOnly)) return QString();
    return QString::fromUtf8(f.readAll());
}

}  // namespace yunqi
