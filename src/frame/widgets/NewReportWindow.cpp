#include "core/RuntimeError.h"
#include "frame/widgets/MonthlyReportWindow.h"
#include "frame/widgets/PagedReportWindow.h"
#include "frame/widgets/ReportWindow.h"

namespace yunqi {

QWidget* NewReportWindow(const ReportDefinition& report, DatabaseSession& session) {
    // The load runs the first queries; one without an error trap that fails
    // goes to the run-time error handler, and no window opens.
    try {
        switch (report.conditions) {
            case ConditionsKind::DateWindow:
                return new PagedReportWindow(report, session);
            case ConditionsKind::YearMonths:
                return new MonthlyReportWindow(report, session);
        }
    } catch (const RuntimeError& e) {
        ReportRuntimeError(e);
    }
    return nullptr;
}

}  // namespace yunqi
