// yunqi-statement as a careless or hostile user runs it, on real file system
// objects: special targets, full disks, inputs as outputs, read-only files and
// folders, signals. One table a fault family.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QProcessEnvironment>
#include <atomic>
#include <csignal>
#include <optional>
#include <thread>

#include "cli/ToolProcess.h"

using namespace yunqi;
using namespace yunqi::test;

namespace {

class OutputFaults : public ::testing::Test {
  protected:
    QString Path(const char* name) const { return dir.filePath(QString::fromUtf8(name)); }
    QTemporaryDir dir;
};

struct stat Stat(const QString& path) {
    struct stat st {};
    ::stat(QFile::encodeName(path).constData(), &st);
    return st;
}

int Chmod(const QString& path, mode_t mode) {
    return ::chmod(QFile::encodeName(path).constData(), mode);
}

QStringList Entries(const QString& folder) {
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
}

// Each output option, a file name for it, and how its output begins.
struct OutputKind {
    const char* option;
    const char* suffix;
    QByteArray start;
};
const OutputKind kOutputs[] = {{"--csv", ".csv", QStringLiteral("序,开票日期").toUtf8()},
                               {"--xlsx", ".xlsx", "PK\x03\x04"},
                               {"--sql-log", ".log", "Select "}};

// Reads a FIFO on a thread of its own, as a reader program would, until the
// writer is done. Opened without waiting for a writer, so that a run that
// never opens the FIFO (or replaces it) can't hang the test.
struct FifoReader {
    explicit FifoReader(const QString& path)
        : fd(::open(QFile::encodeName(path).constData(), O_RDONLY | O_NONBLOCK)) {}
    QByteArray Join() {  // once the writer has ended
        done = true;
        thread.join();
        if (fd >= 0) ::close(fd);
        return bytes;
    }
    int fd;
    std::atomic<bool> done{false};
    QByteArray bytes;
    std::thread thread{[this] {
        for (bool last = false; fd >= 0 && !last;) {
            last = done;
            pollfd p{fd, POLLIN, 0};
            ::poll(&p, 1, 50);
            char buf[65536];
            for (ssize_t n; (n = ::read(fd, buf, sizeof buf)) > 0;) bytes.append(buf, n);
        }
    }};
};

}  // namespace

// A target that exists and is no regular file is written in place, never
// replaced: by its kind, not its name.
TEST_F(OutputFaults, SpecialTargetsAreWrittenInPlaceAndStayWhatTheyAre) {
    struct Case {
        const char* name;
        QString target;
        mode_t type;
        int status;
        QString error;
    };
    const Case cases[] = {
        {"/dev/null", "/dev/null", S_IFCHR, 0, ""},
        {"/dev/full", "/dev/full", S_IFCHR, 1, "/dev/full: No space left on device"},
        {"a FIFO", Path("pipe"), S_IFIFO, 0, ""},
    };
    ASSERT_EQ(::mkfifo(QFile::encodeName(Path("pipe")).constData(), 0600), 0);
    for (const Case& c : cases) {
        for (const OutputKind& o : kOutputs) {
            SCOPED_TRACE(std::string(c.name) + ' ' + o.option);
            std::optional<FifoReader> reader;
            if (c.type == S_IFIFO) reader.emplace(c.target);
            const ToolResult r = RunTool(Invoice({o.option, c.target}));
            EXPECT_EQ(r.status, c.status) << r.Err().toStdString();
            EXPECT_TRUE(r.Err().contains(c.error)) << r.Err().toStdString();
            EXPECT_EQ(FileType(c.target), c.type);
            if (reader) EXPECT_TRUE(reader->Join().startsWith(o.start));
        }
    }
    EXPECT_EQ(HiddenFiles(dir.path()), QStringList());
}

TEST_F(OutputFaults, StandardOutputGoesToWhatTheShellOpened) {
    // /dev/stdout on a regular file ("> out.csv"): written through, not
    // replaced by a rename.
    const QString file = Path("out.csv");
    WriteAll(file, "");
    const ino_t before = Stat(file).st_ino;
    ToolResult r = RunTool(Invoice({"--csv", "/dev/stdout"}), {.stdoutFile = file});
    EXPECT_EQ(r.status, 0) << r.Err().toStdString();
    EXPECT_EQ(Stat(file).st_ino, before);
    EXPECT_TRUE(ReadAll(file).startsWith(kOutputs[0].start));
    // On a full device: told, not silent.
    r = RunTool(Invoice({"--csv", "-"}), {.stdoutFile = "/dev/full"});
    EXPECT_EQ(r.status, 1);
    EXPECT_TRUE(r.Err().contains("standard output: No space left on device"))
        << r.Err().toStdString();
}

