#include "shell/widgets/AboutWindow.h"

#include <QApplication>
#include <QFrame>
#include <QHBoxLayout>
#include <QKeyEvent>
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
    // The program's icon beside its texts, a rule under them.
    auto* top = new QHBoxLayout;
    auto* icon = new QLabel(this);
    icon->setObjectName(QStringLiteral("Picture1"));
    icon->setPixmap(QApplication::windowIcon().pixmap(48, 48));
    top->addWidget(icon, 0, Qt::AlignTop);
    auto* texts = new QVBoxLayout;
    top->addLayout(texts, 1);
    layout->addLayout(top);
    auto label = [&](const char* name, const QString& text) {
        auto* l = new QLabel(text, this);
        l->setObjectName(QString::fromUtf8(name));
        texts->addWidget(l);
    };
    label("lblTitle", QStringLiteral("云栖账房系统的一部分"));
    label("lblVersion", QStringLiteral("版本"));
    label("Label7", QStringLiteral("系统信息设置系统") + QStringLiteral("1.0.0"));
    auto* rule = new QFrame(this);
    rule->setObjectName(QStringLiteral("Picture2"));
    rule->setFrameShape(QFrame::HLine);
    rule->setFrameShadow(QFrame::Sunken);
    layout->addWidget(rule);
    auto* ok = new QPushButton(QStringLiteral("确定"), this);
    ok->setObjectName(QStringLiteral("cmdOK"));
    auto* info = new QPushButton(QStringLiteral("系统信息"), this);
    info->setObjectName(QStringLiteral("cmdSysInfo"));
    layout->addWidget(ok);
    layout->addWidget(info);
    for (QPushButton* b : {ok, info}) b->setAutoDefault(true);  // Enter presses the focused one
    connect(ok, &QPushButton::clicked, this, [this] { CloseChildWindow(this); });
    connect(info, &QPushButton::clicked, this, [this] { ClickSysInfo(); });
    setFixedSize(sizeHint());
}

void AboutWindow::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
        case Qt::Key_Escape:
            CloseChildWindow(this);
            return;
        case Qt::Key_Return:
        case Qt::Key_Enter:
            // With no button focused, Enter is 确定.
            findChild<QPushButton*>(QStringLiteral("cmdOK"))->click();
            return;
        default:
            QWidget::keyPressEvent(event);
    }
}

void AboutWindow::ClickSysInfo() {
    AppDialogs().MsgBox(QStringLiteral("此时系统信息不可用"), QString(), MsgIcon::None);
}

}  // namespace yunqi
