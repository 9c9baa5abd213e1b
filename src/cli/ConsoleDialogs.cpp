#include "cli/ConsoleDialogs.h"

#include <QTextStream>

#include "cli/StatementProgress.h"

namespace yunqi {

MsgResult ConsoleDialogs::MsgBox(const QString& text, const QString& title, MsgIcon,
                                 MsgButtons buttons) {
    StatementProgress::ClearLine();
    QTextStream(stderr) << title << ": " << text << "\n";
    return buttons == MsgButtons::YesNo ? MsgResult::No : MsgResult::Ok;
}

}  // namespace yunqi
