#include "frame/xlsx/ExportFrame.h"

#include "core/MessageForms.h"
#include "core/RuntimeError.h"
#include "core/ValueRules.h"
#include "frame/xlsx/XlsxWriter.h"

namespace yunqi {

namespace ExportFrame {

QString ExportFileStem(const QString& chosen) {
    const qsizetype dot = chosen.indexOf(QLatin1Char('.'));
    if (dot < 0) throw RuntimeError::InvalidProcedureCall();
    return chosen.left(dot);
}

QString WorkbookExtension() { return QStringLiteral(".xlsx"); }

QString SaveFilter() { return QStringLiteral("电子表(.xlsx)|*.xlsx|电子表(.xls)|*.xls"); }

QString DefaultFileName(const QString& title, const QDate& from, const QDate& to) {
    return title + QLatin1Char('_') + ValueRules::FormatYmd(from) + QLatin1Char('-') +
           ValueRules::FormatYmd(to);
}

QString ExportToExcel(const QString& chosen, const ExportRequest& request, ExportControls* controls,
                      Dialogs& dialogs) {
    // Rows are written to the file as they are composed, and the file is
    // packed and checked after the last: the pointer says so until the message.
    struct Busy {
        explicit Busy(ExportControls* c) : controls(c) {
            if (controls) controls->SetBusy(true);
        }
        void End() {
            if (controls) controls->SetBusy(false);
            controls = nullptr;
        }
        ~Busy() { End(); }
        ExportControls* controls;
    } busy(controls);
    try {
        const QString file = ExportFileStem(chosen) + WorkbookExtension();
        ExportSteps steps(controls, dialogs);
        const auto write = [&] {
            StreamXlsx(
                file, [&](SheetModel& sheet) { request.writeSheet(sheet, steps); }, {},
                [&](const std::function<void()>& close) { steps.FinishFile(close); });
        };
        const bool written = controls ? controls->WriteAside(write) : (write(), true);
        busy.End();
        // Stopped, the export is as cancelled as at the save dialog.
        dialogs.MsgBox(written ? request.successText : MessageForms::ExportCancelledText(),
                       MessageForms::SystemTitle(), MsgIcon::Information);
        return written ? file : QString();
    } catch (const RuntimeError& e) {
        busy.End();
        dialogs.MsgBox(MessageForms::ExportErrorText(e.number(), e.description()),
                       MessageForms::SystemTitle(), MsgIcon::Information);
        return QString();
    }
}

QString ExportCommand(const ExportRequest& request, ExportControls& controls, Dialogs& dialogs) {
    if (request.gridRows == 2) return QString();
    controls.SetButtonsVisible(false);
    const auto chosen = dialogs.SaveFileName(request.defaultName, SaveFilter());
    if (!chosen) {
        dialogs.MsgBox(MessageForms::ExportCancelledText(), MessageForms::SystemTitle(),
                       MsgIcon::Information);
        controls.SetButtonsVisible(true);
        return QString();
    }
    controls.ShowProgressBar(request.progressMaximum);
    dialogs.Yield();
    const QString file = ExportToExcel(*chosen, request, &controls, dialogs);
    controls.HideProgressBar();
    controls.SetButtonsVisible(true);
    return file;
}

}  // namespace ExportFrame

}  // namespace yunqi
