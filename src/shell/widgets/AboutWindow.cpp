#include "shell/widgets/AboutWindow.h"

#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "core/Dialogs.h"
#include "frame/widgets/ChildWindow.h"

namespace yunqi {

AboutWindow::AboutWindow(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("frmAbout"));
    setWindowTitle(QStringLiteral("关于云栖账房系统"));
    setAttribute(Qt::WA_DeleteOnClose);
    // Wide enough for its caption on the frame.
    setMinimumWidth(320);
    auto* layout = new QVBoxLayout(this);
    auto label = [&](const char* name, const QString& text) {
        auto* l = new QLabel(text, this);
        l->setObjectName(QString::fromUtf8(name));
        layout->addWidget(l);
    };
    label("lblTitle", QStringLiteral("云栖账房系统的一部分"));
    label("lblVersion", QStringLiteral("版本"));
    label("Label7", QStringLiteral("系统信息设置系统") + QStringLiteral("1.0.0"));
    auto* ok = new QPushButton(QStringLiteral("确定"), this);
    ok->setObjectName(QStringLiteral("cmdOK"));
    auto* info = new QPushButton(QStringLiteral("系统信息"), this);
    info->setObjectName(QStringLiteral("cmdSysInfo"));
    layout->addWidget(ok);
    layout->addWidget(info);
    connect(ok, &QPushButton::clicked, this, [this] { CloseChildWindow(this); });
    connect(info, &QPushButton::clicked, this, [this] { ClickSysInfo(); });
}

void AboutWindow::ClickSysInfo() {
    AppDialogs().MsgBox(QStringLiteral("此时系统信息不可用"), QString(), MsgIcon::None);
}

}  // namespace yunqi
