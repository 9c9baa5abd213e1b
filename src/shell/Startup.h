#pragma once

#include <functional>

#include "db/Settings.h"

namespace yunqi {

// Main of the desktop program, its steps in order: Edition into SessionEdition,
// then Svr, UID, PWD and DBname from the settings store, OpenDatabase, and the
// main window through showMainWindow (not modal; the caller runs the event
// loop). Command-line arguments play no part. Returns the process status: 0
// once the main window is shown, 1 when the connection failed, after
// "错误信息：" + the driver's description under "信息文本" and "数据库连接失败!"
// under "连接提示". A settings file that cannot be read is told as
// "错误信息：" + its name and the reason, under "信息文本", and gives 1.
int Main(const std::function<void()>& showMainWindow);

// The same steps on settings already read.
int StartUp(const DbSettings& settings, const std::function<void()>& showMainWindow);

}  // namespace yunqi
