#include "shell/widgets/MainWindow.h"

#include <QApplication>
#include <QCloseEvent>
#include <QMdiSubWindow>
#include <QMenuBar>
#include <QPixmap>
#include <QResizeEvent>
#include <QScreen>
#include <QTimer>
#include <QVBoxLayout>

#include "core/Dialogs.h"
#include "core/ErrorTrap.h"
#include "db/SessionState.h"
#include "reports/Reports.h"
#include "shell/MenuPrivileges.h"
#include "shell/WindowPlacement.h"
#include "shell/widgets/AboutWindow.h"
#include "shell/widgets/Banner.h"

namespace yunqi {

MainWindow::MainWindow(std::map<QString, WindowFactory> factories, QWidget* parent)
    : QMainWindow(parent), factories_(std::move(factories)), area_(new QMdiArea(this)) {
    setObjectName(QStringLiteral("MDIForm1"));
    setWindowTitle(QStringLiteral("云栖账房报表"));
    auto* central = new QWidget(this);
    auto* column = new QVBoxLayout(central);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(new Banner(central));
    column->addWidget(area_);
    backdrop_ = QPixmap(QCoreApplication::applicationDirPath() + QStringLiteral("/MDI.BMP"));
    area_->viewport()->installEventFilter(this);
    StretchBackdrop();
    setCentralWidget(central);
    // The about window is one more child of the main window.
    factories_.emplace(QStringLiteral("关于软件"), [] { return new AboutWindow; });
    // Room for a report window at its design size where the screen has it.
    resize(QSize(1280, 900).boundedTo(screen()->availableGeometry().size()));

    auto menu = [this](const QString& name) {
        QMenu* m = menuBar()->addMenu(name);
        m->setObjectName(name);
        m->menuAction()->setObjectName(name);
        return m;
    };
    auto entry = [this](QMenu* m, const QString& name, std::function<void()> action) {
        QAction* a = m->addAction(name);
        a->setObjectName(name);
        connect(a, &QAction::triggered, this, std::move(action));
    };
    QMenu* reports = menu(QStringLiteral("统计报表"));
    for (const ReportDefinition* report : ReportsInMenuOrder())
        entry(reports, report->menuEntry, [this, n = report->menuEntry] { Choose(n); });
    QMenu* quit = menu(QStringLiteral("退出系统"));
    entry(quit, QStringLiteral("退出"), [] { std::_Exit(0); });
    QMenu* about = menu(QStringLiteral("关于"));
    entry(about, QStringLiteral("关于软件"), [this] { Choose(QStringLiteral("关于软件")); });
    entry(about, QStringLiteral("联系我们"), [] {});
}

MainWindow::~MainWindow() {
    // The children outlive the slots; they must not report back to them.
    for (auto& [entry, sub] : open_)
        if (sub->widget()) sub->widget()->disconnect(this);
}

QWidget* MainWindow::OpenWindow(const QString& entry) const {
    const auto it = open_.find(entry);
    return it == open_.end() ? nullptr : it->second->widget();
}

void MainWindow::Choose(const QString& entry) {
    auto it = open_.find(entry);
    if (it == open_.end()) {
        const auto factory = factories_.find(entry);
        if (factory == factories_.end()) return;
        QWidget* window = factory->second();
        if (!window) return;  // its load failed and was reported
        QMdiSubWindow* sub = area_->addSubWindow(window);
        sub->setAttribute(Qt::WA_DeleteOnClose);
        // The program's icon, not the toolkit's, on every window's title bar.
        sub->setWindowIcon(QApplication::windowIcon());
        // A window of fixed size can't be maximised either.
        if (window->minimumSize() == window->maximumSize())
            sub->setWindowFlags(Qt::SubWindow | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
                                Qt::WindowCloseButtonHint);
        // The frame takes the window's design size (the MDI area would make
        // it a title-bar stub), clipped to the area.
        sub->resize(sub->sizeHint().boundedTo(area_->viewport()->size()));
        // The slot empties when the window goes, and its frame goes with it;
        // the next choice starts afresh.
        connect(window, &QObject::destroyed, this, [this, entry, sub] {
            open_.erase(entry);
            // Posted to the frame: dropped when the frame is going too.
            QMetaObject::invokeMethod(
                sub, [sub] { sub->close(); }, Qt::QueuedConnection);
        });
        it = open_.emplace(entry, sub).first;
        if (entry == QStringLiteral("关于软件")) {
            // The about window is centred in the main window when it loads.
            const WindowPlace place = CenterInMainWindow(float(area_->viewport()->width()),
                                                         float(area_->viewport()->height()),
                                                         float(sub->width()), float(sub->height()));
            sub->move(int(place.Left), int(place.Top));
        }
    }
    QMdiSubWindow* sub = it->second;
    // A minimised window comes back as it was before.
    if (sub->isMinimized())
        sub->showNormal();
    else
        sub->show();
    sub->widget()->show();
    // An open window is raised, where it stands.
    area_->setActiveSubWindow(sub);
    sub->raise();
}

void MainWindow::权限设置(QString& memo) {
    static const QStringList kept{"注销", "关于",     "关于软件", "联系我们",
                                  "退出", "退出系统", "其它模块"};
    QList<QAction*> entries;
    for (QAction* a : findChildren<QAction*>())
        if (!a->objectName().isEmpty()) entries << a;
    // What was read is applied only once the whole of it is in.
    RunTrapped(TrapForm::Menu, [&] {
        for (QAction* a : entries)
            if (!kept.contains(a->objectName()) && a->text() != QStringLiteral("-"))
                a->setEnabled(false);
        const auto privileges =
            ReadMenuPrivileges(*AppSession().SessionConnection, AppSession().SessionPostCode, memo);
        for (const MenuPrivilege& privilege : privileges)
            for (QAction* a : entries)
                if (a->objectName() == privilege.formName) {
                    a->setEnabled(privilege.allowed);
                    break;
                }
    });
}

bool MainWindow::eventFilter(QObject* watched, QEvent* event) {
    // The backdrop follows the client area from its first size on: a picture
    // scaled to an earlier, smaller size would be tiled.
    if (watched == area_->viewport() && event->type() == QEvent::Resize) StretchBackdrop();
    return QMainWindow::eventFilter(watched, event);
}

void MainWindow::StretchBackdrop() {
    // The backdrop: MDI.BMP beside the program, stretched; none, no message.
    if (backdrop_.isNull())
        area_->setBackground(palette().brush(QPalette::Dark));
    else
        area_->setBackground(backdrop_.scaled(area_->viewport()->size(), Qt::IgnoreAspectRatio));
}

void MainWindow::ShowOnScreen() {
    placing_ = true;
    show();
    KeepOnScreen();
    // A window manager frames the window after the first show and tells how
    // wide the frame is in its own time: each move or resize of the first
    // moments places the window again (see event()); without a manager there
    // is no frame and the first placing holds.
    QTimer::singleShot(0, this, [this] { KeepOnScreen(); });
    QTimer::singleShot(kPlacingMs, this, [this] { placing_ = false; });
}

bool MainWindow::event(QEvent* event) {
    const bool handled = QMainWindow::event(event);
    if (placing_ && (event->type() == QEvent::Move || event->type() == QEvent::Resize))
        QTimer::singleShot(0, this, [this] { KeepOnScreen(); });
    return handled;
}

void MainWindow::KeepOnScreen() {
    if (isMaximized() || isFullScreen()) return;
    // The frame, title bar included, stays on the available screen.
    const QRect screenBox = screen()->availableGeometry();
    const QRect frame = frameGeometry();
    const int extraHeight = frame.height() - height(), extraWidth = frame.width() - width();
    const QSize fits(std::min(width(), screenBox.width() - extraWidth),
                     std::min(height(), screenBox.height() - extraHeight));
    if (fits != size()) resize(fits);
    const QRect now = frameGeometry();
    QPoint to = now.topLeft();
    if (now.bottom() > screenBox.bottom())
        to.setY(std::max(screenBox.top(), screenBox.bottom() - now.height() + 1));
    if (now.right() > screenBox.right())
        to.setX(std::max(screenBox.left(), screenBox.right() - now.width() + 1));
    if (to != now.topLeft()) move(to);
}

void MainWindow::closeEvent(QCloseEvent* event) {
    area_->closeAllSubWindows();
    if (AppDialogs().MsgBox(QStringLiteral("确认要退出系统吗？"), QStringLiteral("云栖报表台"),
                            MsgIcon::Information, MsgButtons::YesNo) == MsgResult::Yes) {
        event->accept();
        QApplication::quit();
    } else {
        event->ignore();
    }
}

}  // namespace yunqi
