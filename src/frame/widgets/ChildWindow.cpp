#include "frame/widgets/ChildWindow.h"

#include <QMdiSubWindow>

namespace yunqi {

void CloseChildWindow(QWidget* window) {
    if (auto* frame = qobject_cast<QMdiSubWindow*>(window->parentWidget()))
        frame->close();
    else
        window->close();
}

}  // namespace yunqi
