#include "shell/Startup.h"

#include "core/Dialogs.h"
#include "db/OpenDatabase.h"
#include "db/SessionState.h"

namespace yunqi {

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

}  // namespace yunqi
