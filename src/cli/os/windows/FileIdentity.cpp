#include "cli/os/FileIdentity.h"

#include <windows.h>

namespace yunqi {

namespace {

// Opened for no access at all, so that a file another program holds open,
// or a folder, can still be asked.
HANDLE OpenToAsk(const QString& path) {
    return ::CreateFileW(reinterpret_cast<const wchar_t*>(path.utf16()), 0,
                         FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                         OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
}

}  // namespace

std::optional<FileIdentity> IdentityOf(const QString& path) {
    const HANDLE h = OpenToAsk(path);
    if (h == INVALID_HANDLE_VALUE) return std::nullopt;
    BY_HANDLE_FILE_INFORMATION info{};
    const bool ok = ::GetFileInformationByHandle(h, &info);
    ::CloseHandle(h);
    if (!ok) return std::nullopt;
    return FileIdentity{info.dwVolumeSerialNumber,
                        (std::uint64_t(info.nFileIndexHigh) << 32) | info.nFileIndexLow};
}

bool IsRegularOrAbsent(const QString& path) {
    const HANDLE h = OpenToAsk(path);
    if (h == INVALID_HANDLE_VALUE) return true;
    BY_HANDLE_FILE_INFORMATION info{};
    const bool ok = ::GetFileInformationByHandle(h, &info);
    const DWORD type = ::GetFileType(h);
    ::CloseHandle(h);
    return type == FILE_TYPE_DISK && !(ok && (info.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY));
}

}  // namespace yunqi
