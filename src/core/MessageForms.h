#pragma once

#include <QString>

namespace yunqi {

// The three forms in which a database error is shown, each in an
// information box through the application's Dialogs.
namespace MessageForms {

QString StartupText(const QString& description);
QString MenuText(long number, const QString& description);
QString ReportText(long number, const QString& description);

// The form of a statement's own error trap: the number as text directly
// followed by the description. Some windows print the number as the platform's
// Str does, with a blank before a positive number.
QString TrapText(long number, const QString& description, bool blankBeforePositive = false);

void ShowStartup(const QString& description);              // title "信息文本"
void ShowMenu(long number, const QString& description);    // title "提示"
void ShowReport(long number, const QString& description);  // title "系统提示"
void ShowTrap(long number, const QString& description,
              bool blankBeforePositive = false);  // title "系统提示"

}  // namespace MessageForms

}  // namespace yunqi
