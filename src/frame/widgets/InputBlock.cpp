#include "frame/widgets/InputBlock.h"

#include <QApplication>
#include <QEvent>
#include <QKeyEvent>

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

void InputBlock::AllowStop(std::function<void()> stop, QWidget* button) {
    stop_ = std::move(stop);
    stopButton_ = button;
}

bool InputBlock::eventFilter(QObject* watched, QEvent* event) {
    if (!window_ || !IsInput(event) || !watched->isWidgetType()) return false;
    auto* widget = static_cast<QWidget*>(watched);
    if (widget->window() != window_) return false;
    // A close event comes accepted: swallowed as it is, it would still close.
    if (event->type() == QEvent::Close) event->ignore();
    if (!stop_) return true;
    if (stopButton_ && (widget == stopButton_ || stopButton_->isAncestorOf(widget)) &&
        event->type() != QEvent::Close)
        return false;
    const bool escape = event->type() == QEvent::KeyPress &&
                        static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape;
    if (event->type() == QEvent::Close) {
        closeWanted_ = widget;
        stop_();
    } else if (escape) {
        stop_();
    }
    return true;
}

}  // namespace yunqi
