#pragma once

#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <memory>

#include "db/DatabaseSession.h"

namespace yunqi {

// 收款日期 of a ticket: the issue date unless given; kUnpaid leaves it Null.
inline const QString kAsIssued = QStringLiteral("as issued");
inline const QString kUnpaid = QStringLiteral("unpaid");

// A ticket of 票据; a null text is a Null field.
struct Ticket {
    QString no;
    QString note = QStringLiteral("S1");  // the stock-in note, whose type is the ticket's
    QString issued;
    QString paid = kAsIssued;
    QString voided;
    double amount = 0;
    QString item = QStringLiteral("01");   // its one line of the whole amount; empty for none
    QString tax = QStringLiteral("NULL");  // SQL literal
    QString method = QStringLiteral("现金");
    QString payer = QStringLiteral("甲");
    QString replaced;
    QString dept = QStringLiteral("D1");
    int pre = 0;
    QString order;  // 交易订单号: an electronic ticket
    QString address;
};

// A real SQLite ledger for behaviour tests: the embedded schema in a
// temporary folder, filled with the test's own rows by the short calls below.
class TestDatabase {
  public:
    TestDatabase();
    ~TestDatabase();

    // Runs statements on a writable connection; fails the test on error.
    void Exec(const QString& sql);

    // A department in force and its site (职能部门new, 设置管理处).
    void Department(const QString& code, const QString& site, const QString& name,
                    const QString& ended = QString());
    // Ticket types, each with its stock-in note S<last digit>: 01 专用, 02 普通,
    // 03 电子, 04 收据, 09 定额 (fixed amount).
    void Types(const QString& codes = QStringLiteral("01 02 03 04 09"));
    // A fee item of setupsfxm; rate an SQL literal, the display name the item's
    // unless given.
    void Item(const QString& code, const QString& name, const QString& rate,
              const QString& category, const QString& display = QString());
    void Methods(const QStringList& methods);
    void Add(const Ticket& ticket);
    void Line(const QString& no, const QString& item, double amount,
              const QString& tax = QStringLiteral("NULL"),
              const QString& note = QStringLiteral("S1"));

    const QString& Path() const { return path_; }
    // A read-only session on the file, as the programs open it.
    std::unique_ptr<DatabaseSession> Session() const;

  private:
    QTemporaryDir dir_;
    QString path_;
    QString connection_;
};

// Quotes a text as an SQL literal; a null text as NULL.
QString SqlText(const QString& text);

// The ledger of the golden statements (tests/fixtures/golden): department D1
// at site GY01 in March 2024, an ordinary item 01 and a parking item 07, both
// set up for the site's tax device; paid, pre-invoiced, paid-later, voided,
// receipt, fixed-amount and two-line tickets. The date-window statements run
// it over March with 07 at 66.7/33.3, the reconciliation over 2024-03.
void FillGoldenLedger(TestDatabase& db);

}  // namespace yunqi