TEST_F(OutputFaults, AShortWriteKeepsTheOldFileAndLeavesNoTemporaryFile) {
    struct Case {
        QStringList args;
        const char* target;
        qint64 limit;
        const char* why;  // beyond the path
    };
    const Case cases[] = {
        {Invoice({"--csv", Path("old.csv")}), "old.csv", 16 * 1024, "File too large"},
        {Invoice({"--xlsx", Path("old.xlsx")}), "old.xlsx", 64 * 1024, "xl/worksheets/sheet1.xml"},
        {Invoice({"--sql-log", Path("old.log")}), "old.log", 4 * 1024, "File too large"},
        {{"make-demo-db", Path("old.sqlite"), "--tickets", "3000", "--force"},
         "old.sqlite",
         256 * 1024,
         ""},
    };
    for (const Case& c : cases) {
        const QString target = Path(c.target);
        WriteAll(target, "the old file\n");
        const ToolResult r = RunTool(c.args, {.fileSizeLimit = c.limit});
        EXPECT_EQ(r.status, 1) << c.target << r.Err().toStdString();
        EXPECT_TRUE(r.Err().contains(target) && r.Err().contains(c.why)) << r.Err().toStdString();
        EXPECT_EQ(ReadAll(target), "the old file\n") << c.target;
        EXPECT_EQ(HiddenFiles(dir.path()), QStringList()) << c.target;
    }
}

// Without a limit the same run writes every output: a new file with the usual
// permissions, not a temporary file's; an existing one keeps its own.
TEST_F(OutputFaults, EveryOutputIsWrittenWithItsPermissions) {
    const mode_t mask = ::umask(0);
    ::umask(mask);
    const std::pair<const char*, mode_t> files[] = {{"new", 0666 & ~mask}, {"old", 0640}};
    for (const OutputKind& o : kOutputs) {
        WriteAll(Path("old") + o.suffix, "old");
        Chmod(Path("old") + o.suffix, 0640);
    }
    for (const auto& [stem, mode] : files) {
        QStringList args;
        for (const OutputKind& o : kOutputs) args << o.option << Path(stem) + o.suffix;
        const ToolResult r = RunTool(Invoice(args));
        EXPECT_EQ(r.status, 0) << r.Err().toStdString();
        for (const OutputKind& o : kOutputs) {
            const QString file = Path(stem) + o.suffix;
            EXPECT_EQ(Stat(file).st_mode & 0777, mode) << file.toStdString();
            EXPECT_TRUE(ReadAll(file).startsWith(o.start)) << file.toStdString();
        }
    }
    EXPECT_EQ(HiddenFiles(dir.path()), QStringList());
}

// A symbolic link stays a link: the file it names is written, also one not
// made yet; a link into a missing folder is refused.
TEST_F(OutputFaults, LinksAreWrittenThroughToTheirFiles) {
    struct Case {
        const char* name;
        QStringList links;  // link -> target pairs, made in this order
        const char* file;   // what the output ends in; nullptr when refused
    };
    const Case cases[] = {
        {"a link to a file", {"l1.csv", "t1.csv"}, "t1.csv"},
        {"a dangling link", {"l2.csv", "t2.csv"}, "t2.csv"},
        {"a chain of dangling links", {"l3.csv", "m3.csv", "m3.csv", "t3.csv"}, "t3.csv"},
        {"a dangling link into a missing folder", {"l4.csv", "no/t4.csv"}, nullptr},
    };
    WriteAll(Path("t1.csv"), "old");
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        for (int i = 0; i < c.links.size(); i += 2)
            ASSERT_EQ(::symlink(QFile::encodeName(c.links[i + 1]).constData(),
                                QFile::encodeName(Path(c.links[i].toUtf8())).constData()),
                      0);
        const ToolResult r = RunTool(Invoice({"--csv", Path(c.links[0].toUtf8())}));
        EXPECT_EQ(r.status, c.file ? 0 : 1) << r.Err().toStdString();
        EXPECT_TRUE(QFileInfo(Path(c.links[0].toUtf8())).isSymLink());
        if (c.file)
            EXPECT_TRUE(ReadAll(Path(c.file)).startsWith(kOutputs[0].start));
        else
            EXPECT_TRUE(r.Err().contains("Path not found")) << r.Err().toStdString();
    }
    EXPECT_EQ(HiddenFiles(dir.path()), QStringList());
}

