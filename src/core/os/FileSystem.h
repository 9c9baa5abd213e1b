#pragma once

#include <QString>
#include <cstdint>
#include <optional>

// What the output files ask of the operating system: one implementation for
// POSIX systems, one for Windows. Paths are QStrings; each implementation
// turns them into what its calls take.
namespace yunqi::os {

// A system error: errno on POSIX, GetLastError() on Windows; 0 is none.
using Error = long;
QString Reason(Error error);
// The error told for a folder given where a file is meant.
Error IsAFolder();

// An open file: a descriptor on POSIX, a HANDLE on Windows.
using Handle = std::intptr_t;
constexpr Handle kNoHandle = -1;

// What tells two names of one file from two files: device and inode, or on
// Windows volume serial and file index.
struct FileIdentity {
    std::uint64_t volume = 0;
    std::uint64_t file = 0;
    bool operator==(const FileIdentity&) const = default;
};

struct FileInfo {
    bool exists = false;
    bool folder = false;
    bool regular = false;
    // Written where it is, never replaced: not a regular file (a device, a
    // FIFO or pipe, a terminal or console), or a name for a descriptor the
    // process already has.
    bool inPlace = false;
    // No write permission at all (for root too) / the read-only attribute.
    bool readOnly = false;
    // The file to replace: for an existing regular file, or a link to a file
    // not made yet, the one the link names; else the path as given.
    QString file;
    // Known for an existing file the system could be asked about.
    std::optional<FileIdentity> identity;
    // Copied onto the new file where the system has them.
    std::uint32_t mode = 0, uid = 0, gid = 0;
};

// A missing path is no error: exists stays false.
FileInfo Stat(const QString& path, Error* error);
bool IsFolder(const QString& path);
// Whether a new file can be made in folder.
Error CanCreateIn(const QString& folder);
// Whether an existing target may be written (0 when it may).
Error WriteAccess(const QString& path, const FileInfo& info);
// The folder a file is in (never empty) and its name there.
void SplitPath(const QString& file, QString* folder, QString* base);

// A new file "folder/.base.XXXXXX", open for writing; *made is its name.
Handle CreateUnique(const QString& folder, const QString& base, QString* made, Error* error);
// The permissions of like (and owner, where allowed), or a new file's usual ones.
void CopyPermissions(Handle file, const FileInfo& like);
// A device, FIFO or file written in place (a regular file is appended to).
Handle OpenInPlace(const QString& path, const FileInfo& info, Error* error);
// Standard output, after what stdio holds went first; bytes go as they are.
Handle StandardOutput();
Handle OpenToRead(const QString& path, Error* error);
// A closed file opened again so that it can be flushed to disk.
Handle OpenToFlush(const QString& path, Error* error);

// Some of the bytes (*written > 0), or an error.
Error Write(Handle file, const char* data, std::int64_t size, std::int64_t* written);
// Bytes read (0 at the end), or -1 with *error set.
std::int64_t Read(Handle file, char* data, std::int64_t size, Error* error);
Error Flush(Handle file);
Error Close(Handle file);
// from takes the place of to, in one step.
Error Rename(const QString& from, const QString& to);
// The folder's entries reach the disk too, where the system needs it asked.
void SyncFolder(const QString& folder);
bool Remove(const QString& path);

// ---- Folders ----------------------------------------------------------------
//
// A new folder with the usual permissions; an existing one is an error.
Error MakeFolder(const QString& path);
// The two folders trade places in one step. Where the system or the file
// system has no such step, an error and nothing moved.
Error ExchangeFolders(const QString& a, const QString& b);
// A folder locked for this process while the handle is open (Close() it),
// let go however the process ends; kNoHandle when another process holds it,
// or where the system has no such lock.
Handle LockFolder(const QString& path);

// ---- The end of the process -------------------------------------------------
//
// A name in the form the system takes it, copied to the heap (free with
// std::free) so that RemoveNative can use it in a signal handler.
char* NewNativeName(const QString& path);
// Safe in a signal handler; true when the file is gone.
bool RemoveNative(const char* name);

// Once: cleanup runs when the user or the system ends the process, which then
// ends as that event would have ended it. POSIX: SIGINT, SIGTERM, SIGHUP,
// SIGPIPE and SIGABRT (one ignored at start stays ignored), and SIGXFSZ is
// ignored.
// Windows: Ctrl+C, Ctrl+Break, the console closed, logoff and shutdown.
// cleanup returns false when a file could not be removed.
void InstallEndHandler(bool (*cleanup)());
// For the tests: the event that number stands for, sent to this process now.
void SendEndEventForTests(int number);

// While one lives, the end handler does not run on this thread (it may on
// another, where it waits for the change to end).
class EndEventsHeld {
  public:
    EndEventsHeld();
    ~EndEventsHeld();
    EndEventsHeld(const EndEventsHeld&) = delete;
    EndEventsHeld& operator=(const EndEventsHeld&) = delete;

  private:
    alignas(std::uint64_t) unsigned char saved_[128];
};
// A thread that may not go on while the handler runs waits here to be ended.
[[noreturn]] void WaitForTheEnd();
void SleepOneMillisecond();

}  // namespace yunqi::os
