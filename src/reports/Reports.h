#pragma once

#include <QString>
#include <vector>

#include "frame/ReportDefinition.h"

namespace yunqi {

// Every report, in the order of the companion's commands.
const std::vector<const ReportDefinition*>& AllReports();
// Every report, in the order of the main window's 统计报表 menu.
std::vector<const ReportDefinition*> ReportsInMenuOrder();
// The report of a companion command, or null.
const ReportDefinition* FindReport(const QString& command);

}  // namespace yunqi
