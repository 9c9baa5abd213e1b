// Start-up to a shown main window on a demo ledger: settings read, the
// connection opened, the main window shown and painted once.
//   startup_bench LEDGER
#include <QApplication>
#include <QElapsedTimer>
#include <QTextStream>
#include <clocale>

#include "db/SessionState.h"
#include "frame/widgets/WidgetDialogs.h"
#include "shell/Startup.h"
#include "shell/widgets/MainWindow.h"

using namespace yunqi;

int main(int argc, char** argv) {
    QElapsedTimer clock;
    clock.start();
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    std::setlocale(LC_CTYPE, "C.UTF-8");
    WidgetDialogs dialogs;
    SetAppDialogs(&dialogs);
    DbSettings settings;
    settings.Edition = "2000";
    settings.Driver = "SQLite";
    settings.DBname = argc > 1 ? argv[1] : "build/demo/demo.sqlite";
    std::unique_ptr<MainWindow> main;
    const int status = StartUp(settings, [&] {
        main = std::make_unique<MainWindow>(std::map<QString, MainWindow::WindowFactory>{});
        main->show();
    });
    QApplication::processEvents();
    QTextStream(stdout) << "start-up to a shown main window: " << clock.elapsed() << " ms (status "
                        << status << ")\n";
    main.reset();
    AppSession().SessionConnection.reset();
    return status;
}
