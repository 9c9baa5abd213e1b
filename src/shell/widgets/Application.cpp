#include "shell/widgets/Application.h"

#include <cstdio>
#include <cstdlib>
#include <exception>

#include "core/Dialogs.h"
#include "core/OutputFile.h"

namespace yunqi {

Application::Application(int& argc, char** argv) : QApplication(argc, argv) {}

bool Application::notify(QObject* receiver, QEvent* event) {
    try {
        return QApplication::notify(receiver, event);
    } catch (const RuntimeError& e) {
        ReportRuntimeError(e);
    } catch (const std::exception& e) {
        ReportRuntimeError(
            RuntimeError(long(ErrorCode::ProviderError), QString::fromLocal8Bit(e.what())));
    } catch (...) {
        ReportRuntimeError(RuntimeError(ErrorCode::ProviderError));
    }
    // Where the handler lets the program go on (tests record instead), the
    // event counts as handled.
    return true;
}

QString RuntimeErrorText(const RuntimeError& error) {
    return QStringLiteral("Run-time error '") + QString::number(error.number()) +
           QStringLiteral("':\n\n") + error.description();
}

void EndOnRuntimeError(const RuntimeError& error) {
    AppDialogs().MsgBox(RuntimeErrorText(error), QStringLiteral("云栖账房报表"), MsgIcon::Critical);
    RemoveTemporaryOutputs();
    std::fflush(stdout);
    std::fflush(stderr);
    std::_Exit(1);
}

}  // namespace yunqi
