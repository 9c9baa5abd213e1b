// The output files' system calls on Windows. Paths go to the wide-character
// calls (office paths hold Chinese, which the ANSI code page may not), bytes
// go as they are, never through a text mode.
#include "core/os/FileSystem.h"

#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include <QDir>
#include <QRandomGenerator>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace yunqi::os {

namespace {

std::wstring Wide(const QString& path) { return QDir::toNativeSeparators(path).toStdWString(); }

HANDLE H(Handle file) { return reinterpret_cast<HANDLE>(file); }
Handle Of(HANDLE file) { return reinterpret_cast<Handle>(file); }

Error LastError() { return Error(GetLastError()); }

bool Missing(DWORD error) { return error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND; }

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

// Opening a pipe by its name would take one of the server's instances.
bool NamesAPipe(const QString& path) {
    const QString name = QDir::toNativeSeparators(path);
    return name.startsWith(QLatin1String("\\\\.\\pipe\\"), Qt::CaseInsensitive) ||
           name.startsWith(QLatin1String("\\\\?\\pipe\\"), Qt::CaseInsensitive);
}

// What a link names, without the "\\?\" prefix where the path is short
// enough to do without it.
QString FinalPath(HANDLE file, const QString& given) {
    std::wstring buffer(MAX_PATH, L'\0');
    const DWORD flags = FILE_NAME_NORMALIZED | VOLUME_NAME_DOS;
    DWORD n = GetFinalPathNameByHandleW(file, buffer.data(), DWORD(buffer.size()), flags);
    if (n >= buffer.size()) {
        buffer.resize(n + 1);
        n = GetFinalPathNameByHandleW(file, buffer.data(), DWORD(buffer.size()), flags);
    }
    if (n == 0 || n >= buffer.size()) return given;
    QString path = QString::fromWCharArray(buffer.data(), qsizetype(n));
    if (path.size() < MAX_PATH + 4) {
        if (path.startsWith(QLatin1String("\\\\?\\UNC\\")))
            path = QStringLiteral("\\\\") + path.mid(8);
        else if (path.startsWith(QLatin1String("\\\\?\\")) && path.size() > 6 && path[5] == u':')
            path = path.mid(4);
    }
    return path;
}

QString Join(const QString& folder, const QString& name) {
    const bool separated = folder.endsWith(u'/') || folder.endsWith(u'\\');
    return QDir::toNativeSeparators(separated ? folder + name : folder + u'\\' + name);
}

QString Suffix() {
    static const char kLetters[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789";
    QString suffix;
    for (int i = 0; i < 6; ++i)
        suffix += QLatin1Char(kLetters[QRandomGenerator::global()->bounded(62)]);
    return suffix;
}

}  // namespace

QString Reason(Error error) {
    wchar_t* text = nullptr;
    const DWORD n = FormatMessageW(
        FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
        nullptr, DWORD(error), 0, reinterpret_cast<wchar_t*>(&text), 0, nullptr);
    QString reason = n ? QString::fromWCharArray(text, qsizetype(n)).trimmed() : QString();
    if (text) LocalFree(text);
    // Not every system has a text for our own choice of error.
    if (reason.isEmpty())
        reason = error == IsAFolder() ? QStringLiteral("Is a directory")
                                      : QStringLiteral("system error %1").arg(DWORD(error));
    return reason;
}

// ERROR_DIRECTORY_NOT_SUPPORTED, which the mingw headers lack.
Error IsAFolder() { return 336; }

FileInfo Stat(const QString& path, Error* error) {
    FileInfo info;
    info.file = path;
    *error = 0;
    if (NamesAPipe(path)) {
        info.exists = info.inPlace = true;
        return info;
    }
    const std::wstring name = Wide(path);
    // Only the attributes: no sharing mode stands in the way.
    HANDLE file = CreateFileW(name.c_str(), FILE_READ_ATTRIBUTES, kShareAll, nullptr, OPEN_EXISTING,
                              FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        const DWORD first = GetLastError();
        if (Missing(first)) return info;
        // A console opens only for reading or writing.
        file = CreateFileW(name.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                           OPEN_EXISTING, 0, nullptr);
        if (file == INVALID_HANDLE_VALUE) {
            WIN32_FILE_ATTRIBUTE_DATA data{};
            if (!GetFileAttributesExW(name.c_str(), GetFileExInfoStandard, &data)) {
                *error = Error(first);
                return info;
            }
            info.exists = true;
            info.folder = (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
            info.regular = !info.folder;
            info.readOnly = (data.dwFileAttributes & FILE_ATTRIBUTE_READONLY) != 0;
            return info;
        }
    }
    info.exists = true;
    if (GetFileType(file) == FILE_TYPE_DISK) {
        BY_HANDLE_FILE_INFORMATION data{};
        if (GetFileInformationByHandle(file, &data)) {
            info.folder = (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
            info.readOnly = (data.dwFileAttributes & FILE_ATTRIBUTE_READONLY) != 0;
            info.identity =
                FileIdentity{data.dwVolumeSerialNumber,
                             (std::uint64_t(data.nFileIndexHigh) << 32) | data.nFileIndexLow};
        }
        info.regular = !info.folder;
        // A link is followed: the file it names is replaced, the link stays.
        if (info.regular) info.file = FinalPath(file, path);
    } else {
        info.inPlace = true;  // NUL, CON, a serial port, a pipe
    }
    CloseHandle(file);
    return info;
}

bool IsFolder(const QString& path) {
    const DWORD attributes = GetFileAttributesW(Wide(path).c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY);
}

Error CanCreateIn(const QString& folder) {
    // A folder's read-only attribute means nothing here: a probe file is made,
    // and goes at its close even if the process is killed first.
    for (int attempt = 0; attempt < 100; ++attempt) {
        const std::wstring probe = Wide(Join(folder, QStringLiteral(".yunqi-probe.") + Suffix()));
        const HANDLE file = CreateFileW(
            probe.c_str(), GENERIC_WRITE | DELETE, 0, nullptr, CREATE_NEW,
            FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE, nullptr);
        if (file != INVALID_HANDLE_VALUE) {
            CloseHandle(file);
            return 0;
        }
        if (GetLastError() != ERROR_FILE_EXISTS) return LastError();
    }
    return ERROR_FILE_EXISTS;
}

Error WriteAccess(const QString& path, const FileInfo& info) {
    // A device or pipe: opening it is the test. The read-only attribute is
    // told by the caller in its own words.
    if (info.inPlace || info.readOnly) return 0;
    // Opened as the rename will need it, so that a file another program holds
    // open is refused now, not after the work.
    const HANDLE file = CreateFileW(Wide(path).c_str(), GENERIC_WRITE | DELETE, kShareAll, nullptr,
                                    OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) return LastError();
    CloseHandle(file);
    return 0;
}

void SplitPath(const QString& file, QString* folder, QString* base) {
    const qsizetype separator = std::max(file.lastIndexOf(u'/'), file.lastIndexOf(u'\\'));
    const bool drive = file.size() >= 2 && file[1] == u':';
    if (separator < 0) {
        // "x.csv", or "C:x.csv" in the current folder of drive C.
        *folder = drive ? file.left(2) + u'.' : QStringLiteral(".");
        *base = drive ? file.mid(2) : file;
        return;
    }
    // A root keeps its separator: "\", "C:\".
    const bool root = separator == 0 || (drive && separator == 2);
    *folder = file.left(root ? separator + 1 : separator);
    *base = file.mid(separator + 1);
}

Handle CreateUnique(const QString& folder, const QString& base, QString* made, Error* error) {
    // Room for the suffix within the 255-character name limit, and no half
    // of a surrogate pair.
    qsizetype keep = std::min<qsizetype>(base.size(), 200);
    if (keep > 0 && keep < base.size() && base[keep - 1].isHighSurrogate()) --keep;
    const QString stem = Join(folder, u'.' + base.left(keep) + u'.');
    for (int attempt = 0; attempt < 100; ++attempt) {
        const QString name = stem + Suffix();
        // Shared for deletion: the end handler removes it while it is open.
        const HANDLE file =
            CreateFileW(Wide(name).c_str(), GENERIC_READ | GENERIC_WRITE | DELETE, kShareAll,
                        nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
        if (file != INVALID_HANDLE_VALUE) {
            *made = name;
            return Of(file);
        }
        if (GetLastError() != ERROR_FILE_EXISTS) {
            *error = LastError();
            return kNoHandle;
        }
    }
    *error = ERROR_FILE_EXISTS;
    return kNoHandle;
}

// Modes and owners have no meaning here; a new file takes the folder's rights.
void CopyPermissions(Handle, const FileInfo&) {}

Handle OpenInPlace(const QString& path, const FileInfo&, Error* error) {
    const HANDLE file =
        CreateFileW(Wide(path).c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                    OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) *error = LastError();
    return Of(file);
}

Handle StandardOutput() {
    // What stdio holds goes first, so the order stays; binary from now on,
    // for stdio's later writes too, so that "\n" stays one byte as on Linux.
    std::fflush(stdout);
    const int fd = _fileno(stdout);
    if (fd < 0) return kNoHandle;
    _setmode(fd, _O_BINARY);
    return Handle(_get_osfhandle(fd));
}

Handle OpenToRead(const QString& path, Error* error) {
    const HANDLE file = CreateFileW(Wide(path).c_str(), GENERIC_READ, kShareAll, nullptr,
                                    OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr);
    if (file == INVALID_HANDLE_VALUE) *error = LastError();
    return Of(file);
}

Handle OpenToFlush(const QString& path, Error* error) {
    // FlushFileBuffers needs the right to write.
    const HANDLE file = CreateFileW(Wide(path).c_str(), GENERIC_READ | GENERIC_WRITE, kShareAll,
                                    nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) *error = LastError();
    return Of(file);
}

Error Write(Handle file, const char* data, std::int64_t size, std::int64_t* written) {
    // INVALID_HANDLE_VALUE is also the process's own pseudo-handle.
    if (file == kNoHandle || file == -2) return ERROR_INVALID_HANDLE;
    DWORD n = 0;
    if (!WriteFile(H(file), data, DWORD(std::min<std::int64_t>(size, 1 << 30)), &n, nullptr))
        return LastError();
    if (n == 0) return ERROR_WRITE_FAULT;
    *written = n;
    return 0;
}

std::int64_t Read(Handle file, char* data, std::int64_t size, Error* error) {
    DWORD n = 0;
    if (!ReadFile(H(file), data, DWORD(std::min<std::int64_t>(size, 1 << 30)), &n, nullptr)) {
        if (GetLastError() == ERROR_BROKEN_PIPE) return 0;
        *error = LastError();
        return -1;
    }
    return n;
}

Error Flush(Handle file) { return FlushFileBuffers(H(file)) ? 0 : LastError(); }

Error Close(Handle file) { return CloseHandle(H(file)) ? 0 : LastError(); }

Error Rename(const QString& from, const QString& to) {
    // Write-through: the move is on the disk when the call returns.
    return MoveFileExW(Wide(from).c_str(), Wide(to).c_str(),
                       MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH)
               ? 0
               : LastError();
}

void SyncFolder(const QString&) {}

bool Remove(const QString& path) { return DeleteFileW(Wide(path).c_str()); }

Error MakeFolder(const QString& path) {
    return CreateDirectoryW(Wide(path).c_str(), nullptr) ? 0 : LastError();
}

// No call trades two folders' places.
Error ExchangeFolders(const QString&, const QString&) { return ERROR_NOT_SUPPORTED; }

// A handle that shares nothing would keep the folder from being removed.
Handle LockFolder(const QString&) { return kNoHandle; }

// ---- The end of the process -------------------------------------------------

char* NewNativeName(const QString& path) {
    const std::wstring name = Wide(path);
    const size_t bytes = (name.size() + 1) * sizeof(wchar_t);
    char* copy = static_cast<char*>(std::malloc(bytes));
    if (copy) std::memcpy(copy, name.c_str(), bytes);
    return copy;
}

bool RemoveNative(const char* name) {
    return DeleteFileW(reinterpret_cast<const wchar_t*>(name)) ||
           GetLastError() == ERROR_FILE_NOT_FOUND;
}

namespace {

bool (*cleanupAtTheEnd)() = nullptr;

// Runs on a thread the system starts for the event.
BOOL WINAPI OnConsoleEvent(DWORD event) {
    switch (event) {
        case CTRL_C_EVENT:
        case CTRL_BREAK_EVENT:
        case CTRL_CLOSE_EVENT:
        case CTRL_LOGOFF_EVENT:
        case CTRL_SHUTDOWN_EVENT:
            break;
        default:
            return FALSE;
    }
    if (!cleanupAtTheEnd()) {
        // A file open through the C runtime (the workbook writer's) can't be
        // deleted: its streams are closed, and the files tried again.
        _fcloseall();
        cleanupAtTheEnd();
    }
    // As the system ends a process on Ctrl+C.
    ExitProcess(STATUS_CONTROL_C_EXIT);
}

DWORD WINAPI EventThread(LPVOID) { return OnConsoleEvent(CTRL_C_EVENT); }

}  // namespace

void InstallEndHandler(bool (*cleanup)()) {
    cleanupAtTheEnd = cleanup;
    SetConsoleCtrlHandler(OnConsoleEvent, TRUE);
}

// Any number is a Ctrl+C, handled on a thread of its own as the system does.
void SendEndEventForTests(int) {
    if (const HANDLE thread = CreateThread(nullptr, 0, EventThread, nullptr, 0, nullptr))
        CloseHandle(thread);
}

EndEventsHeld::EndEventsHeld() {}
EndEventsHeld::~EndEventsHeld() {}

void WaitForTheEnd() {
    for (;;) Sleep(INFINITE);
}

void SleepOneMillisecond() { Sleep(1); }

}  // namespace yunqi::os
