#pragma once

#include <QString>

namespace yunqi {

// The texts of the information boxes, and the forms in which an error is
// shown in them through the application's Dialogs.
namespace MessageForms {

// The title of the report windows' boxes.
QString SystemTitle();

QString StartupText(const QString& description);
QString MenuText(long number, const QString& description);
QString ReportText(long number, const QString& description);

// The form of a statement's own error trap: the number as text directly
// followed by the description. Some windows print the number as the platform's
// Str does, with a blank before a positive number.
QString TrapText(long number, const QString& description, bool blankBeforePositive = false);

// The export's: cancelled at the save dialog or stopped, and failed, the
// number and the description on one line.
QString ExportCancelledText();
QString ExportErrorText(long number, const QString& description);

void ShowStartup(const QString& description);              // title "信息文本"
void ShowMenu(long number, const QString& description);    // title "提示"
void ShowReport(long number, const QString& description);  // title SystemTitle()
void ShowTrap(long number, const QString& description,
              bool blankBeforePositive = false);  // title SystemTitle()

}  // namespace MessageForms

}  // namespace yunqi
