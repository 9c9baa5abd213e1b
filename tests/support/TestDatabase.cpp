#include "support/TestDatabase.h"

#include <gtest/gtest.h>

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <atomic>
#include <map>

#include "db/EmbeddedSchema.h"

namespace yunqi {

namespace {
std::atomic<int> counter{0};

QString Number(double value) { return QString::number(value, 'g', 17); }
}  // namespace

QString SqlText(const QString& text) {
    if (text.isNull()) return QStringLiteral("NULL");
    QString t = text;
    t.replace('\'', QStringLiteral("''"));
    return '\'' + t + '\'';
}

TestDatabase::TestDatabase()
    : path_(dir_.filePath(QStringLiteral("test.sqlite"))),
      connection_(QStringLiteral("test-db-%1").arg(++counter)) {
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), connection_);
    db.setDatabaseName(path_);
    if (!db.open()) ADD_FAILURE() << db.lastError().text().toStdString();
    for (const QString& s : EmbeddedSchema::AllStatements()) Exec(s);
}

TestDatabase::~TestDatabase() {
    QSqlDatabase::database(connection_, false).close();
    QSqlDatabase::removeDatabase(connection_);
}

void TestDatabase::Exec(const QString& sql) {
    QSqlQuery q(QSqlDatabase::database(connection_, false));
    if (!q.exec(sql))
        ADD_FAILURE() << q.lastError().text().toStdString() << "\n" << sql.toStdString();
}

void TestDatabase::Department(const QString& code, const QString& site, const QString& name,
                              const QString& ended) {
    Exec(QStringLiteral("INSERT INTO 职能部门new VALUES (%1,%2,%3)")
             .arg(SqlText(code), SqlText(name), SqlText(ended)));
    Exec(QStringLiteral("INSERT INTO 设置管理处 VALUES (%1,%2,%3)")
             .arg(SqlText(code), SqlText(site), SqlText(name)));
}

void TestDatabase::Types(const QString& codes) {
    static const std::map<QString, QString> names{{"01", "增值税专用发票"},
                                                  {"02", "增值税普通发票"},
                                                  {"03", "增值税电子发票"},
                                                  {"04", "收据"},
                                                  {"09", "定额发票"}};
    for (const QString& code : codes.split(' ', Qt::SkipEmptyParts)) {
        Exec(QStringLiteral("INSERT INTO 票据类型 VALUES (%1,%2,%3)")
                 .arg(SqlText(code), SqlText(names.at(code)), code == "09" ? "1" : "0"));
        Exec(QStringLiteral("INSERT INTO 票据入库单 VALUES ('S%1',%2)")
                 .arg(code.right(1), SqlText(code)));
    }
}

void TestDatabase::Item(const QString& code, const QString& name, const QString& rate,
                        const QString& category, const QString& display) {
    Exec(QStringLiteral("INSERT INTO setupsfxm VALUES (%1,%2,%3,%4,%5)")
             .arg(SqlText(code), SqlText(name), rate, SqlText(category),
                  SqlText(display.isNull() ? name : display)));
}

void TestDatabase::Methods(const QStringList& methods) {
    for (const QString& m : methods)
        Exec(QStringLiteral("INSERT INTO 收款方式列表 VALUES (%1)").arg(SqlText(m)));
}

void TestDatabase::Add(const Ticket& t) {
    const QString paid = t.paid == kAsIssued ? t.issued : t.paid == kUnpaid ? QString() : t.paid;
    Exec(QStringLiteral(
             "INSERT INTO 票据 (票据编号, 入库单编号, 开票日期, 收款日期, 作废日期, 金额, "
             "收款方式, 付款人, 被换票票据编号, 开票部门编号, 预开, 交易订单号, 地址) "
             "VALUES (%1,%2,%3,%4,%5,%6,%7,%8,%9,")
             .arg(SqlText(t.no), SqlText(t.note), SqlText(t.issued), SqlText(paid),
                  SqlText(t.voided), Number(t.amount), SqlText(t.method), SqlText(t.payer),
                  SqlText(t.replaced)) +
         QStringLiteral("%1,%2,%3,%4)")
             .arg(SqlText(t.dept))
             .arg(t.pre)
             .arg(SqlText(t.order), SqlText(t.address)));
    if (!t.item.isEmpty()) Line(t.no, t.item, t.amount, t.tax, t.note);
}

void TestDatabase::Line(const QString& no, const QString& item, double amount, const QString& tax,
                        const QString& note) {
    Exec(QStringLiteral("INSERT INTO 票据开票数据 VALUES (%1,%2,%3,%4,%5)")
             .arg(SqlText(note), SqlText(no), SqlText(item), Number(amount), tax));
}

std::unique_ptr<DatabaseSession> TestDatabase::Session() const {
    return DatabaseSession::OpenEmbedded(path_);
}

void FillGoldenLedger(TestDatabase& db) {
    // clang-format off
    db.Department("D1", "GY01", "云栖苑");
    db.Exec("INSERT INTO 税控盘收费项目设置 VALUES ('01',0.06,'GY01'),('07',0.05,'GY01')");
    db.Types("01 02 04 09");
    db.Item("01", "物业费", "0.06", "物业收费");
    db.Item("07", "停车费(月)", "0.05", "停车收费", "停车费");
    db.Methods({"现金", "微信支付"});
    db.Add({.no = "0001", .issued = "2024-03-05 09:10:00", .amount = 106, .tax = "6",
            .payer = "甲公司"});
    db.Add({.no = "0002", .note = "S2", .issued = "2024-03-10 10:00:00", .paid = kUnpaid,
            .amount = 210, .item = "", .method = "微信支付", .payer = "乙,\"丙\"", .pre = 1});
    db.Line("0002", "07", 105, "5", "S2");
    db.Line("0002", "07", 105, "5", "S2");
    db.Add({.no = "0003", .issued = "2024-03-31 16:00:00", .paid = "2024-04-01 08:00:00",
            .amount = 53, .payer = "丁"});
    db.Add({.no = "0004", .note = "S4", .issued = "2024-03-12 11:00:00",
            .paid = "2024-04-10 11:00:00", .amount = 100, .item = "07", .tax = "5", .payer = "戊"});
    db.Add({.no = "0005", .issued = "2024-03-15 12:00:00", .voided = "2024-03-16 00:00:00",
            .amount = 50, .tax = "3", .payer = "己"});
    db.Add({.no = "0006", .issued = "2024-02-20 12:00:00", .paid = "2024-03-02 12:00:00",
            .amount = 33.33, .item = "07", .tax = "1.59", .method = "微信支付", .payer = "庚"});
    db.Add({.no = "0007", .note = "S9", .issued = "2024-03-20 12:00:00", .amount = 10,
            .payer = "辛"});
    // clang-format on
}

}  // namespace yunqi
