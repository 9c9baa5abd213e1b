#include <clocale>
#include <cstdio>
#include <cstdlib>

#include "core/RuntimeError.h"
#include "core/TemporaryFiles.h"
#include "db/SessionState.h"
#include "frame/widgets/ReportWindow.h"
#include "frame/widgets/WidgetDialogs.h"
#include "shell/Startup.h"
#include "shell/widgets/Application.h"
#include "shell/widgets/MainWindow.h"
#include "shell/widgets/QtTranslations.h"
#include "shell/widgets/ReportWindows.h"

using namespace yunqi;

namespace {

// Until the application object has a display, Qt's own start-up lines go and
// its fatal "no platform plugin" becomes one line and exit status 1.
QtMessageHandler qtHandler = nullptr;

void WhileOpeningTheDisplay(QtMsgType type, const QMessageLogContext& context,
                            const QString& text) {
    if (type == QtFatalMsg) {
        const QByteArray display = qgetenv("DISPLAY");
        std::fprintf(stderr, "yunqi-reports: no display could be opened (%s)\n",
                     display.isEmpty() ? "DISPLAY is not set" : ("DISPLAY=" + display).constData());
        std::_Exit(1);
    }
    if (QByteArray(context.category).startsWith("qt.qpa")) return;
    if (qtHandler) qtHandler(type, context, text);
}

}  // namespace

int main(int argc, char** argv) {
    // The program takes nothing from its command line, Qt's own options
    // (-reverse, -style...) included: Qt sees the program's name alone.
    int qtArgc = argc > 0 ? 1 : 0;
    qtHandler = qInstallMessageHandler(WhileOpeningTheDisplay);
    // Run-time errors that event handlers let through end here, not in Qt.
    Application app(qtArgc, argv);
    qInstallMessageHandler(qtHandler);
    InstallQtTranslations(app);
    // Chinese SQL texts survive the ODBC path only under a UTF-8 character type.
    std::setlocale(LC_CTYPE, "C.UTF-8");
    InstallOutputCleanup();
    WidgetDialogs dialogs;
    SetAppDialogs(&dialogs);
    SetRuntimeErrorHandler(EndOnRuntimeError);
    std::unique_ptr<MainWindow> main;
    int status = 0;
    try {
        status = Main([&] {
            main = std::make_unique<MainWindow>(ReportWindows(*AppSession().SessionConnection));
            main->ShowOnScreen();
        });
    } catch (const RuntimeError& e) {
        EndOnRuntimeError(e);
    }
    if (status != 0) return status;
    const int result = app.exec();
    ReportWindow::WaitForStoppedExports();
    // The connection goes before the application object does.
    main.reset();
    AppSession().SessionConnection.reset();
    return result;
}
