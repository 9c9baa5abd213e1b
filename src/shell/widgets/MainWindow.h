#pragma once

#include <QMainWindow>
#include <QMdiArea>
#include <QPixmap>
#include <functional>
#include <map>

namespace yunqi {

// MDIForm1: the main window with the menu and the report windows as children.
// Each report entry opens one instance per session; a second choice raises it.
class MainWindow : public QMainWindow {
    Q_OBJECT
  public:
    using WindowFactory = std::function<QWidget*()>;
    // factories: by menu entry name, the windows that exist so far.
    explicit MainWindow(std::map<QString, WindowFactory> factories, QWidget* parent = nullptr);
    ~MainWindow() override;

    // Shows the entry's window, creating it when its slot is empty.
    void Choose(const QString& entry);
    QWidget* OpenWindow(const QString& entry) const;
    QMdiArea* Area() const { return area_; }
    // The first show: the frame, title bar included, shrunk and moved onto
    // the available screen where it hangs off it.
    void ShowOnScreen();
    void KeepOnScreen();
    // Applies the privilege tables to the menu (not called at start-up).
    void 权限设置(QString& memo);

  protected:
    void closeEvent(QCloseEvent* event) override;
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void StretchBackdrop();

    std::map<QString, WindowFactory> factories_;
    std::map<QString, QMdiSubWindow*> open_;
    QMdiArea* area_;
    QPixmap backdrop_;
    // While the window manager may still be framing the first show.
    static constexpr int kPlacingMs = 3000;
    bool placing_ = false;
};

}  // namespace yunqi
