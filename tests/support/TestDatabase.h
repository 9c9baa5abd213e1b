#pragma once

#include <QString>
#include <QTemporaryDir>
#include <memory>

#include "db/DatabaseSession.h"

namespace yunqi {

// A real SQLite database for behaviour tests: the embedded schema in a
// temporary folder, filled with the test's own rows.
class TestDatabase {
public:
    TestDatabase();
    ~TestDatabase();

    // Runs statements on a writable connection; fails the test on error.
    void Exec(const QString& sql);
    // Shorthand for the rows most tests need.
    void AddTicket(const QString& no, const QString& note, const QString& issued,
                   const QString& paid, const QString& voided, double amount,
                   const QString& method, const QString& payer, const QString& replaced,
                   const QString& dept, int preissued = 0);
    void AddLine(const QString& note, const QString& no, const QString& item, double amount,
                 const QString& tax);  // tax: SQL literal, "NULL" for Null

    const QString& Path() const { return path_; }
    // A read-only session on the file, as the programs open it.
    std::unique_ptr<DatabaseSession> Session() const;

private:
    QTemporaryDir dir_;
    QString path_;
    QString connection_;
};

// Quotes a text as an SQL literal; empty optional text as NULL.
QString SqlText(const QString& text);

}  // namespace yunqi
