#pragma once

#include <QWidget>

#include "core/Dialogs.h"

namespace yunqi {

// The desktop's message boxes, save dialog and yield.
class WidgetDialogs : public Dialogs {
  public:
    explicit WidgetDialogs(QWidget* parent = nullptr) : parent_(parent) {}
    MsgResult MsgBox(const QString& text, const QString& title, MsgIcon icon,
                     MsgButtons buttons) override;
    std::optional<QString> SaveFileName(const QString& defaultName, const QString& filter) override;
    void Yield() override;

  private:
    QWidget* parent_;
};

}  // namespace yunqi
