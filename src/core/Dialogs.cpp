#include "core/Dialogs.h"

namespace yunqi {

namespace {
RecordingDialogs fallbackDialogs;
Dialogs* current = nullptr;
}  // namespace

Dialogs& AppDialogs() { return current ? *current : fallbackDialogs; }
void SetAppDialogs(Dialogs* dialogs) { current = dialogs; }

MsgResult RecordingDialogs::MsgBox(const QString& text, const QString& title, MsgIcon icon,
                                   MsgButtons buttons) {
    messages.push_back({text, title, icon, buttons});
    if (buttons == MsgButtons::Ok) return MsgResult::Ok;
    if (answers.empty()) return MsgResult::Yes;
    MsgResult r = answers.front();
    answers.erase(answers.begin());
    return r;
}

std::optional<QString> RecordingDialogs::SaveFileName(const QString& defaultName,
                                                      const QString& filter) {
    saveDialogDefaults << defaultName;
    saveDialogFilters << filter;
    if (saveAnswers.empty()) return std::nullopt;
    auto r = saveAnswers.front();
    saveAnswers.erase(saveAnswers.begin());
    return r;
}

QStringList RecordingDialogs::texts() const {
    QStringList out;
    for (const auto& m : messages) out << m.text;
    return out;
}

}  // namespace yunqi
