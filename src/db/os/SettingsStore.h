#pragma once

#include <QByteArray>
#include <QString>
#include <map>
#include <optional>

// Where the settings of the program we replace may already be, and how text
// files written on this system are encoded: one implementation for POSIX
// systems, one for Windows.
namespace yunqi::os {

// The values of key DBConfig of application 云栖账房 in the per-user
// registry area (HKEY_CURRENT_USER\Software\VB and VBA Program Settings), as
// the text stored; nullopt where that key does not exist or there is no
// registry.
std::optional<std::map<QString, QString>> RegistryDbConfig();

// Text in the system's ANSI code page (GBK on Chinese Windows); elsewhere in
// the locale's encoding.
QString FromAnsiCodePage(const QByteArray& bytes);

}  // namespace yunqi::os
