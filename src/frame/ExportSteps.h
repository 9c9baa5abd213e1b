#pragma once

#include <functional>

#include "core/Dialogs.h"
#include "core/StopRequest.h"

namespace yunqi {

// The window's side of an export, and the points at which a report's sheet
// writer hands control back to it.
namespace ExportFrame {

// The window's controls during an export.
class ExportControls {
  public:
    virtual ~ExportControls() = default;
    virtual void SetButtonsVisible(bool visible) = 0;  // Command1, Command2
    virtual void ShowProgressBar(int maximum) = 0;     // ProgressBar1, minimum 0
    virtual void SetProgressValue(int value) = 0;
    virtual void HideProgressBar() = 0;
    virtual void SetBusyLabelVisible(bool visible) = 0;  // Label2
    // The busy pointer, from the first row until the file is saved.
    virtual void SetBusy(bool busy) = 0;
    // Runs write, the whole writing of the file; false when it was stopped
    // (then nothing was written). A window runs it beside its own thread, and
    // the calls below may then come from there.
    virtual bool WriteAside(const std::function<void()>& write) {
        write();
        return true;
    }
    // Runs finish, which makes the written rows a complete file (packing,
    // checking, renaming) and may throw.
    virtual void FinishFile(const std::function<void()>& finish) { finish(); }
};

// What a report's sheet writer is told to do between its parts.
class ExportSteps {
  public:
    ExportSteps(ExportControls* controls, Dialogs& dialogs)
        : controls_(controls), dialogs_(dialogs) {}
    // After the title block and headers: yield, show Label2, yield.
    void HeaderWritten();
    // Before record r is written; a stopped export ends here.
    void Row(int r) {
        ThrowIfStopRequested();
        if (controls_) controls_->SetProgressValue(r);
    }
    // After the footer: Label2 hidden.
    void FooterWritten();
    // The file made complete, through the controls where there are some.
    void FinishFile(const std::function<void()>& finish) {
        if (controls_)
            controls_->FinishFile(finish);
        else
            finish();
    }

  private:
    ExportControls* controls_;
    Dialogs& dialogs_;
};

}  // namespace ExportFrame

}  // namespace yunqi
