#pragma once

#include <QString>
#include <functional>
#include <memory>
#include <variant>

#include "frame/MonthlyStatement.h"
#include "frame/PagedStatement.h"
#include "frame/ReportTexts.h"

namespace yunqi {

class DatabaseSession;

// What a report's condition panel asks for.
enum class ConditionsKind {
    DateWindow,  // two dates, DTPicker1(0) and DTPicker1(1)
    YearMonths,  // a year and a range of months
};

// The statement a report runs: a PagedStatement for a DateWindow report, a
// MonthlyStatement for a YearMonths one.
using AnyStatement =
    std::variant<std::unique_ptr<PagedStatement>, std::unique_ptr<MonthlyStatement>>;

// Everything the desktop program and the companion need to know of one report.
// Each folder under reports/ exports one; the list in reports/Reports.h holds
// them all, so adding a report never adds an "if" elsewhere.
struct ReportDefinition {
    QString command;       // yunqi-statement's command name: "invoice"
    QString menuEntry;     // the main window's menu entry that opens it
    int menuPosition = 0;  // its place in the 统计报表 menu, 1 at the top
    QString windowName;    // the window's object name: "frm票据开票明细表New"
    ReportTexts texts;
    ConditionsKind conditions = ConditionsKind::DateWindow;
    // Command6 lays the header before it disables itself (otherwise after).
    bool headerBeforeDisable = false;
    // A new statement of the report on the session.
    std::function<AnyStatement(DatabaseSession&)> make;
};

// The report's statement, of the kind its conditions ask for (S is
// PagedStatement or MonthlyStatement); the other kind is a programming error.
template <typename S>
std::unique_ptr<S> MakeStatement(const ReportDefinition& report, DatabaseSession& session) {
    return std::get<std::unique_ptr<S>>(report.make(session));
}

}  // namespace yunqi
