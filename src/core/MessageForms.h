#pragma once

#include <QString>

namespace yunqi {

// The three forms in which a database error is shown, each in an
// information box through the application's Dialogs.
namespace MessageForms {

QString StartupText(const QString& description);
QString MenuText(long number, const QString& description);
QString ReportText(long number, const QString& description);

void ShowStartup(const QString& description);              // title "信息文本"
void ShowMenu(long number, const QString& description);    // title "提示"
void ShowReport(long number, const QString& description);  // title "系统提示"

}  // namespace MessageForms

}  // namespace yunqi
