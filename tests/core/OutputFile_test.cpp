#include "core/OutputFile.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <csignal>
#include <cstdio>
#include <string>
#include <thread>

#include "core/RuntimeError.h"

using namespace yunqi;

namespace {

QByteArray Read(const QString& path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

void Write(const QString& path, const QByteArray& bytes) {
    QFile f(path);
    f.open(QIODevice::WriteOnly | QIODevice::Truncate);
    f.write(bytes);
}

QStringList Hidden(const QString& dir) {
    QStringList hidden;
    for (const QString& n : QDir(dir).entryList(QDir::Files | QDir::Hidden | QDir::System))
        if (n.startsWith('.')) hidden << n;
    return hidden;
}

struct stat Stat(const QString& path) {
    struct stat st {};
    ::lstat(QFile::encodeName(path).constData(), &st);
    return st;
}

QString Failure(const std::function<void()>& f) {
    try {
        f();
    } catch (const RuntimeError& e) {
        return QString::number(e.number()) + ' ' + e.description();
    }
    return QString();
}

}  // namespace

TEST(OutputFileTest, ARegularFileIsReplacedOnlyAtCommit) {
    QTemporaryDir dir;
    const QString target = dir.filePath("out.csv");
    Write(target, "old");
    ::chmod(QFile::encodeName(target).constData(), 0640);
    {
        OutputFile out(target);
        out.Write("new ");
        out.Write("text");
        EXPECT_EQ(Read(target), "old");
        EXPECT_EQ(Hidden(dir.path()).size(), 1);
        EXPECT_TRUE(Hidden(dir.path()).value(0).startsWith(".out.csv."));
        out.Commit();
    }
    EXPECT_EQ(Read(target), "new text");
    EXPECT_EQ(Stat(target).st_mode & 0777, 0640u);
    EXPECT_TRUE(Hidden(dir.path()).isEmpty());
    // Never committed: the old file stays, the temporary file goes.
    {
        OutputFile out(target);
        out.Write("lost");
    }
    EXPECT_EQ(Read(target), "new text");
    EXPECT_TRUE(Hidden(dir.path()).isEmpty());
    // Nothing is made before the first write.
    { OutputFile out(dir.filePath("never")); }
    EXPECT_FALSE(QFile::exists(dir.filePath("never")));
}

TEST(OutputFileTest, ALinkStaysALinkAndItsFileIsReplaced) {
    QTemporaryDir dir;
    QDir(dir.path()).mkdir("real");
    const QString file = dir.filePath("real/data.csv"), link = dir.filePath("link.csv");
    Write(file, "old");
    ASSERT_TRUE(QFile::link(file, link));
    WriteOutputFile(link, "new");
    EXPECT_TRUE(S_ISLNK(Stat(link).st_mode));
    EXPECT_EQ(Read(file), "new");
    EXPECT_TRUE(Hidden(dir.filePath("real")).isEmpty());
}

TEST(OutputFileTest, AFifoIsWrittenInPlace) {
    QTemporaryDir dir;
    const QString fifo = dir.filePath("pipe");
    ASSERT_EQ(::mkfifo(QFile::encodeName(fifo).constData(), 0600), 0);
    QByteArray got;
    std::thread reader([&] {
        QFile f(fifo);
        if (f.open(QIODevice::ReadOnly)) got = f.readAll();
    });
    WriteOutputFile(fifo, "through the pipe");
    reader.join();
    EXPECT_EQ(got, "through the pipe");
    EXPECT_TRUE(S_ISFIFO(Stat(fifo).st_mode));
    // A staged output (a file another library writes) reaches the FIFO too.
    std::thread reader2([&] {
        QFile f(fifo);
        if (f.open(QIODevice::ReadOnly)) got = f.readAll();
    });
    {
        StagedOutput staged(fifo);
        Write(staged.StagingPath(), "staged bytes");
        EXPECT_FALSE(staged.StagingPath().startsWith(dir.path()));
        staged.Commit();
    }
    reader2.join();
    EXPECT_EQ(got, "staged bytes");
    EXPECT_TRUE(S_ISFIFO(Stat(fifo).st_mode));
}

TEST(OutputFileTest, DevFullFailsWithThePathAndStaysADevice) {
    const QString text = Failure([] { WriteOutputFile("/dev/full", QByteArray(100000, 'x')); });
    EXPECT_EQ(text, "75 Path/File access error: /dev/full: No space left on device");
    EXPECT_TRUE(S_ISCHR(Stat("/dev/full").st_mode));
    WriteOutputFile("/dev/null", "gone");
    EXPECT_TRUE(S_ISCHR(Stat("/dev/null").st_mode));
}

TEST(OutputFileTest, WhatCannotBeWrittenIsRefusedBeforehand) {
    QTemporaryDir dir;
    const QString ro = dir.filePath("ro.csv");
    Write(ro, "keep");
    ::chmod(QFile::encodeName(ro).constData(), 0444);
    EXPECT_TRUE(Failure([&] { CheckOutput(ro); }).startsWith("75 "));
    EXPECT_TRUE(Failure([&] { OutputFile(ro).Open(); }).startsWith("75 "));
    EXPECT_TRUE(Failure([&] { StagedOutput staged(ro); }).startsWith("75 "));
    EXPECT_EQ(Read(ro), "keep");
    EXPECT_EQ(Failure([&] { CheckOutput(dir.path()); }),
              "75 Path/File access error: " + dir.path() + ": Is a directory");
    EXPECT_TRUE(Failure([&] { CheckOutput(dir.filePath("no/x.csv")); }).startsWith("76 "));
    EXPECT_FALSE(Failure([] { CheckOutput(""); }).isEmpty());
    EXPECT_TRUE(Failure([] { CheckOutput("-", Dash::IsStdout); }).isEmpty());
    EXPECT_TRUE(Hidden(dir.path()).isEmpty());
}

TEST(OutputFileTest, AShortWriteUnderAFileSizeLimitKeepsTheOldFile) {
    QTemporaryDir dir;
    const QString target = dir.filePath("old.csv");
    Write(target, "the old file");
    EXPECT_EXIT(
        {
            std::signal(SIGXFSZ, SIG_IGN);
            struct rlimit rl;
            rl.rlim_cur = rl.rlim_max = 4096;
            setrlimit(RLIMIT_FSIZE, &rl);
            const QString text = Failure([&] { WriteOutputFile(target, QByteArray(100000, 'x')); });
            std::fprintf(stderr, "%s\n", text.toUtf8().constData());
            std::fflush(stderr);
            std::_Exit(text.isEmpty() ? 0 : 1);
        },
        ::testing::ExitedWithCode(1), "75 .*old.csv: File too large");
    EXPECT_EQ(Read(target), "the old file");
    EXPECT_TRUE(Hidden(dir.path()).isEmpty());
}

TEST(OutputFileTest, SignalsRemoveTheTemporaryFiles) {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGPIPE}) {
        QTemporaryDir dir;
        const QString target = dir.filePath("out.csv");
        Write(target, "old");
        EXPECT_EXIT(
            {
                InstallOutputCleanup();
                OutputFile out(target);
                out.Write("half");
                StagedOutput staged(dir.filePath("db.sqlite"));
                Write(staged.StagingPath(), "half a ledger");
                ::raise(signal);
                std::_Exit(0);
            },
            ::testing::KilledBySignal(signal), "");
        EXPECT_EQ(Read(target), "old") << signal;
        EXPECT_TRUE(Hidden(dir.path()).isEmpty())
            << signal << Hidden(dir.path()).join(' ').toStdString();
        EXPECT_FALSE(QFile::exists(dir.filePath("db.sqlite")));
    }
}

// While one thread makes a temporary file, a signal that another thread takes
// waits until the file is registered, then removes it.
TEST(OutputFileTest, ASignalOnAnotherThreadWaitsForTheTemporaryFile) {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGPIPE}) {
        QTemporaryDir dir;
        const QString target = dir.filePath("out.csv");
        Write(target, "old");
        EXPECT_EXIT(
            {
                // The one thread free to take the signal while the file is made.
                std::thread idle([] {
                    for (;;) ::pause();
                });
                const std::string hook = std::to_string(signal) + ":out.csv";
                ::setenv("YUNQI_TEST_SIGNAL_AFTER_TEMPORARY", hook.c_str(), 1);
                InstallOutputCleanup();
                OutputFile out(target);
                out.Write("half");
                // Ended by the signal; SIGALRM only if it never comes.
                ::alarm(60);
                for (;;) ::pause();
            },
            ::testing::KilledBySignal(signal), "");
        EXPECT_EQ(Read(target), "old") << signal;
        EXPECT_TRUE(Hidden(dir.path()).isEmpty())
            << signal << Hidden(dir.path()).join(' ').toStdString();
    }
}
