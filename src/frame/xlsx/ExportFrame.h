#pragma once

#include <QDate>
#include <QString>
#include <functional>

#include "core/Dialogs.h"
#include "frame/ExportSteps.h"
#include "frame/SheetModel.h"

namespace yunqi {

// The export of a statement to a workbook, without widgets: the file name
// rule, the order of the steps and the messages. The window plugs its
// controls in through ExportControls; the companion uses none.
namespace ExportFrame {

// The chosen name up to, not including, its first "." anywhere in the path.
// A name without a dot: "Invalid procedure call or argument" (5).
QString ExportFileStem(const QString& chosen);
// What our writer adds to the stem.
QString WorkbookExtension();  // ".xlsx"
QString SaveFilter();
// "title_yyyymmdd-yyyymmdd", for the statements with a date window.
QString DefaultFileName(const QString& title, const QDate& from, const QDate& to);

using SheetWriter = std::function<void(SheetModel& sheet, ExportSteps& steps)>;

struct ExportRequest {
    int gridRows;         // MSFlexGrid1.Rows; 2 means header only
    int progressMaximum;  // the upper bound of the rows
    QString defaultName;
    QString successText;
    SheetWriter writeSheet;
};

// The Command2 click: the dialog, the hidden buttons, the progress bar, then
// ExportToExcel. Returns the file written, or an empty text.
QString ExportCommand(const ExportRequest& request, ExportControls& controls, Dialogs& dialogs);

// Writes the sheet to the stem of the chosen name with our extension, and
// shows the success text or the error form. Returns the file written, or an
// empty text.
QString ExportToExcel(const QString& chosen, const ExportRequest& request, ExportControls* controls,
                      Dialogs& dialogs);

}  // namespace ExportFrame

}  // namespace yunqi
