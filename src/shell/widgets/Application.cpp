#include "shell/widgets/Application.h"

#include <QIcon>
#include <QLocale>
#include <cstdio>
#include <cstdlib>
#include <exception>

#include "core/Dialogs.h"
#include "core/TemporaryFiles.h"

// The resources live in a static library: brought in by name, which can't
// be done inside a namespace.
static void InitResources() { Q_INIT_RESOURCE(resources); }

namespace yunqi {

namespace {

// Qt's own texts are Chinese whatever the locale: its dialogs through the
// translation (QtTranslations), dates and calendars through the locale,
// which the file dialog reads from the environment before any window exists.
int& InChinese(int& argc) {
    qputenv("LC_TIME", "zh_CN.UTF-8");
    QLocale::setDefault(QLocale(QLocale::Chinese, QLocale::China));
    return argc;
}

}  // namespace

Application::Application(int& argc, char** argv) : QApplication(InChinese(argc), argv) {
    // The operators read the platform's descriptions in Chinese.
    SetErrorLanguage(ErrorLanguage::Chinese);
    InitResources();
    setWindowIcon(QIcon(QStringLiteral(":/yunqi-reports.png")));
}

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
    return QStringLiteral("实时错误 '") + QString::number(error.number()) +
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
