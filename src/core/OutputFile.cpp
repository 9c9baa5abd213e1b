#include "core/OutputFile.h"

#include <fcntl.h>
#include <pthread.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QtGlobal>
#include <atomic>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

#include "core/RuntimeError.h"

namespace yunqi {

namespace {

// ---- Temporary files removed on signals -------------------------------------
//
// A fixed table of heap strings: the handler only loads pointers and calls
// unlink(2), both safe in a signal handler.
//
// A file is created and registered, and a name freed, inside a TableChange:
// the handled signals are blocked on that thread, and a handler running on
// another thread waits for every change under way to end. Otherwise a signal
// between mkstemp(3) and Register() would leave the file behind.

constexpr int kSlots = 64;
std::atomic<char*> registered[kSlots];
std::atomic<int> changing{0};
std::atomic<bool> ending{false};

constexpr int kHandled[] = {SIGINT, SIGTERM, SIGHUP, SIGPIPE};

class TableChange {
  public:
    TableChange() {
        sigset_t set;
        sigemptyset(&set);
        for (int signal : kHandled) sigaddset(&set, signal);
        ::pthread_sigmask(SIG_BLOCK, &set, &old_);
        changing.fetch_add(1);
        if (ending.load()) {
            // A handler on another thread is removing the files: nothing new
            // is made, and the process ends before long.
            changing.fetch_sub(1);
            for (;;) ::pause();
        }
    }
    ~TableChange() {
        changing.fetch_sub(1);
        ::pthread_sigmask(SIG_SETMASK, &old_, nullptr);
    }
    TableChange(const TableChange&) = delete;
    TableChange& operator=(const TableChange&) = delete;

