// The safe output path alone. What users meet (devices, FIFOs, full disks,
// read-only files, signals) is run end to end in tests/cli/OutputFaults.
#include "core/OutputFile.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QTemporaryDir>
#include <csignal>
#include <functional>
#include <string>
#include <thread>

#include "core/RuntimeError.h"
#include "core/TemporaryFiles.h"
#include "support/Files.h"

using namespace yunqi;

using namespace yunqi::test;

TEST(OutputFileTest, ARegularFileIsReplacedOnlyAtCommit) {
    QTemporaryDir dir;
    const QString target = dir.filePath("out.csv");
    WriteAll(target, "old");
    {
        OutputFile out(target);
        out.Write("new ");
        out.Write("text");
        EXPECT_EQ(ReadAll(target), "old");
        EXPECT_EQ(HiddenFiles(dir.path()).size(), 1);
        EXPECT_TRUE(HiddenFiles(dir.path()).value(0).startsWith(".out.csv."));
        out.Commit();
    }
    EXPECT_EQ(ReadAll(target), "new text");
    // Never committed: the old file stays, the temporary file goes.
    {
        OutputFile out(target);
        out.Write("lost");
    }
    EXPECT_EQ(ReadAll(target), "new text");
    EXPECT_TRUE(HiddenFiles(dir.path()).isEmpty());
    // Nothing is made before the first write.
    { OutputFile out(dir.filePath("never")); }
    EXPECT_FALSE(QFile::exists(dir.filePath("never")));
    // A link stays a link; the file it names is replaced.
    QDir(dir.path()).mkdir("real");
    ASSERT_TRUE(QFile::link(dir.filePath("real/data.csv"), dir.filePath("link.csv")));
    WriteAll(dir.filePath("real/data.csv"), "old");
    WriteOutputFile(dir.filePath("link.csv"), "new");
    EXPECT_EQ(FileType(dir.filePath("link.csv")), mode_t(S_IFLNK));
    EXPECT_EQ(ReadAll(dir.filePath("real/data.csv")), "new");
    EXPECT_TRUE(HiddenFiles(dir.filePath("real")).isEmpty());
}

// The numbers the desktop program shows: 75 for a path it can't write, 76
// for a folder that isn't there.
TEST(OutputFileTest, WhatCannotBeWrittenIsRefusedBeforehand) {
    QTemporaryDir dir;
    const QString ro = dir.filePath("ro.csv");
    WriteAll(ro, "keep");
    ::chmod(QFile::encodeName(ro).constData(), 0444);
    const std::pair<std::function<void()>, QString> cases[] = {
        {[&] { CheckOutput(ro); }, "75 Path/File access error: " + ro},
        {[&] { OutputFile(ro).Open(); }, "75 Path/File access error: " + ro},
        {[&] { StagedOutput staged(ro); }, "75 Path/File access error: " + ro},
        {[&] { CheckOutput(dir.path()); },
         "75 Path/File access error: " + dir.path() + ": Is a directory"},
        {[&] { CheckOutput(dir.filePath("no/x.csv")); }, "76 "},
        {[] { CheckOutput(""); }, ""},
        {[] { CheckOutput("-", Dash::IsStdout); }, "none"},
    };
    for (const auto& [call, expected] : cases) {
        QString failure = "none";
        try {
            call();
        } catch (const RuntimeError& e) {
            failure = QString::number(e.number()) + ' ' + e.description();
        }
        EXPECT_TRUE(failure.startsWith(expected)) << failure.toStdString();
        EXPECT_EQ(failure == "none", expected == "none") << failure.toStdString();
    }
    EXPECT_EQ(ReadAll(ro), "keep");
    EXPECT_TRUE(HiddenFiles(dir.path()).isEmpty());
}

// While one thread makes a temporary file, a signal that another thread takes
// waits until the file is registered, then removes it.
TEST(OutputFileTest, ASignalOnAnotherThreadWaitsForTheTemporaryFile) {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGPIPE}) {
        QTemporaryDir dir;
        const QString target = dir.filePath("out.csv");
        WriteAll(target, "old");
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
        EXPECT_EQ(ReadAll(target), "old") << signal;
        EXPECT_TRUE(HiddenFiles(dir.path()).isEmpty()) << signal;
    }
}
