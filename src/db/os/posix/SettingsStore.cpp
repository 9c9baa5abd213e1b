#include "db/os/SettingsStore.h"

namespace yunqi::os {

std::optional<std::map<QString, QString>> RegistryDbConfig() { return std::nullopt; }

QString FromAnsiCodePage(const QByteArray& bytes) { return QString::fromLocal8Bit(bytes); }

}  // namespace yunqi::os
