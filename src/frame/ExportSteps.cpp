#include "frame/ExportSteps.h"

namespace yunqi {

namespace ExportFrame {

void ExportSteps::HeaderWritten() {
    dialogs_.Yield();
    if (controls_) controls_->SetBusyLabelVisible(true);
    dialogs_.Yield();
}

void ExportSteps::FooterWritten() {
    if (controls_) controls_->SetBusyLabelVisible(false);
}

}  // namespace ExportFrame

}  // namespace yunqi
