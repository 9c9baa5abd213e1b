#pragma once

#include <QByteArray>
#include <QString>
#include <memory>

namespace yunqi {

// Output files that lose nothing and tell every failure.
//
// A regular file, or a name not taken yet, is written under a temporary name
// beside it (".NAME.XXXXXX", the target's permissions) and renamed over it
// only after every write, the flush to disk and the close succeeded; a symbolic
// link is followed, so the link stays and its file is replaced (or made, for a
// link to a file not made yet). A target that exists and is not a regular file
// (a device such as /dev/null or /dev/full, a FIFO, a terminal, /dev/stdout and
// the other /dev/fd and /proc/.../fd names) is written in place and never
// replaced.
//
// Every failure throws RuntimeError 75 (76 when the folder is missing) whose
// description names the target and gives the system's reason. The old file is
// then as it was, and no temporary file is left: the destructors remove them,
// and once InstallOutputCleanup() ran (core/TemporaryFiles.h) so do SIGINT,
// SIGTERM, SIGHUP, SIGPIPE and SIGABRT.

// What "-" names: standard output (`--csv -`), or a file called "-".
enum class Dash { IsStdout, IsFileName };

// Refuses what can't be written, before any work is done: an empty path, a
// folder, a missing folder or one that takes no new file, a file without
// write permission (for root too: a file with no write bit at all is
// read-only). Throws RuntimeError as above; returns when the path will do.
void CheckOutput(const QString& path, Dash dash = Dash::IsFileName);

// Bytes streamed to one target. Nothing is created before Open() or the
// first Write(); Commit() makes the output final.
class OutputFile {
  public:
    explicit OutputFile(const QString& path, Dash dash = Dash::IsFileName);
    // Without Commit(): the temporary file is removed and the target untouched
    // (what went in place stays written).
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    // Checks the target as CheckOutput does and opens it (a FIFO waits here
    // for its reader).
    void Open();
    // All of the bytes, or a throw: a short count is a failure.
    void Write(const QByteArray& bytes);
    // Flushed to disk and closed, each checked, then renamed over the target.
    void Commit();
    const QString& Path() const;

  private:
    void Abandon();

    struct State;
    std::unique_ptr<State> d_;
};

// A file that another library writes by its name (the SQLite engine, the
// workbook writer): StagingPath() is a fresh empty file that belongs to the
// cleanup; Commit() makes it the target: flushed and renamed beside a regular
// file, or copied into a device, FIFO or standard output in place (staged then
// in the temporary folder).
class StagedOutput {
  public:
    // Checks the target as CheckOutput does.
    explicit StagedOutput(const QString& path, Dash dash = Dash::IsFileName);
    ~StagedOutput();
    StagedOutput(const StagedOutput&) = delete;
    StagedOutput& operator=(const StagedOutput&) = delete;

    // Created at the first call.
    const QString& StagingPath();
    void Commit();
    const QString& Path() const;

  private:
    struct State;
    std::unique_ptr<State> d_;
};

// The whole of bytes to path, as OutputFile writes it.
void WriteOutputFile(const QString& path, const QByteArray& bytes, Dash dash = Dash::IsFileName);

}  // namespace yunqi
