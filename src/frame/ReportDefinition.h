#pragma once

#include <QString>
#include <functional>
#include <memory>

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

// Everything the desktop program and the companion need to know of one report.
// Each folder under reports/ exports one; the list in reports/Reports.h holds
// them all, so adding a report never adds an "if" elsewhere.
struct ReportDefinition {
    QString command;     // yunqi-statement's command name: "invoice"
    QString menuEntry;   // the main window's menu entry that opens it
    QString windowName;  // the window's object name: "frm票据开票明细表New"
    ReportTexts texts;
    ConditionsKind conditions = ConditionsKind::DateWindow;
    // Command6 lays the header before it disables itself (otherwise after).
    bool headerBeforeDisable = false;
    // The statement of a paged report (DateWindow reports).
    std::function<std::unique_ptr<PagedStatement>(DatabaseSession&)> makePaged;
    // The statement of a report without pages (YearMonths reports).
    std::function<std::unique_ptr<MonthlyStatement>(DatabaseSession&)> makeMonthly;
};

}  // namespace yunqi
