#pragma once

#include <QString>
#include <map>

#include "shell/widgets/MainWindow.h"

namespace yunqi {

class DatabaseSession;

// The window of every report by its menu entry, each made on the session.
std::map<QString, MainWindow::WindowFactory> ReportWindows(DatabaseSession& session);

}  // namespace yunqi
