#pragma once

#include <QDate>
#include <QString>
#include <QStringList>
#include <optional>
#include <vector>

#include "cli/CommandLine.h"
#include "frame/ReportDefinition.h"

namespace yunqi {

// The options of the statement commands. A report's ConditionsKind says which
// shape of conditions its command takes:
//   DateWindow (invoice, preinvoice, parking): --from, --to, --ratio...
//   YearMonths (reconciliation):               --year, --months
// Both take --database, --dept, --csv, --xlsx, --sql-log, --timeout and --quiet.
struct RatioOption {
    QString itemCode;   // 收费项目代号, without quotes
    QString developer;  // the 开发商 percentage as typed
    QString property;   // the 物业 percentage as typed; always a number
};

struct StatementOptions {
    QString database;  // empty: the DBConfig settings
    QString dept;
    // DateWindow
    QDate from;
    QDate to;
    std::vector<RatioOption> ratios;
    bool ratioIfPresent = false;  // a ratio of an item not in the window is passed over
    // YearMonths: "--year 2024 --months 01-06" gives "2024", "01", "06".
    QString year;
    QString fromMonth;
    QString toMonth;
    QString csv;  // "-" for standard output
    QString xlsx;
    QString sqlLog;
    int timeout = 0;     // seconds; 0: no limit
    bool quiet = false;  // no progress line on a terminal
};

// The option table of the commands of a shape.
const CommandSpec& StatementSpec(ConditionsKind kind);

// Parses the arguments after the command name for a command of the given
// shape. On a problem returns nothing and sets problem to a one-line reason
// that names the option (see ParseArgs), besides: an option of the other
// shape, a --ratio twice for one item, a value of the wrong shape (a date
// that is no YYYY-MM-DD day, a year that is no YYYY, months that are not
// MM-MM with months 01 to 12, a --ratio that is not ITEMCODE=DEV/PROP or
// whose 物业 share is no number). Checks that need the ledger (the
// department, the order of dates or months, the sum of a ratio) are the
// command's, with the window's messages.
std::optional<StatementOptions> ParseStatementOptions(const QStringList& args, ConditionsKind kind,
                                                      QString& problem);
// The date-window shape.
std::optional<StatementOptions> ParseStatementOptions(const QStringList& args, QString& problem);

// The check of one --ratio value, shared with the batch that passes it on.
QString RatioProblem(const QString& name, const QString& value);
// The --ratio values read, at most one for an item.
std::optional<std::vector<RatioOption>> ReadRatios(const QStringList& values, QString& problem);

}  // namespace yunqi
