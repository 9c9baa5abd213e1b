#include "core/MessageForms.h"

#include "core/Dialogs.h"

namespace yunqi {

namespace MessageForms {

QString SystemTitle() { return QStringLiteral("系统提示"); }

QString StartupText(const QString& description) {
    return QStringLiteral("错误信息：") + description;
}

QString MenuText(long number, const QString& description) {
    return QStringLiteral("错误号：") + QString::number(number) + QLatin1Char('\n') +
           QStringLiteral("错误描述：") + description;
}

QString ReportText(long number, const QString& description) {
    return QStringLiteral("错误码: ") + QString::number(number) + QStringLiteral(" 错误描述: ") +
           description;
}

QString TrapText(long number, const QString& description, bool blankBeforePositive) {
    const QString digits = QString::number(number);
    return (blankBeforePositive && number >= 0 ? QStringLiteral(" ") + digits : digits) +
           description;
}

QString ExportCancelledText() { return QStringLiteral("您取消了导出操作！"); }

QString ExportErrorText(long number, const QString& description) {
    return QStringLiteral("错误号: ") + QString::number(number) + QStringLiteral("错误描述: ") +
           description;
}

void ShowStartup(const QString& description) {
    AppDialogs().MsgBox(StartupText(description), QStringLiteral("信息文本"), MsgIcon::Information);
}

void ShowMenu(long number, const QString& description) {
    AppDialogs().MsgBox(MenuText(number, description), QStringLiteral("提示"),
                        MsgIcon::Information);
}

void ShowReport(long number, const QString& description) {
    AppDialogs().MsgBox(ReportText(number, description), SystemTitle(), MsgIcon::Information);
}

void ShowTrap(long number, const QString& description, bool blankBeforePositive) {
    AppDialogs().MsgBox(TrapText(number, description, blankBeforePositive), SystemTitle(),
                        MsgIcon::Information);
}

}  // namespace MessageForms

}  // namespace yunqi
