#include "core/OutputFile.h"

#include <QDir>
#include <QFile>
#include <QtGlobal>
#include <algorithm>

#include "core/RuntimeError.h"
#include "core/TemporaryFiles.h"
#include "core/os/FileSystem.h"

namespace yunqi {

namespace {

// ---- Failures ----------------------------------------------------------------

[[noreturn]] void Fail(const QString& path, const QString& reason) {
    throw RuntimeError(ErrorCode::PathFileAccess, path + QStringLiteral(": ") + reason);
}

[[noreturn]] void FailWith(const QString& path, os::Error error) { Fail(path, os::Reason(error)); }

void WriteAll(os::Handle file, const char* data, qint64 size, const QString& path) {
    while (size > 0) {
        std::int64_t n = 0;
        if (const os::Error e = os::Write(file, data, std::min<qint64>(size, 1 << 20), &n))
            FailWith(path, e);
        data += n;
        size -= n;
    }
}

// ---- What a path names ---------------------------------------------------------

enum class Kind { Stdout, InPlace, Replace };

struct Target {
    Kind kind = Kind::Replace;
    QString path;  // as given, for messages
    QString file;  // in place: what to open; replace: what to rename over
    QString folder;
    QString base;
    os::FileInfo info;
};

Target Classify(const QString& path, Dash dash) {
    Target t;
    t.path = path;
    if (path.isEmpty()) Fail(QStringLiteral("\"\""), QStringLiteral("an empty path"));
    if (dash == Dash::IsStdout && path == QLatin1String("-")) {
        t.kind = Kind::Stdout;
        t.path = QStringLiteral("standard output");
        return t;
    }
    os::Error error = 0;
    t.info = os::Stat(path, &error);
    if (error) FailWith(path, error);
    if (t.info.folder) FailWith(path, os::IsAFolder());
    t.file = t.info.file;
    if (t.info.inPlace) {
        t.kind = Kind::InPlace;
        return t;
    }
    os::SplitPath(t.file, &t.folder, &t.base);
    return t;
}

void Check(const Target& t) {
    if (t.kind == Kind::Stdout) return;
    if (t.kind == Kind::InPlace) {
        if (const os::Error e = os::WriteAccess(t.file, t.info)) FailWith(t.path, e);
        return;
    }
    if (!os::IsFolder(t.folder)) throw RuntimeError(ErrorCode::PathNotFound, t.folder);
    if (const os::Error e = os::CanCreateIn(t.folder))
        Fail(t.path, QStringLiteral("no new file can be made in ") + t.folder +
                         QStringLiteral(": ") + os::Reason(e));
    if (t.info.exists) {
        if (const os::Error e = os::WriteAccess(t.file, t.info)) FailWith(t.path, e);
        // Root may write anything; a file without a write bit is still read-only.
        if (t.info.readOnly) Fail(t.path, QStringLiteral("the file is read-only"));
    }
}

// A fresh file beside the target (or in the temporary folder), private until
// its permissions are set, registered for the cleanup.
struct Temporary {
    QString name;
    int slot = -1;
    os::Handle file = os::kNoHandle;

