#pragma once

#include <QDate>
#include <QString>
#include <QStringList>
#include <optional>
#include <vector>

namespace yunqi {

// The options of the paged statements (invoice, preinvoice, parking).
struct RatioOption {
    QString itemCode;   // 收费项目代号, without quotes
    QString developer;  // the 开发商 percentage as typed
    QString property;   // the 物业 percentage as typed
};

struct StatementOptions {
    QString database;  // empty: the DBConfig settings
    QString dept;
    QDate from;
    QDate to;
    std::vector<RatioOption> ratios;
    bool ratioIfPresent = false;  // a ratio of an item not in the window is passed over
    QString csv;  // "-" for standard output
    QString xlsx;
    QString sqlLog;
};

// Parses the arguments after the command name. On a problem returns nothing
// and sets problem to a one-line reason.
std::optional<StatementOptions> ParseStatementOptions(const QStringList& args, QString& problem);

}  // namespace yunqi
