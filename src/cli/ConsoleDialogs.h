#pragma once

#include "core/Dialogs.h"

namespace yunqi {

// Messages of the shared routines go to standard error; no question is ever
// asked without a terminal, so every question is answered No and every save
// dialog is cancelled.
class ConsoleDialogs : public Dialogs {
  public:
    MsgResult MsgBox(const QString& text, const QString& title, MsgIcon icon,
                     MsgButtons buttons) override;
    std::optional<QString> SaveFileName(const QString&, const QString&) override {
        return std::nullopt;
    }
    void Yield() override {}
};

}  // namespace yunqi