  private:
    sigset_t old_;
};

int Register(const QByteArray& path) {
    char* copy = strdup(path.constData());
    if (!copy) return -1;
    for (int i = 0; i < kSlots; ++i) {
        char* expected = nullptr;
        if (registered[i].compare_exchange_strong(expected, copy)) return i;
    }
    std::free(copy);  // more than kSlots at once: removed by the destructors only
    return -1;
}

void Unregister(int slot) {
    if (slot < 0) return;
    TableChange change;
    std::free(registered[slot].exchange(nullptr));
}

void UnlinkRegistered() {
    for (auto& slot : registered)
        if (const char* path = slot.load()) ::unlink(path);
}

void OnSignal(int signal) {
    const int saved = errno;
    ending.store(true);
    // A file being made on another thread is registered first; a thread that
    // hangs in open(2) does not keep the process alive for long.
    for (int i = 0; changing.load() > 0 && i < 5000; ++i) {
        const struct timespec tick { 0, 1000000 };
        ::nanosleep(&tick, nullptr);
    }
    UnlinkRegistered();
    // SA_RESETHAND put the default action back; it ends the process as soon as
    // the handler returns and the signal is unblocked.
    ::raise(signal);
    errno = saved;
}

// For the tests: YUNQI_TEST_SIGNAL_AFTER_TEMPORARY=SIGNAL:NAME, read by
// InstallOutputCleanup(), sends SIGNAL to the process right after the
// temporary file of a target called NAME (or "yunqi-output" for one staged in
// the temporary folder) was made and before it is registered, the moment a
// user's signal could otherwise slip in.
int testSignal = 0;
QByteArray testBase;

void SignalForTests(const QByteArray& base) {
    if (testSignal > 0 && base == testBase) ::kill(::getpid(), testSignal);
}

// ---- Failures ----------------------------------------------------------------

QString Reason(int error) { return QString::fromLocal8Bit(std::strerror(error)); }

[[noreturn]] void Fail(const QString& path, const QString& reason) {
    throw RuntimeError(ErrorCode::PathFileAccess, path + QStringLiteral(": ") + reason);
}

[[noreturn]] void FailErrno(const QString& path, int error) { Fail(path, Reason(error)); }

void WriteAll(int fd, const char* data, qint64 size, const QString& path) {
    while (size > 0) {
        const ssize_t n = ::write(fd, data, size_t(std::min<qint64>(size, 1 << 20)));
        if (n < 0) {
            if (errno == EINTR) continue;
            FailErrno(path, errno);
        }
        if (n == 0) FailErrno(path, EIO);
        data += n;
        size -= n;
    }
}

// ---- What a path names ---------------------------------------------------------

enum class Kind { Stdout, InPlace, Replace };

struct Target {
    Kind kind = Kind::Replace;
    QString path;     // as given, for messages
    QByteArray file;  // in place: what to open; replace: what to rename over
    QByteArray folder;
    bool exists = false;
    struct stat st {};
};

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

Target Classify(const QString& path, Dash dash) {
    Target t;
    t.path = path;
    if (path.isEmpty()) Fail(QStringLiteral("\"\""), QStringLiteral("an empty path"));
    if (dash == Dash::IsStdout && path == QLatin1String("-")) {
        t.kind = Kind::Stdout;
        t.path = QStringLiteral("standard output");
        return t;
    }
    const QByteArray given = QFile::encodeName(path);
    if (::stat(given.constData(), &t.st) == 0) {
        t.exists = true;
        if (S_ISDIR(t.st.st_mode)) FailErrno(path, EISDIR);
        if (!S_ISREG(t.st.st_mode) || NamesADescriptor(given)) {
            t.kind = Kind::InPlace;
            t.file = given;
            return t;
        }
        // A link is followed: the file it names is replaced, the link stays.
        char resolved[PATH_MAX];
        t.file = ::realpath(given.constData(), resolved) ? QByteArray(resolved) : given;
    } else if (errno == ENOENT) {
        t.file = given;
    } else {
        FailErrno(path, errno);
    }
    const qsizetype slash = t.file.lastIndexOf('/');
    t.folder = slash < 0 ? QByteArray(".") : slash == 0 ? QByteArray("/") : t.file.left(slash);
    return t;
}

void Check(const Target& t) {
    if (t.kind == Kind::Stdout) return;
    if (t.kind == Kind::InPlace) {
        if (::access(t.file.constData(), W_OK) != 0) FailErrno(t.path, errno);
        return;
    }
    struct stat folder {};
    if (::stat(t.folder.constData(), &folder) != 0 || !S_ISDIR(folder.st_mode))
        throw RuntimeError(ErrorCode::PathNotFound, QFile::decodeName(t.folder));
    if (::access(t.folder.constData(), W_OK | X_OK) != 0)
        Fail(t.path, QStringLiteral("no new file can be made in ") + QFile::decodeName(t.folder) +
                         QStringLiteral(": ") + Reason(errno));
    if (t.exists) {
        if (::access(t.file.constData(), W_OK) != 0) FailErrno(t.path, errno);
        // Root may write anything; a file without a write bit is still read-only.
        if ((t.st.st_mode & (S_IWUSR | S_IWGRP | S_IWOTH)) == 0)
            Fail(t.path, QStringLiteral("the file is read-only"));
    }
}

// A fresh file beside the target (or in the temporary folder), private until
// its mode is set, registered for the cleanup.
struct Temporary {
    QByteArray name;
    int slot = -1;
    int fd = -1;

