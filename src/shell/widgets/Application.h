#pragma once

#include <QApplication>

#include "core/RuntimeError.h"

namespace yunqi {

// The desktop program's application object. Qt can't carry an exception
// through its event loop (it ends in std::terminate): every event is
// delivered here, and a run-time error that an event handler lets through
// goes to the program's handler (ReportRuntimeError) instead, as the
// platform's run-time path would take it. Any other exception goes there as
// well, as an unspecified error.
class Application : public QApplication {
  public:
    Application(int& argc, char** argv);
    bool notify(QObject* receiver, QEvent* event) override;
};

// The text of the run-time report: "实时错误 '94':" and the description.
QString RuntimeErrorText(const RuntimeError& error);

// The desktop program's top-level handler: the run-time report through the
// application's Dialogs (standard error too where there is no screen), then
// the end of the process with status 1 and its temporary files removed. The
// process ends at once, as the platform ends it: no further event runs and no
// std::terminate.
[[noreturn]] void EndOnRuntimeError(const RuntimeError& error);

}  // namespace yunqi
