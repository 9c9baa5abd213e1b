#include "core/Dialogs.h"

#include "core/StopRequest.h"

namespace yunqi {

namespace {

// What work that was asked to stop has to say is not shown: the error of a
// query that was stopped, the questions of steps that will not run.
class StoppedDialogs : public Dialogs {
  public:
    MsgResult MsgBox(const QString&, const QString&, MsgIcon, MsgButtons buttons) override {
        return buttons == MsgButtons::YesNo ? MsgResult::No : MsgResult::Ok;
    }
    std::optional<QString> SaveFileName(const QString&, const QString&) override { return {}; }
    void Yield() override {}
};

RecordingDialogs fallbackDialogs;
StoppedDialogs stoppedDialogs;
Dialogs* current = nullptr;

}  // namespace

Dialogs& AppDialogs() {
    if (StopRequestedHere()) return stoppedDialogs;
    return current ? *current : fallbackDialogs;
}
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
