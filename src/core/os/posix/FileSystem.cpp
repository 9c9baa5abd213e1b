// The output files' system calls on Linux and other POSIX systems.
#include "core/os/FileSystem.h"

#include <fcntl.h>
#include <pthread.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QFile>
#include <algorithm>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

namespace yunqi::os {

namespace {

QByteArray Native(const QString& path) { return QFile::encodeName(path); }

// Names that stand for a descriptor the process already has: written in
// place even when the descriptor is a regular file (`> out.csv`), since a
// rename would replace the name, not what the shell opened.
bool NamesADescriptor(const QByteArray& p) {
    return p == "/dev/stdout" || p == "/dev/stderr" || p.startsWith("/dev/fd/") ||
           p.startsWith("/proc/");
}

mode_t CurrentUmask() {
    const mode_t mask = ::umask(0);
    ::umask(mask);
    return mask;
}

Error LastError() { return errno; }

// The file a dangling link would name, through a chain of links; empty when
// path is no link.
QByteArray DanglingTarget(const QByteArray& path) {
    QByteArray at = path;
    for (int hops = 0; hops < 40; ++hops) {
        struct stat st {};
        if (::lstat(at.constData(), &st) != 0) return hops > 0 ? at : QByteArray();
        if (!S_ISLNK(st.st_mode)) return QByteArray();
        QByteArray next(PATH_MAX, '\0');
        const ssize_t n = ::readlink(at.constData(), next.data(), next.size());
        if (n <= 0) return QByteArray();
        next.truncate(n);
        // A relative target is read from the link's folder.
        const qsizetype slash = at.lastIndexOf('/');
        if (!next.startsWith('/') && slash >= 0) next = at.left(slash + 1) + next;
        at = next;
    }
    return QByteArray();
}

}  // namespace

QString Reason(Error error) { return QString::fromLocal8Bit(std::strerror(int(error))); }

Error IsAFolder() { return EISDIR; }

FileInfo Stat(const QString& path, Error* error) {
    FileInfo info;
    info.file = path;
    const QByteArray given = Native(path);
    struct stat st {};
    if (::stat(given.constData(), &st) != 0) {
        *error = errno == ENOENT ? 0 : LastError();
        // A link to a file not made yet: the file is made, the link stays.
        if (!*error)
            if (const QByteArray target = DanglingTarget(given); !target.isEmpty())
                info.file = QFile::decodeName(target);
        return info;
    }
    info.exists = true;
    info.folder = S_ISDIR(st.st_mode);
    info.regular = S_ISREG(st.st_mode);
    info.inPlace = !info.folder && (!info.regular || NamesADescriptor(given));
    info.readOnly = (st.st_mode & (S_IWUSR | S_IWGRP | S_IWOTH)) == 0;
    info.mode = st.st_mode;
    info.uid = st.st_uid;
    info.gid = st.st_gid;
    info.identity = FileIdentity{std::uint64_t(st.st_dev), std::uint64_t(st.st_ino)};
    if (info.regular && !info.inPlace) {
        // A link is followed: the file it names is replaced, the link stays.
        char resolved[PATH_MAX];
        if (::realpath(given.constData(), resolved)) info.file = QFile::decodeName(resolved);
    }
    *error = 0;
    return info;
}

bool IsFolder(const QString& path) {
    struct stat st {};
    return ::stat(Native(path).constData(), &st) == 0 && S_ISDIR(st.st_mode);
}

Error CanCreateIn(const QString& folder) {
    return ::access(Native(folder).constData(), W_OK | X_OK) == 0 ? 0 : LastError();
}

Error WriteAccess(const QString& path, const FileInfo&) {
    return ::access(Native(path).constData(), W_OK) == 0 ? 0 : LastError();
}

void SplitPath(const QString& file, QString* folder, QString* base) {
    const qsizetype slash = file.lastIndexOf(QLatin1Char('/'));
    *folder = slash < 0 ? QStringLiteral(".") : slash == 0 ? QStringLiteral("/") : file.left(slash);
    *base = slash < 0 ? file : file.mid(slash + 1);
}

Handle CreateUnique(const QString& folder, const QString& base, QString* made, Error* error) {
    // Room for the suffix within the usual 255-byte name limit, cut between
    // two characters so that the name reads back as it was made.
    QByteArray stem = Native(base);
    qsizetype keep = std::min<qsizetype>(stem.size(), 200);
    while (keep > 0 && keep < stem.size() && (uchar(stem[keep]) & 0xC0) == 0x80) --keep;
    QByteArray pattern = Native(folder) + "/." + stem.left(keep) + ".XXXXXX";
    const int fd = ::mkstemp(pattern.data());
    if (fd < 0) {
        *error = LastError();
        return kNoHandle;
    }
    *made = QFile::decodeName(pattern);
    return fd;
}

void CopyPermissions(Handle file, const FileInfo& like) {
    const int fd = int(file);
    const mode_t mode = like.exists ? (like.mode & 0777) : (0666 & ~CurrentUmask());
    ::fchmod(fd, mode);
    // The owner follows where the system lets it (as root); elsewhere the new
    // file is the writer's, which is no failure.
    if (like.exists && (like.uid != ::geteuid() || like.gid != ::getegid()) &&
        ::fchown(fd, like.uid, like.gid) != 0)
        return;
}

Handle OpenInPlace(const QString& path, const FileInfo& info, Error* error) {
    int flags = O_WRONLY | O_NOCTTY | O_CLOEXEC;
    // A file the shell opened for us keeps what is already in it.
    if (info.regular) flags |= O_APPEND;
    const QByteArray name = Native(path);
    int fd;
    do {
        fd = ::open(name.constData(), flags);
    } while (fd < 0 && errno == EINTR);
    if (fd < 0) *error = LastError();
    return fd;
}

Handle StandardOutput() {
    // What stdio holds goes first, so the order stays.
    std::fflush(stdout);
    return STDOUT_FILENO;
}

Handle OpenToRead(const QString& path, Error* error) {
    const int fd = ::open(Native(path).constData(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) *error = LastError();
    return fd;
}

Handle OpenToFlush(const QString& path, Error* error) { return OpenToRead(path, error); }

Error Write(Handle file, const char* data, std::int64_t size, std::int64_t* written) {
    for (;;) {
        const ssize_t n = ::write(int(file), data, size_t(size));
        if (n < 0 && errno == EINTR) continue;
        if (n < 0) return LastError();
        if (n == 0) return EIO;
        *written = n;
        return 0;
    }
}

std::int64_t Read(Handle file, char* data, std::int64_t size, Error* error) {
    for (;;) {
        const ssize_t n = ::read(int(file), data, size_t(size));
        if (n < 0 && errno == EINTR) continue;
        if (n < 0) *error = LastError();
        return n;
    }
}

Error Flush(Handle file) { return ::fsync(int(file)) == 0 ? 0 : LastError(); }

Error Close(Handle file) {
    // After EINTR the descriptor is gone all the same.
    return ::close(int(file)) == 0 || errno == EINTR ? 0 : LastError();
}

Error Rename(const QString& from, const QString& to) {
    return ::rename(Native(from).constData(), Native(to).constData()) == 0 ? 0 : LastError();
}

void SyncFolder(const QString& folder) {
    const int dir = ::open(Native(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (dir >= 0) {
        ::fsync(dir);
        ::close(dir);
    }
}

bool Remove(const QString& path) { return ::unlink(Native(path).constData()) == 0; }

// ---- Folders ----------------------------------------------------------------

Error MakeFolder(const QString& path) {
    return ::mkdir(Native(path).constData(), 0777) == 0 ? 0 : LastError();
}

Error ExchangeFolders(const QString& a, const QString& b) {
#ifdef RENAME_EXCHANGE
    return ::renameat2(AT_FDCWD, Native(a).constData(), AT_FDCWD, Native(b).constData(),
                       RENAME_EXCHANGE) == 0
               ? 0
               : LastError();
#else
    (void)a;
    (void)b;
    return ENOSYS;
#endif
}

Handle LockFolder(const QString& path) {
    // Not inherited: a companion must not keep its batch's folder locked.
    const int fd = ::open(Native(path).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0) return kNoHandle;
    if (::flock(fd, LOCK_EX | LOCK_NB) == 0) return fd;
    ::close(fd);
    return kNoHandle;
}

// ---- The end of the process -------------------------------------------------

char* NewNativeName(const QString& path) { return strdup(Native(path).constData()); }

bool RemoveNative(const char* name) { return ::unlink(name) == 0 || errno == ENOENT; }

namespace {

// SIGABRT: an abort (a failed allocation where no exception can go) leaves
// nothing behind either.
constexpr int kHandled[] = {SIGINT, SIGTERM, SIGHUP, SIGPIPE, SIGABRT};
bool (*cleanupAtTheEnd)() = nullptr;

void OnSignal(int signal) {
    const int saved = errno;
    cleanupAtTheEnd();
    // SA_RESETHAND put the default action back; it ends the process as soon as
    // the handler returns and the signal is unblocked.
    ::raise(signal);
    errno = saved;
}

}  // namespace

void InstallEndHandler(bool (*cleanup)()) {
    cleanupAtTheEnd = cleanup;
    for (int signal : kHandled) {
        struct sigaction old {};
        if (::sigaction(signal, nullptr, &old) == 0 && old.sa_handler == SIG_IGN) continue;
        struct sigaction action {};
        action.sa_handler = OnSignal;
        sigemptyset(&action.sa_mask);
        action.sa_flags = SA_RESETHAND;
        ::sigaction(signal, &action, nullptr);
    }
    // A file-size limit fails the write, which is told, instead of ending the
    // process silently.
    ::signal(SIGXFSZ, SIG_IGN);
}

// To the process, not the thread: whichever thread may take it does.
void SendEndEventForTests(int number) { ::kill(::getpid(), number); }

static_assert(sizeof(sigset_t) <= 128 && alignof(sigset_t) <= alignof(std::uint64_t));

EndEventsHeld::EndEventsHeld() {
    sigset_t set;
    sigemptyset(&set);
    for (int signal : kHandled) sigaddset(&set, signal);
    ::pthread_sigmask(SIG_BLOCK, &set, reinterpret_cast<sigset_t*>(saved_));
}

EndEventsHeld::~EndEventsHeld() {
    ::pthread_sigmask(SIG_SETMASK, reinterpret_cast<sigset_t*>(saved_), nullptr);
}

void WaitForTheEnd() {
    for (;;) ::pause();
}

void SleepOneMillisecond() {
    const struct timespec tick { 0, 1000000 };
    ::nanosleep(&tick, nullptr);
}

}  // namespace yunqi::os
