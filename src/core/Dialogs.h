#pragma once

#include <QString>
#include <QStringList>
#include <optional>

namespace yunqi {

// Everything that pops up or yields goes through this interface, so that the
// computation never blocks on a modal box and tests can script the answers.
enum class MsgIcon { None, Information, Question, Warning, Critical };
enum class MsgButtons { Ok, YesNo };
enum class MsgResult { Ok, Yes, No };

class Dialogs {
  public:
    virtual ~Dialogs() = default;

    virtual MsgResult MsgBox(const QString& text, const QString& title, MsgIcon icon,
                             MsgButtons buttons = MsgButtons::Ok) = 0;
    // The save dialog: the chosen path, or nothing when cancelled.
    virtual std::optional<QString> SaveFileName(const QString& defaultName,
                                                const QString& filter) = 0;
    // Lets pending window events run once.
    virtual void Yield() = 0;
};

// The process-wide instance. Without one installed, a silent recorder is used.
Dialogs& AppDialogs();
void SetAppDialogs(Dialogs* dialogs);

// Records what was shown and answers from a script. Used by tests and by the
// headless companion.
class RecordingDialogs : public Dialogs {
  public:
    struct Message {
        QString text;
        QString title;
        MsgIcon icon;
        MsgButtons buttons;
    };

    MsgResult MsgBox(const QString& text, const QString& title, MsgIcon icon,
                     MsgButtons buttons) override;
    std::optional<QString> SaveFileName(const QString& defaultName, const QString& filter) override;
    void Yield() override { ++yields; }

    std::vector<Message> messages;
    QStringList saveDialogDefaults;
    QStringList saveDialogFilters;
    int yields = 0;

    // Answers handed out in order; when they run out: Yes, and cancel.
    std::vector<MsgResult> answers;
    std::vector<std::optional<QString>> saveAnswers;

    QStringList texts() const;
};

}  // namespace yunqi
