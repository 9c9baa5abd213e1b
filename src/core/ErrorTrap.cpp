#include "core/ErrorTrap.h"

#include "core/MessageForms.h"

namespace yunqi {

void ShowTrapped(TrapForm form, const RuntimeError& error) {
    switch (form) {
        case TrapForm::Menu:
            return MessageForms::ShowMenu(error.number(), error.description());
        case TrapForm::Report:
            return MessageForms::ShowReport(error.number(), error.description());
        case TrapForm::Trap:
            return MessageForms::ShowTrap(error.number(), error.description());
        case TrapForm::TrapBlankBeforePositive:
            return MessageForms::ShowTrap(error.number(), error.description(), true);
    }
}

}  // namespace yunqi
