#pragma once

#include <functional>

#include "shell/Settings.h"

// The start of the desktop program: the settings, the one connection, then the
// main window. Returns the process status: 0 once the main window is shown,
// 1 when the connection failed (after its two messages).
int StartUp(const DbSettings& settings, const std::function<void()>& showMainWindow);
