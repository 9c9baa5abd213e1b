#include "reports/Reports.h"

#include <algorithm>

// One line per report: its definition, exported by its folder. Every line
// ends in a backslash, so that a new one touches no other.
// clang-format off
#define YUNQI_REPORTS(X) \
    X(InvoiceReport) \
    X(PreInvoiceReport) \
    X(ParkingReport) \
    X(ReconciliationReport) \
    /* the list ends here */
// clang-format on

namespace yunqi {

#define YUNQI_DECLARE(name) const ReportDefinition& name();
YUNQI_REPORTS(YUNQI_DECLARE)

const std::vector<const ReportDefinition*>& AllReports() {
#define YUNQI_ENTRY(name) &name(),
    static const std::vector<const ReportDefinition*> reports{YUNQI_REPORTS(YUNQI_ENTRY)};
    return reports;
}

std::vector<const ReportDefinition*> ReportsInMenuOrder() {
    std::vector<const ReportDefinition*> reports = AllReports();
    std::ranges::sort(reports, {}, &ReportDefinition::menuPosition);
    return reports;
}

const ReportDefinition* FindReport(const QString& command) {
    for (const ReportDefinition* report : AllReports())
        if (report->command == command) return report;
    return nullptr;
}

}  // namespace yunqi
