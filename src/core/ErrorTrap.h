#pragma once

#include <utility>

#include "core/RuntimeError.h"

namespace yunqi {

// The form in which an error trap shows what it caught (see MessageForms).
enum class TrapForm {
    Menu,
    Report,
    Trap,
    // The number as the platform's Str gives it, a blank before a positive one.
    TrapBlankBeforePositive,
};

// Shows error in form, through the application's Dialogs.
void ShowTrapped(TrapForm form, const RuntimeError& error);

// Runs work under an error trap: a RuntimeError is shown in form and
// returned, and the caller goes on. Anything else, Stopped among it, passes
// through untouched to whoever started the work.
template <class Work>
Trapped RunTrapped(TrapForm form, Work&& work) {
    try {
        std::forward<Work>(work)();
    } catch (const RuntimeError& e) {
        ShowTrapped(form, e);
        return e;
    }
    return std::nullopt;
}

}  // namespace yunqi
