#pragma once

#include <QDialog>

namespace yunqi {

// frmAbout: the program's name and version, centred in the main window.
class AboutWindow : public QWidget {
    Q_OBJECT
  public:
    explicit AboutWindow(QWidget* parent = nullptr);
    // No system information tool exists here: the message of its absence.
    void ClickSysInfo();

  protected:
    // Esc closes the window; Enter presses the focused button, 确定 otherwise.
    void keyPressEvent(QKeyEvent* event) override;
};

}  // namespace yunqi
