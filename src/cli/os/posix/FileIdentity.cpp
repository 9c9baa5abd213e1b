#include "cli/os/FileIdentity.h"

#include <sys/stat.h>

#include <QFile>

namespace yunqi {

std::optional<FileIdentity> IdentityOf(const QString& path) {
    struct stat st {};
    if (::stat(QFile::encodeName(path).constData(), &st) != 0) return std::nullopt;
    return FileIdentity{std::uint64_t(st.st_dev), std::uint64_t(st.st_ino)};
}

bool IsRegularOrAbsent(const QString& path) {
    struct stat st {};
    if (::stat(QFile::encodeName(path).constData(), &st) != 0) return true;
    return S_ISREG(st.st_mode);
}

}  // namespace yunqi
