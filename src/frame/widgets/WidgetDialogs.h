#pragma once

#include <QWidget>

#include "core/Dialogs.h"

namespace yunqi {

// The desktop's message boxes, save dialog and yield. On the offscreen and
// minimal platforms, where nobody can see or answer a box, every message is
// also written to standard error and nothing waits: a box is shown without
// blocking, a question is answered No and the save dialog is cancelled.
class WidgetDialogs : public Dialogs {
  public:
    // True on the offscreen and minimal platforms.
    static bool Headless();

    explicit WidgetDialogs(QWidget* parent = nullptr) : parent_(parent) {}
    MsgResult MsgBox(const QString& text, const QString& title, MsgIcon icon,
                     MsgButtons buttons) override;
    std::optional<QString> SaveFileName(const QString& defaultName, const QString& filter) override;
    void Yield() override;

  private:
    QWidget* parent_;
};

}  // namespace yunqi
