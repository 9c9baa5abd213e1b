#include "shell/Startup.h"

#include "frame/Dialogs.h"
#include "shell/OpenDatabase.h"
#include "shell/SessionState.h"

int Main(const std::function<void()>& showMainWindow) {
    return StartUp(ReadDbSettings(), showMainWindow);
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
