#include "shell/widgets/ReportWindows.h"

#include "frame/widgets/ReportWindow.h"
#include "reports/Reports.h"

namespace yunqi {

std::map<QString, MainWindow::WindowFactory> ReportWindows(DatabaseSession& session) {
    std::map<QString, MainWindow::WindowFactory> windows;
    for (const ReportDefinition* report : AllReports())
        windows.emplace(report->menuEntry,
                        [report, &session] { return NewReportWindow(*report, session); });
    return windows;
}

}  // namespace yunqi
