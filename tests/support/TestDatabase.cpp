#include "support/TestDatabase.h"

#include <gtest/gtest.h>

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <atomic>

#include "db/EmbeddedSchema.h"

namespace yunqi {

namespace {
std::atomic<int> counter{0};
}

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
    {
        QSqlDatabase db = QSqlDatabase::database(connection_, false);
        db.close();
    }
    QSqlDatabase::removeDatabase(connection_);
}

void TestDatabase::Exec(const QString& sql) {
    QSqlQuery q(QSqlDatabase::database(connection_, false));
    if (!q.exec(sql))
        ADD_FAILURE() << q.lastError().text().toStdString() << "\n" << sql.toStdString();
}

void TestDatabase::AddTicket(const QString& no, const QString& note, const QString& issued,
                             const QString& paid, const QString& voided, double amount,
                             const QString& method, const QString& payer,
                             const QString& replaced, const QString& dept, int preissued) {
    Exec(QStringLiteral("INSERT INTO 票据 (票据编号, 入库单编号, 开票日期, 收款日期, 作废日期, 金额, "
                        "收款方式, 付款人, 被换票票据编号, 开票部门编号, 预开) VALUES "
                        "(%1,%2,%3,%4,%5,%6,%7,%8,%9,%10,%11)")
             .arg(SqlText(no), SqlText(note), SqlText(issued), SqlText(paid), SqlText(voided),
                  QString::number(amount, 'g', 17), SqlText(method), SqlText(payer),
                  SqlText(replaced))
             .arg(SqlText(dept))
             .arg(preissued));
}

void TestDatabase::AddLine(const QString& note, const QString& no, const QString& item,
                           double amount, const QString& tax) {
    Exec(QStringLiteral("INSERT INTO 票据开票数据 VALUES (%1,%2,%3,%4,%5)")
             .arg(SqlText(note), SqlText(no), SqlText(item), QString::number(amount, 'g', 17),
                  tax));
}

std::unique_ptr<DatabaseSession> TestDatabase::Session() const {
    return DatabaseSession::OpenEmbedded(path_);
}

}  // namespace yunqi
