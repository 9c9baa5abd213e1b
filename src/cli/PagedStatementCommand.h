#pragma once

#include <QDate>
#include <QStringList>
#include <functional>
#include <memory>

#include "frame/FlexGrid.h"
#include "frame/PagedStatement.h"
#include "frame/ReportTexts.h"
#include "shell/DatabaseSession.h"

// What the companion knows of the department and window, for the workbook.
struct StatementRun {
    QString entry;  // the List1 entry of the department
    QString title;  // Label1(0) after the click on the entry
    QDate from;
    QDate to;
};

// A report shown page by page, as the companion runs it.
struct PagedReport {
    const ReportTexts& texts;
    std::function<std::unique_ptr<PagedStatement>(DatabaseSession&)> makeStatement;
    // Writes the window's workbook at the path as given.
    std::function<void(const PagedStatement&, const FlexGrid& grid1, const StatementRun&,
                       const QString& path)>
        writeWorkbook;
};

// The database the companion works on: the file of --database, else the
// settings of the desktop program. Throws RuntimeError.
using SessionOpener = std::function<std::unique_ptr<DatabaseSession>(const QString& database)>;

// Runs one statement with the arguments after the command name; returns the
// exit status (0 rows, 3 no fee items or no rows, 2 bad arguments, 1 failure).
int RunPagedStatement(const PagedReport& report, const QStringList& args,
                      const SessionOpener& openSession);
