#include <QApplication>
#include <clocale>

#include "frame/widgets/WidgetDialogs.h"
#include "reports/invoice/widgets/InvoiceWindow.h"
#include "shell/SessionState.h"
#include "shell/Settings.h"
#include "shell/Startup.h"
#include "shell/widgets/MainWindow.h"

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    // Chinese SQL texts survive the ODBC path only under a UTF-8 character type.
    std::setlocale(LC_CTYPE, "C.UTF-8");
    WidgetDialogs dialogs;
    SetAppDialogs(&dialogs);
    std::unique_ptr<MainWindow> main;
    const int status = StartUp(ReadDbSettings(), [&] {
        DatabaseSession& session = *AppSession().SessionConnection;
        main = std::make_unique<MainWindow>(std::map<QString, MainWindow::WindowFactory>{
            {QStringLiteral("增值税开票明细表"),
             [&session] { return new frm票据开票明细表New(session); }},
        });
        main->show();
    });
    if (status != 0) return status;
    const int result = app.exec();
    // The connection goes before the application object does.
    main.reset();
    AppSession().SessionConnection.reset();
    return result;
}
