#include "frame/widgets/WidgetDialogs.h"

#include <QApplication>
#include <QFileDialog>
#include <QMessageBox>

namespace yunqi {

MsgResult WidgetDialogs::MsgBox(const QString& text, const QString& title, MsgIcon icon,
                                MsgButtons buttons) {
    QMessageBox box(parent_ ? parent_ : QApplication::activeWindow());
    box.setWindowTitle(title);
    box.setText(text);
    switch (icon) {
        case MsgIcon::Information:
            box.setIcon(QMessageBox::Information);
            break;
        case MsgIcon::Question:
            box.setIcon(QMessageBox::Question);
            break;
        case MsgIcon::Warning:
            box.setIcon(QMessageBox::Warning);
            break;
        case MsgIcon::Critical:
            box.setIcon(QMessageBox::Critical);
            break;
        case MsgIcon::None:
            break;
    }
    if (buttons == MsgButtons::YesNo) {
        box.setStandardButtons(QMessageBox::Yes | QMessageBox::No);
        return box.exec() == QMessageBox::Yes ? MsgResult::Yes : MsgResult::No;
    }
    box.setStandardButtons(QMessageBox::Ok);
    box.exec();
    return MsgResult::Ok;
}

std::optional<QString> WidgetDialogs::SaveFileName(const QString& defaultName,
                                                   const QString& filter) {
    // "label|pattern|label|pattern" becomes Qt's "label (pattern);;...".
    const QStringList parts = filter.split(QLatin1Char('|'));
    QStringList filters;
    for (int i = 0; i + 1 < parts.size(); i += 2) filters << parts[i] + " (" + parts[i + 1] + ")";
    const QString chosen = QFileDialog::getSaveFileName(
        parent_ ? parent_ : QApplication::activeWindow(), QString(), defaultName,
        filters.join(QStringLiteral(";;")), nullptr, QFileDialog::DontConfirmOverwrite);
    if (chosen.isEmpty()) return std::nullopt;
    return chosen;
}

void WidgetDialogs::Yield() { QApplication::processEvents(); }

}  // namespace yunqi
