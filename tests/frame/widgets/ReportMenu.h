#pragma once

// The main program's menu over every report of the list, as the report
// windows' tests open them.

#include <gtest/gtest.h>

#include <memory>

#include "frame/widgets/EventDriver.h"
#include "frame/widgets/PagedReportWindow.h"
#include "reports/Reports.h"
#include "shell/widgets/MainWindow.h"

namespace yunqi::testing {

// The main window with a menu entry for every report, shown at a working size.
inline std::unique_ptr<MainWindow> MainWindowOfAllReports(DatabaseSession& session) {
    std::map<QString, MainWindow::WindowFactory> windows;
    for (const ReportDefinition* report : AllReports())
        windows.emplace(report->menuEntry, [report, &session] {
            return NewReportWindow(*report, session);
        });
    auto main = std::make_unique<MainWindow>(std::move(windows));
    main->resize(1400, 1000);
    main->show();
    Settle();
    return main;
}

// The paged report window of a 统计报表 entry, chosen with the mouse.
inline PagedReportWindow* OpenFromMenu(MainWindow& main, const QString& entry) {
    ChooseFromMenu(main.menuBar(), QStringLiteral("统计报表"), entry);
    return qobject_cast<PagedReportWindow*>(main.OpenWindow(entry));
}

}  // namespace yunqi::testing
