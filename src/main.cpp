#include <QApplication>
#include <clocale>

#include "db/SessionState.h"
#include "db/Settings.h"
#include "frame/widgets/ReportWindow.h"
#include "frame/widgets/WidgetDialogs.h"
#include "reports/Reports.h"
#include "shell/Startup.h"
#include "shell/widgets/MainWindow.h"
#include "shell/widgets/QtTranslations.h"

using namespace yunqi;

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    InstallQtTranslations(app);
    // Chinese SQL texts survive the ODBC path only under a UTF-8 character type.
    std::setlocale(LC_CTYPE, "C.UTF-8");
    WidgetDialogs dialogs;
    SetAppDialogs(&dialogs);
    std::unique_ptr<MainWindow> main;
    const int status = StartUp(ReadDbSettings(), [&] {
        DatabaseSession& session = *AppSession().SessionConnection;
        std::map<QString, MainWindow::WindowFactory> windows;
        for (const ReportDefinition* report : AllReports())
            windows.emplace(report->menuEntry,
                            [report, &session] { return NewReportWindow(*report, session); });
        main = std::make_unique<MainWindow>(std::move(windows));
        main->show();
    });
    if (status != 0) return status;
    const int result = app.exec();
    // The connection goes before the application object does.
    main.reset();
    AppSession().SessionConnection.reset();
    return result;
}
