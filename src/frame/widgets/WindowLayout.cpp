#include "frame/widgets/WindowLayout.h"

#include <QComboBox>
#include <QDateEdit>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QProgressBar>
#include <QPushButton>
#include <QStatusBar>
#include <QToolButton>
#include <cstdio>
#include <cstdlib>

#include "frame/widgets/FlexGridView.h"

namespace yunqi {

QFont DesignFont(ControlFont font) {
    QFont f;
    // 微软雅黑 is absent outside Windows; the fallback would pick Japanese
    // glyph shapes, so the Chinese face is named.
    f.setFamilies({QStringLiteral("微软雅黑"), QStringLiteral("Noto Sans CJK SC")});
    switch (font) {
        case ControlFont::Normal:
            f.setPointSizeF(9);
            break;
        case ControlFont::Heading:
            f.setPointSizeF(10.5);
            f.setBold(true);
            break;
        case ControlFont::Title:
            f.setPointSizeF(12);
            f.setBold(true);
            break;
    }
    return f;
}

QString ControlText::Of(const ReportTexts& texts) const {
    if (report) return texts.*report;
    return design ? QString::fromUtf8(design) : QString();
}

QRect TwipsBox(const QWidget* w) {
    return QRect(Twips(w->x()), Twips(w->y()), Twips(w->width()), Twips(w->height()));
}

void PlaceAt(QWidget* w, const QRect& twips) {
    w->setGeometry(Pixels(twips.left()), Pixels(twips.top()), Pixels(std::max(0, twips.width())),
                   Pixels(std::max(0, twips.height())));
}

namespace {

QWidget* Create(const ControlSpec& spec, QWidget* parent, const QString& text) {
    switch (spec.kind) {
        case ControlKind::Picture: {
            auto* w = new QWidget(parent);
            if (spec.backColor >= 0) {
                w->setAutoFillBackground(true);
                QPalette p = w->palette();
                p.setColor(QPalette::Window,
                           QColor(spec.backColor & 0xFF, (spec.backColor >> 8) & 0xFF,
                                  (spec.backColor >> 16) & 0xFF));
                w->setPalette(p);
            }
            return w;
        }
        case ControlKind::Label: {
            // A label is drawn on its container beneath every other control
            // and takes no click: a label over a button never hides it.
            auto* label = new QLabel(text, parent);
            label->setAttribute(Qt::WA_TransparentForMouseEvents);
            label->lower();
            return label;
        }
        case ControlKind::Button: {
            // Enter presses the focused button, as Space does.
            auto* button = new QPushButton(text, parent);
            button->setAutoDefault(true);
            return button;
        }
        case ControlKind::List: {
            auto* list = new QListWidget(parent);
            list->setSelectionMode(QAbstractItemView::SingleSelection);
            return list;
        }
        case ControlKind::Grid:
            return new FlexGridView(parent);
        case ControlKind::DatePicker: {
            auto* d = new QDateEdit(parent);
            d->setCalendarPopup(true);
            return d;
        }
        case ControlKind::TextBox:
            return new QLineEdit(text, parent);
        case ControlKind::ComboBox:
            return new QComboBox(parent);
        case ControlKind::Image: {
            auto* b = new QToolButton(parent);
            b->setAutoRaise(true);
            b->setToolTip(text);
            return b;
        }
        case ControlKind::ProgressBar:
            return new QProgressBar(parent);
        case ControlKind::StatusBar: {
            auto* bar = new QStatusBar(parent);
            bar->setSizeGripEnabled(false);
            return bar;
        }
    }
    return nullptr;
}

[[noreturn]] void Missing(const QString& name, const char* what) {
    std::fprintf(stderr, "window layout: %s %s\n", what, name.toUtf8().constData());
    std::abort();
}

}  // namespace

void ControlSet::Build(QWidget* root, WindowLayout layout, const ReportTexts& texts) {
    for (const ControlSpec& spec : layout) {
        QWidget* parent = root;
        if (spec.container) {
            parent = Find(QString::fromUtf8(spec.container));
            if (!parent) Missing(QString::fromUtf8(spec.container), "no container");
        }
        QWidget* w = Create(spec, parent, spec.text.Of(texts));
        const QString name = QString::fromUtf8(spec.name);
        w->setObjectName(name);
        if (spec.font != ControlFont::Normal) w->setFont(DesignFont(spec.font));
        PlaceAt(w, spec.box);
        if (spec.hidden) w->hide();
        controls_[name] = w;
    }
}

QWidget* ControlSet::Find(const QString& name) const {
    const auto it = controls_.find(name);
    return it == controls_.end() ? nullptr : it->second;
}

QWidget* ControlSet::Checked(const QString& name, const QMetaObject& kind) const {
    QWidget* w = Find(name);
    if (!w) Missing(name, "no control");
    if (!kind.cast(w)) Missing(name, "another kind of control:");
    return w;
}

}  // namespace yunqi