    void Create(const QByteArray& folder, const QByteArray& base, const Target& target) {
        // Room for the suffix within the usual 255-byte name limit.
        QByteArray pattern = folder + "/." + base.left(200) + ".XXXXXX";
        {
            TableChange change;
            const int made = ::mkstemp(pattern.data());
            if (made < 0) FailErrno(target.path, errno);
            name = pattern;
            fd = made;
            SignalForTests(base);
            slot = Register(name);
        }
        // The target's permissions (and owner, where allowed), else the usual ones.
        const mode_t mode = target.exists ? (target.st.st_mode & 0777) : (0666 & ~CurrentUmask());
        ::fchmod(fd, mode);
        if (target.exists && (target.st.st_uid != ::geteuid() || target.st.st_gid != ::getegid()))
            (void)::fchown(fd, target.st.st_uid, target.st.st_gid);
    }
    void CloseQuietly() {
        if (fd >= 0) ::close(fd);
        fd = -1;
    }
    void Remove() {
        CloseQuietly();
        if (!name.isEmpty()) ::unlink(name.constData());
        Unregister(slot);
        slot = -1;
        name.clear();
    }
    // Flushed to disk, closed and renamed over file; each step checked.
    void MoveOver(const Target& target) {
        if (fd < 0) {
            fd = ::open(name.constData(), O_RDONLY | O_CLOEXEC);
            if (fd < 0) FailErrno(target.path, errno);
        }
        if (::fsync(fd) != 0) FailErrno(target.path, errno);
        const int closed = ::close(fd);
        fd = -1;
        if (closed != 0 && errno != EINTR) FailErrno(target.path, errno);
        if (::rename(name.constData(), target.file.constData()) != 0) FailErrno(target.path, errno);
        Unregister(slot);
        slot = -1;
        name.clear();
        // The new name reaches the disk too; a folder that refuses is no failure.
        const int dir = ::open(target.folder.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        if (dir >= 0) {
            ::fsync(dir);
            ::close(dir);
        }
    }
};

QByteArray BaseName(const QByteArray& file) {
    const qsizetype slash = file.lastIndexOf('/');
    return slash < 0 ? file : file.mid(slash + 1);
}

}  // namespace

void CheckOutput(const QString& path, Dash dash) { Check(Classify(path, dash)); }

// ---- OutputFile -----------------------------------------------------------------

struct OutputFile::State {
    QString path;
    Dash dash;
    Target target;
    Temporary temp;
    int fd = -1;  // where the bytes go
    bool open = false;
    bool done = false;
};

OutputFile::OutputFile(const QString& path, Dash dash) : d_(new State) {
    d_->path = path;
    d_->dash = dash;
}

OutputFile::~OutputFile() { Abandon(); }

const QString& OutputFile::Path() const { return d_->path; }

bool OutputFile::IsOpen() const { return d_->open; }

void OutputFile::Open() {
    if (d_->open) return;
    d_->target = Classify(d_->path, d_->dash);
    Check(d_->target);
    switch (d_->target.kind) {
        case Kind::Stdout:
            // What stdio holds goes first, so the order stays.
            std::fflush(stdout);
            d_->fd = STDOUT_FILENO;
            break;
        case Kind::InPlace: {
            int flags = O_WRONLY | O_NOCTTY | O_CLOEXEC;
            // A file the shell opened for us keeps what is already in it.
            if (S_ISREG(d_->target.st.st_mode)) flags |= O_APPEND;
            do {
                d_->fd = ::open(d_->target.file.constData(), flags);
            } while (d_->fd < 0 && errno == EINTR);
            if (d_->fd < 0) FailErrno(d_->target.path, errno);
            break;
        }
        case Kind::Replace:
            d_->temp.Create(d_->target.folder, BaseName(d_->target.file), d_->target);
            d_->fd = d_->temp.fd;
            break;
    }
    d_->open = true;
}

void OutputFile::Write(const QByteArray& bytes) {
    if (d_->done) Fail(d_->path, QStringLiteral("written after its end"));
    Open();
    try {
        WriteAll(d_->fd, bytes.constData(), bytes.size(), d_->target.path);
    } catch (...) {
        Abandon();
        throw;
    }
}

void OutputFile::Abandon() {
    if (d_->target.kind == Kind::InPlace && d_->fd >= 0) ::close(d_->fd);
    d_->temp.Remove();
    d_->fd = -1;
    d_->done = true;
}

void OutputFile::Commit() {
    if (d_->done) Fail(d_->path, QStringLiteral("written after its end"));
    Open();
    d_->done = true;
    switch (d_->target.kind) {
        case Kind::Stdout:
            break;
        case Kind::InPlace: {
            const int closed = ::close(d_->fd);
            d_->fd = -1;
            if (closed != 0 && errno != EINTR) FailErrno(d_->target.path, errno);
            break;
        }
        case Kind::Replace:
            try {
                d_->temp.MoveOver(d_->target);
            } catch (...) {
                d_->temp.Remove();
                throw;
            }
            break;
    }
    d_->fd = -1;
}

void WriteOutputFile(const QString& path, const QByteArray& bytes, Dash dash) {
    OutputFile out(path, dash);
    out.Write(bytes);
    out.Commit();
}

// ---- StagedOutput -------------------------------------------------------------

struct StagedOutput::State {
    QString path;
    Dash dash;
    Target target;
    Temporary temp;
    QString staging;
};

StagedOutput::StagedOutput(const QString& path, Dash dash) : d_(new State) {
    d_->path = path;
    d_->dash = dash;
    d_->target = Classify(path, dash);
    Check(d_->target);
}

StagedOutput::~StagedOutput() { d_->temp.Remove(); }

const QString& StagedOutput::Path() const { return d_->path; }

const QString& StagedOutput::StagingPath() {
    if (!d_->staging.isEmpty()) return d_->staging;
    if (d_->target.kind == Kind::Replace) {
        d_->temp.Create(d_->target.folder, BaseName(d_->target.file), d_->target);
    } else {
        // A device or FIFO has no folder of ours: staged where temporary files go.
        Target fresh = d_->target;
        fresh.exists = false;
        d_->temp.Create(QFile::encodeName(QDir::tempPath()), "yunqi-output", fresh);
    }
    d_->temp.CloseQuietly();
    d_->staging = QFile::decodeName(d_->temp.name);
    return d_->staging;
}

void StagedOutput::Commit() {
    StagingPath();
    try {
        if (d_->target.kind == Kind::Replace) {
            d_->temp.MoveOver(d_->target);
            return;
        }
        const int in = ::open(d_->temp.name.constData(), O_RDONLY | O_CLOEXEC);
        if (in < 0) FailErrno(d_->path, errno);
        OutputFile out(d_->path, d_->dash);
        out.Open();
        QByteArray chunk(1 << 20, Qt::Uninitialized);
        for (;;) {
            const ssize_t n = ::read(in, chunk.data(), size_t(chunk.size()));
            if (n < 0 && errno == EINTR) continue;
            if (n < 0) {
                const int error = errno;
                ::close(in);
                Fail(d_->path,
                     QFile::decodeName(d_->temp.name) + QStringLiteral(": ") + Reason(error));
            }
            if (n == 0) break;
            try {
                out.Write(QByteArray::fromRawData(chunk.constData(), n));
            } catch (...) {
                ::close(in);
                throw;
            }
        }
        ::close(in);
        out.Commit();
        d_->temp.Remove();
    } catch (...) {
        d_->temp.Remove();
        throw;
    }
}

// ---- Signals ---------------------------------------------------------------------

void InstallOutputCleanup() {
    const QByteArray test = qgetenv("YUNQI_TEST_SIGNAL_AFTER_TEMPORARY");
    if (const qsizetype colon = test.indexOf(':'); colon > 0) {
        testSignal = test.left(colon).toInt();
        testBase = test.mid(colon + 1);
    }
    for (int signal : kHandled) {
        struct sigaction old {};
        if (::sigaction(signal, nullptr, &old) == 0 && old.sa_handler == SIG_IGN) continue;
        struct sigaction action {};
        action.sa_handler = OnSignal;
        sigemptyset(&action.sa_mask);
        action.sa_flags = SA_RESETHAND;
        ::sigaction(signal, &action, nullptr);
    }
    ::signal(SIGXFSZ, SIG_IGN);
}

void RemoveTemporaryOutputs() { UnlinkRegistered(); }

}  // namespace yunqi