    void Create(const QString& folder, const QString& base, const Target& target) {
        os::Error error = 0;
        QString made;
        const os::Handle handle = CreateRegisteredTemporary(folder, base, &made, &error, &slot);
        if (handle == os::kNoHandle) FailWith(target.path, error);
        name = made;
        file = handle;
        os::CopyPermissions(file, target.info);
    }
    void CloseQuietly() {
        if (file != os::kNoHandle) os::Close(file);
        file = os::kNoHandle;
    }
    void Remove() {
        CloseQuietly();
        if (!name.isEmpty()) os::Remove(name);
        UnregisterTemporary(slot);
        slot = -1;
        name.clear();
    }
    // Flushed to disk, closed and renamed over file; each step checked.
    void MoveOver(const Target& target) {
        os::Error error = 0;
        if (file == os::kNoHandle) {
            file = os::OpenToFlush(name, &error);
            if (file == os::kNoHandle) FailWith(target.path, error);
        }
        if ((error = os::Flush(file))) FailWith(target.path, error);
        error = os::Close(file);
        file = os::kNoHandle;
        if (error) FailWith(target.path, error);
        if ((error = os::Rename(name, target.file))) FailWith(target.path, error);
        UnregisterTemporary(slot);
        slot = -1;
        name.clear();
        // The new name reaches the disk too; a folder that refuses is no failure.
        os::SyncFolder(target.folder);
    }
};

}  // namespace

void CheckOutput(const QString& path, Dash dash) { Check(Classify(path, dash)); }

// ---- OutputFile -----------------------------------------------------------------

struct OutputFile::State {
    QString path;
    Dash dash;
    Target target;
    Temporary temp;
    os::Handle file = os::kNoHandle;  // where the bytes go
    bool open = false;
    bool done = false;
};

OutputFile::OutputFile(const QString& path, Dash dash) : d_(new State) {
    d_->path = path;
    d_->dash = dash;
}

OutputFile::~OutputFile() { Abandon(); }

const QString& OutputFile::Path() const { return d_->path; }

void OutputFile::Open() {
    if (d_->open) return;
    d_->target = Classify(d_->path, d_->dash);
    Check(d_->target);
    switch (d_->target.kind) {
        case Kind::Stdout:
            d_->file = os::StandardOutput();
            break;
        case Kind::InPlace: {
            os::Error error = 0;
            d_->file = os::OpenInPlace(d_->target.file, d_->target.info, &error);
            if (d_->file == os::kNoHandle) FailWith(d_->target.path, error);
            break;
        }
        case Kind::Replace:
            d_->temp.Create(d_->target.folder, d_->target.base, d_->target);
            d_->file = d_->temp.file;
            break;
    }
    d_->open = true;
}

void OutputFile::Write(const QByteArray& bytes) {
    if (d_->done) Fail(d_->path, QStringLiteral("written after its end"));
    Open();
    try {
        WriteAll(d_->file, bytes.constData(), bytes.size(), d_->target.path);
    } catch (...) {
        Abandon();
        throw;
    }
}

void OutputFile::Abandon() {
    if (d_->target.kind == Kind::InPlace && d_->file != os::kNoHandle) os::Close(d_->file);
    d_->temp.Remove();
    d_->file = os::kNoHandle;
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
            const os::Error error = os::Close(d_->file);
            d_->file = os::kNoHandle;
            if (error) FailWith(d_->target.path, error);
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
    d_->file = os::kNoHandle;
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
        d_->temp.Create(d_->target.folder, d_->target.base, d_->target);
    } else {
        // A device or FIFO has no folder of ours: staged where temporary files go.
        Target fresh = d_->target;
        fresh.info.exists = false;
        d_->temp.Create(QDir::tempPath(), QStringLiteral("yunqi-output"), fresh);
    }
    d_->temp.CloseQuietly();
    d_->staging = d_->temp.name;
    return d_->staging;
}

void StagedOutput::Commit() {
    StagingPath();
    try {
        if (d_->target.kind == Kind::Replace) {
            d_->temp.MoveOver(d_->target);
            return;
        }
        os::Error error = 0;
        const os::Handle in = os::OpenToRead(d_->temp.name, &error);
        if (in == os::kNoHandle) FailWith(d_->path, error);
        OutputFile out(d_->path, d_->dash);
        out.Open();
        QByteArray chunk(1 << 20, Qt::Uninitialized);
        for (;;) {
            const std::int64_t n = os::Read(in, chunk.data(), chunk.size(), &error);
            if (n < 0) {
                os::Close(in);
                Fail(d_->path, d_->temp.name + QStringLiteral(": ") + os::Reason(error));
            }
            if (n == 0) break;
            try {
                out.Write(QByteArray::fromRawData(chunk.constData(), qsizetype(n)));
            } catch (...) {
                os::Close(in);
                throw;
            }
        }
        os::Close(in);
        out.Commit();
        d_->temp.Remove();
    } catch (...) {
        d_->temp.Remove();
        throw;
    }
}

}  // namespace yunqi