// What can't be an output is refused before any work: the SQL log, which the
// first statement would start, is never made, and nothing is touched.
TEST_F(OutputFaults, WhatCannotBeAnOutputIsRefusedBeforeAnyWork) {
    const QString ledger = DemoLedger(), log = Path("log");
    const QByteArray ledgerBytes = ReadAll(ledger);
    for (const char* name : {"ro.csv", "ro.xlsx", "existing.sqlite"}) WriteAll(Path(name), "keep");
    for (const char* name : {"ro.csv", "ro.xlsx"}) ASSERT_EQ(Chmod(Path(name), 0444), 0);
    ASSERT_TRUE(QFile::link(ledger, Path("link.sqlite")));
    ASSERT_TRUE(QFile::link(Path("nowhere.sqlite"), Path("dangling.sqlite")));
    struct Case {
        const char* name;
        QStringList args;
        int status;
        QString error;
    };
    // The reason as either layer words it; alternatives apart by "|".
    const auto readOnly = [this](const char* name) {
        return Path(name) + ": the file is read-only|" + Path(name) + ": Permission denied";
    };
    const Case cases[] = {
        {"a read-only CSV", Invoice({"--csv", Path("ro.csv")}), 1, readOnly("ro.csv")},
        {"a read-only workbook", Invoice({"--xlsx", Path("ro.xlsx")}), 1, readOnly("ro.xlsx")},
        {"a folder", Invoice({"--csv", dir.path()}), 1, dir.path() + ": Is a directory"},
        {"a missing folder", Invoice({"--xlsx", Path("no/such/folder.xlsx")}), 1, "Path not found"},
        {"the ledger as the log", Invoice({"--sql-log", ledger}), 2,
         "an output never replaces an input"},
        {"a link to the ledger", Invoice({"--sql-log", Path("link.sqlite")}), 2,
         "never replaces an input"},
        {"the ledger as the CSV", Invoice({"--csv", ledger}), 2, "never replaces an input"},
        {"the ledger as the workbook", Invoice({"--xlsx", ledger}), 2, "never replaces an input"},
        {"two outputs one file", Invoice({"--csv", Path("x"), "--xlsx", Path("x")}), 2,
         "name the same file"},
        {"a demo ledger onto a file",
         {"make-demo-db", Path("existing.sqlite"), "--tickets", "10"},
         2,
         "exists; --force replaces it"},
        {"a demo ledger onto a dangling link",
         {"make-demo-db", Path("dangling.sqlite"), "--tickets", "10"},
         2,
         "exists; --force replaces it"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        QStringList args = c.args;
        if (args.first() == "invoice" && !args.contains("--sql-log")) args << "--sql-log" << log;
        const ToolResult r = RunTool(args);
        EXPECT_EQ(r.status, c.status);
        EXPECT_TRUE(std::ranges::any_of(c.error.split('|'), [&](const QString& e) {
            return r.Err().contains(e);
        })) << r.Err().toStdString();
        EXPECT_EQ(r.Err().contains("usage:"), c.status == 2);
        EXPECT_FALSE(QFile::exists(log));
    }
    EXPECT_EQ(ReadAll(ledger), ledgerBytes);
    for (const char* name : {"ro.csv", "ro.xlsx", "existing.sqlite"})
        EXPECT_EQ(ReadAll(Path(name)), "keep");
    EXPECT_EQ(
        RunTool({"make-demo-db", Path("existing.sqlite"), "--tickets", "10", "--force"}).status, 0);
    EXPECT_TRUE(ReadAll(Path("existing.sqlite")).startsWith("SQLite format 3"));
    EXPECT_FALSE(QFile::exists(Path("nowhere.sqlite")));
    EXPECT_EQ(HiddenFiles(dir.path()), QStringList());
}

// Root passes every access check; an ordinary user is refused a folder that
// takes no new file, before the statement is run.
TEST_F(OutputFaults, AFolderWithoutWritePermissionIsRefusedBeforeAnyWork) {
    const struct passwd* nobody = ::getpwnam("nobody");
    if (::geteuid() != 0 || !nobody) GTEST_SKIP() << "running as user nobody needs root";
    // The ledger readable to that user.
    const QString ledger = DemoLedger();
    for (const QString& folder : {QFileInfo(ledger).path(), dir.path()})
        ASSERT_EQ(Chmod(folder, 0755), 0);
    ASSERT_EQ(Chmod(ledger, 0644), 0);
    struct Case {
        const char* name;
        QStringList args;     // in OPEN that user may write, in CLOSED not
        const char* refused;  // in CLOSED
    };
    const Case cases[] = {
        {"CSV", Invoice({"--csv", "CLOSED/s.csv", "--sql-log", "OPEN/s.log"}), "s.csv"},
        {"workbook", Invoice({"--xlsx", "CLOSED/s.xlsx", "--sql-log", "OPEN/s.log"}), "s.xlsx"},
        {"SQL log", Invoice({"--sql-log", "CLOSED/s.log", "--csv", "OPEN/s.csv"}), "s.log"},
        {"demo ledger", {"make-demo-db", "CLOSED/s.sqlite", "--tickets", "10"}, "s.sqlite"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const QString open = Path("open ") + c.name, closed = Path("closed ") + c.name;
        for (const auto& [folder, mode] : {std::pair{open, 0777}, std::pair{closed, 0755}})
            ASSERT_TRUE(QDir().mkdir(folder) && Chmod(folder, mode) == 0);
        QStringList args = c.args;
        args.replaceInStrings("CLOSED", closed).replaceInStrings("OPEN", open);
        const ToolResult r = RunTool(args, {.user = nobody});
        if (r.status == 126) GTEST_SKIP() << "this system does not let root become nobody";
        EXPECT_EQ(r.status, 1) << r.Err().toStdString();
        // The path, and the folder to blame.
        EXPECT_TRUE(
            r.Err().contains(closed + '/' + c.refused + ": no new file can be made in " + closed))
            << r.Err().toStdString();
        for (const QString& folder : {open, closed})
            EXPECT_EQ(Entries(folder), QStringList()) << folder.toStdString();
    }
}

// The program sends itself the signal right after a temporary file was made
// and before it is registered, the moment a user's signal could slip in;
// every output and its temporary file are gone all the same.
TEST_F(OutputFaults, SignalsDuringAnExportLeaveNothing) {
    struct Case {
        const char* name;
        QStringList args;       // OUT stands for the output folder
        const char* temporary;  // whose temporary file the signal follows
    };
    const Case cases[] = {
        {"workbook", Invoice({"--xlsx", "OUT/s.xlsx", "--sql-log", "OUT/s.log"}), "s.xlsx"},
        {"SQL log", Invoice({"--csv", "OUT/s.csv", "--sql-log", "OUT/s.log"}), "s.log"},
        {"CSV", Invoice({"--csv", "OUT/s.csv"}), "s.csv"},
        {"demo ledger", {"make-demo-db", "OUT/s.sqlite", "--tickets", "10"}, "s.sqlite"},
        // Staged in the temporary folder, then copied into the device.
        {"workbook to a device", Invoice({"--xlsx", "/dev/null"}), "yunqi-output"},
    };
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGPIPE, SIGABRT}) {
        for (const Case& c : cases) {
            QTemporaryDir out;
            QStringList args = c.args;
            args.replaceInStrings("OUT", out.path());
            QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
            env.insert("YUNQI_TEST_SIGNAL_AFTER_TEMPORARY",
                       QString::number(signal) + ':' + QString::fromUtf8(c.temporary));
            env.insert("TMPDIR", out.path());
            QProcess p;
            p.setProcessEnvironment(env);
            StartTool(p, args);
            ASSERT_TRUE(p.waitForFinished(60000)) << c.name;
            EXPECT_EQ(p.exitStatus(), QProcess::CrashExit)
                << c.name << ' ' << signal << ' ' << p.readAllStandardError().toStdString();
            EXPECT_EQ(p.exitCode(), signal) << c.name;
            EXPECT_EQ(Entries(out.path()), QStringList()) << c.name << ' ' << signal;
        }
    }
    EXPECT_EQ(FileType("/dev/null"), mode_t(S_IFCHR));
}
