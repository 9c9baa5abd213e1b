#include "shell/widgets/MainWindow.h"

#include <QApplication>
#include <QCloseEvent>
#include <QMdiSubWindow>
#include <QMenuBar>
#include <QPixmap>
#include <QResizeEvent>
#include <QVBoxLayout>

#include "core/Dialogs.h"
#include "core/RuntimeError.h"
#include "core/ValueRules.h"
#include "core/MessageForms.h"
#include "db/SessionState.h"
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
    setCentralWidget(central);
    // The about window is one more child of the main window.
    factories_.emplace(QStringLiteral("关于软件"), [] { return new AboutWindow; });
    resize(1280, 800);
    // Nothing follows from the comparison; the identity stays empty.
    (void)(AppSession().SessionUser == QStringLiteral("超级用户"));

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
    for (const char* name :
         {"停车费明细表", "增值税开票明细表", "增值税预开明细表", "开票票据核对表"}) {
        const QString n = QString::fromUtf8(name);
        entry(reports, n, [this, n] { Choose(n); });
    }
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
        QMdiSubWindow* sub = area_->addSubWindow(window);
        sub->setAttribute(Qt::WA_DeleteOnClose);
        // The slot empties when the window closes; the next choice starts afresh.
        connect(window, &QObject::destroyed, this, [this, entry] { open_.erase(entry); });
        it = open_.emplace(entry, sub).first;
    }
    it->second->show();
    it->second->widget()->show();
    if (entry == QStringLiteral("关于软件")) {
        // Centred in the main window's client area at each showing.
        const QSize client = area_->size(), own = it->second->size();
        it->second->move(int((client.width() - own.width()) / 2.0f),
                         int((client.height() - own.height()) / 2.0f));
    }
    area_->setActiveSubWindow(it->second);
    it->second->raise();
}

void MainWindow::权限设置(QString& memo) {
    static const QStringList kept{"注销", "关于",     "关于软件", "联系我们",
                                  "退出", "退出系统", "其它模块"};
    QList<QAction*> entries;
    for (QAction* a : findChildren<QAction*>())
        if (!a->objectName().isEmpty()) entries << a;
    try {
        for (QAction* a : entries)
            if (!kept.contains(a->objectName()) && a->text() != QStringLiteral("-"))
                a->setEnabled(false);
        DatabaseSession& session = *AppSession().SessionConnection;
        QString sql = QStringLiteral(
            "SELECT DISTINCT 岗位权限设置.id , 岗位权限设置.组代号, 岗位权限设置.岗位代号, "
            "岗位权限设置.授权, GroupPrivilege.FormName, GroupPrivilege.Popedom");
        sql += QStringLiteral(
            " FROM  岗位权限设置 INNER JOIN GroupPrivilege ON 岗位权限设置.组代号 = "
            "GroupPrivilege.GroupID");
        sql += QStringLiteral(" Where 授权 = 1 AND 岗位代号='") + AppSession().SessionPostCode +
               QStringLiteral("'");
        sql += QStringLiteral(" AND Memo='") + memo + QStringLiteral("'");
        sql += QStringLiteral(" ORDER BY GroupPrivilege.Popedom");
        Recordset rs = session.Open(sql);
        QStringList names{QString()};
        std::vector<bool> allowed{false};
        for (; !rs.AtEnd(); rs.MoveNext()) {
            names.back() = ValueRules::TextOf(rs.Value(QStringLiteral("FormName")));
            allowed.back() = ValueRules::NumberOf(rs.Value(QStringLiteral("Popedom"))) != 0;
            names << QString();
            allowed.push_back(false);
        }
        for (int i = 0; i < names.size(); ++i)
            for (QAction* a : entries)
                if (a->objectName() == names[i]) {
                    a->setEnabled(false);
                    a->setEnabled(allowed[i]);
                    break;
                }
    } catch (const RuntimeError& e) {
        MessageForms::ShowMenu(e.number(), e.description());
    }
}

void MainWindow::resizeEvent(QResizeEvent* event) {
    QMainWindow::resizeEvent(event);
    // The backdrop: MDI.BMP beside the program, stretched; none, no message.
    const QPixmap picture(QCoreApplication::applicationDirPath() + QStringLiteral("/MDI.BMP"));
    if (picture.isNull())
        area_->setBackground(palette().brush(QPalette::Dark));
    else
        area_->setBackground(picture.scaled(area_->viewport()->size(), Qt::IgnoreAspectRatio));
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
