#include "frame/widgets/WidgetDialogs.h"

#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QStandardPaths>
#include <QTextStream>
#include <QThread>
#include <memory>

namespace yunqi {

namespace {

bool OffTheWindowsThread() { return QThread::currentThread() != qApp->thread(); }

// Work running beside the windows asks its questions on the windows' thread
// and waits for the answer.
template <typename Answer, typename Ask>
Answer AskOnTheWindowsThread(Answer answer, Ask ask) {
    QMetaObject::invokeMethod(
        qApp, [&] { answer = ask(); }, Qt::BlockingQueuedConnection);
    return answer;
}

}  // namespace

bool WidgetDialogs::Headless() {
    const QString platform = QGuiApplication::platformName();
    return platform == QLatin1String("offscreen") || platform == QLatin1String("minimal");
}

MsgResult WidgetDialogs::MsgBox(const QString& text, const QString& title, MsgIcon icon,
                                MsgButtons buttons) {
    if (OffTheWindowsThread())
        return AskOnTheWindowsThread(MsgResult::Ok,
                                     [&] { return MsgBox(text, title, icon, buttons); });
    const bool headless = Headless();
    // Nobody can see or answer a box without a screen: the form goes to
    // standard error as well, the box is shown without waiting, and a
    // question is answered No.
    if (headless) {
        QTextStream(stderr) << title << ": " << text
                            << (buttons == MsgButtons::YesNo ? " (No)\n" : "\n");
    }
    auto* box = new QMessageBox(parent_ ? parent_ : QApplication::activeWindow());
    std::unique_ptr<QMessageBox> owner(box);
    // A box without a title of its own carries the program's.
    box->setWindowTitle(title.isEmpty() ? QStringLiteral("云栖报表台") : title);
    box->setText(text);
    switch (icon) {
        case MsgIcon::Information:
            box->setIcon(QMessageBox::Information);
            break;
        case MsgIcon::Question:
            box->setIcon(QMessageBox::Question);
            break;
        case MsgIcon::Warning:
            box->setIcon(QMessageBox::Warning);
            break;
        case MsgIcon::Critical:
            box->setIcon(QMessageBox::Critical);
            break;
        case MsgIcon::None:
            break;
    }
    box->setStandardButtons(buttons == MsgButtons::YesNo ? QMessageBox::Yes | QMessageBox::No
                                                         : QMessageBox::Ok);
    if (headless) {
        box->setAttribute(Qt::WA_DeleteOnClose);
        box->setModal(false);
        box->show();
        owner.release();
        return buttons == MsgButtons::YesNo ? MsgResult::No : MsgResult::Ok;
    }
    const int answer = box->exec();
    if (buttons == MsgButtons::YesNo)
        return answer == QMessageBox::Yes ? MsgResult::Yes : MsgResult::No;
    return MsgResult::Ok;
}

std::optional<QString> WidgetDialogs::SaveFileName(const QString& defaultName,
                                                   const QString& filter) {
    if (OffTheWindowsThread())
        return AskOnTheWindowsThread(std::optional<QString>(),
                                     [&] { return SaveFileName(defaultName, filter); });
    if (Headless()) {
        // The save dialog would wait for ever: cancelled, and said so.
        QTextStream(stderr) << "save dialog (" << defaultName << "): cancelled, no screen\n";
        return std::nullopt;
    }
    // "label|pattern|label|pattern" becomes Qt's "label (pattern);;...".
    const QStringList parts = filter.split(QLatin1Char('|'));
    QStringList filters;
    for (int i = 0; i + 1 < parts.size(); i += 2) filters << parts[i] + " (" + parts[i + 1] + ")";
    // The operator's documents, then the folder last chosen; never the
    // folder the program runs in, whose name may hold a dot that the file
    // name rule cuts at.
    static QString lastFolder;
    QString folder = lastFolder;
    if (folder.isEmpty() || !QDir(folder).exists())
        folder = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    if (!QDir(folder).exists()) folder = QDir::homePath();
    const QString start =
        QDir::isAbsolutePath(defaultName) ? defaultName : QDir(folder).filePath(defaultName);
    const QString chosen = QFileDialog::getSaveFileName(
        parent_ ? parent_ : QApplication::activeWindow(), QString(), start,
        filters.join(QStringLiteral(";;")), nullptr, QFileDialog::DontConfirmOverwrite);
    if (chosen.isEmpty()) return std::nullopt;
    lastFolder = QFileInfo(chosen).absolutePath();
    return chosen;
}

// Beside the windows there is nothing to yield to: their thread runs on.
void WidgetDialogs::Yield() {
    if (!OffTheWindowsThread()) QApplication::processEvents();
}

}  // namespace yunqi
