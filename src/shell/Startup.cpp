#include "shell/Startup.h"

#include "core/Dialogs.h"
#include "core/MessageForms.h"
#include "db/OpenDatabase.h"
#include "db/SessionState.h"

namespace yunqi {

int Main(const std::function<void()>& showMainWindow) {
    DbSettings settings;
    try {
        settings = ReadDbSettings();
    } catch (const SettingsUnreadable& e) {
        // Told as a failed connection is: without its settings the program
        // cannot go on.
        MessageForms::ShowStartup(e.description());
        return 1;
    }
    return StartUp(settings, showMainWindow);
}

int StartUp(const DbSettings& settings, const std::function<void()>& showMainWindow) {
    AppSession().SessionEdition = settings.Edition;
    if (!OpenDatabase(settings)) {
        AppDialogs().MsgBox(QStringLiteral("数据库连接失败!"), QStringLiteral("连接提示"),
                            MsgIcon::Information);
        return 1;
    }
    showMainWindow();
    return 0;
}

}  // namespace yunqi
