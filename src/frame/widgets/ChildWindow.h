#pragma once

#include <QWidget>

namespace yunqi {

// Unloads a child window of the main window's MDI area: its frame closes
// with it, so no empty frame stays behind. A window outside an MDI area
// just closes.
void CloseChildWindow(QWidget* window);

}  // namespace yunqi
