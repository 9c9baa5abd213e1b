#include "frame/widgets/InputBlock.h"

#include <QApplication>
#include <QEvent>

namespace yunqi {

InputBlock::InputBlock(QWidget* window) : window_(window->window()) {
    qApp->installEventFilter(this);
}

InputBlock::~InputBlock() { qApp->removeEventFilter(this); }

void InputBlock::Drain() {
    QApplication::processEvents();
    QApplication::sendPostedEvents();
    QApplication::processEvents();
}

bool InputBlock::IsInput(const QEvent* event) {
    switch (event->type()) {
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonRelease:
        case QEvent::MouseButtonDblClick:
        case QEvent::Wheel:
        case QEvent::KeyPress:
        case QEvent::KeyRelease:
        case QEvent::ShortcutOverride:
        case QEvent::ContextMenu:
        case QEvent::TouchBegin:
        case QEvent::TouchUpdate:
        case QEvent::TouchEnd:
        case QEvent::TabletPress:
        case QEvent::TabletRelease:
        // A close from the title bar would take the window from under the run.
        case QEvent::Close:
            return true;
        default:
            return false;
    }
}

bool InputBlock::eventFilter(QObject* watched, QEvent* event) {
    if (!window_ || !IsInput(event) || !watched->isWidgetType()) return false;
    return static_cast<QWidget*>(watched)->window() == window_;
}

}  // namespace yunqi
