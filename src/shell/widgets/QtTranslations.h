#pragma once

#include <QCoreApplication>
#include <QTranslator>

namespace yunqi {

// Installs Qt's own Chinese texts (standard buttons, file dialogs), so that
// a message box says 确定, 是, 否 and the save dialog 保存 like the rest of
// the program, whatever the system's language. They are looked for where
// Qt keeps its translations (Debian: qt6-translations-l10n), then in a
// folder "translations" beside the program. Gives the translator installed
// (owned by the application), or null when none was found: the standard
// texts then stay English.
QTranslator* InstallQtTranslations(QCoreApplication& app);

}  // namespace yunqi
