// yunqi-statement as a careless or hostile user runs it: special files as
// targets, a full file system, the ledger as an output, signals, read-only
// files. Each case runs the real binary on a real file system object.
#include <fcntl.h>
#include <grp.h>
#include <gtest/gtest.h>
#include <pwd.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <QProcessEnvironment>
#include <QTemporaryDir>
#include <csignal>
#include <thread>

#include "cli/DemoDatabase.h"
#include "cli/ToolProcess.h"

using namespace yunqi;
using namespace yunqi::test;

namespace {

class OutputFaults : public ::testing::Test {
  protected:
    static void SetUpTestSuite() {
        ledgerDir = new QTemporaryDir;
        ledger = ledgerDir->filePath("demo.sqlite");
        WriteDemoDatabase(ledger, 3000, 5);
    }
    static void TearDownTestSuite() {
        delete ledgerDir;
        ledgerDir = nullptr;
    }
    static QStringList Invoice(QStringList extra) {
        return QStringList{"invoice", "--database", ledger, "--dept",    "01",
                           "--from",  "2024-01-01", "--to", "2024-12-31"} +
               extra;
    }
    QString Path(const char* name) const { return dir.filePath(QString::fromUtf8(name)); }

    static QTemporaryDir* ledgerDir;
    static QString ledger;
    QTemporaryDir dir;
};

QTemporaryDir* OutputFaults::ledgerDir = nullptr;
QString OutputFaults::ledger;

const char* const kOutputOptions[] = {"--csv", "--xlsx", "--sql-log"};

// Reads a FIFO to its end on a thread of its own, as a reader program would.
class FifoReader {
  public:
    explicit FifoReader(const QString& path)
        : thread_([this, p = QFile::encodeName(path)] {
              const int fd = ::open(p.constData(), O_RDONLY);
              if (fd < 0) return;
              char buf[65536];
              for (ssize_t n; (n = ::read(fd, buf, sizeof buf)) > 0;) bytes_.append(buf, n);
              ::close(fd);
          }) {}
    QByteArray Join() {
        thread_.join();
        return bytes_;
    }

  private:
    QByteArray bytes_;
    std::thread thread_;
};

}  // namespace

// ---- Device, FIFO and /dev/stdout targets stay what they are ---------------

TEST_F(OutputFaults, DevNullIsWrittenInPlaceAndStaysADevice) {
    for (const char* option : kOutputOptions) {
        const ToolResult r = RunTool(Invoice({option, "/dev/null"}));
        EXPECT_EQ(r.status, 0) << option << r.Err().toStdString();
        EXPECT_EQ(FileType("/dev/null"), mode_t(S_IFCHR)) << option;
    }
}

TEST_F(OutputFaults, DevFullFailsWithThePathAndTheReason) {
    for (const char* option : kOutputOptions) {
        const ToolResult r = RunTool(Invoice({option, "/dev/full"}));
        EXPECT_EQ(r.status, 1) << option;
        EXPECT_TRUE(r.Err().contains("/dev/full: No space left on device"))
            << r.Err().toStdString();
        EXPECT_EQ(FileType("/dev/full"), mode_t(S_IFCHR));
    }
    // Standard output on a full device: told, not silent.
    const ToolResult r = RunTool(Invoice({"--csv", "-"}), {.stdoutFile = "/dev/full"});
    EXPECT_EQ(r.status, 1);
    EXPECT_TRUE(r.Err().contains("standard output: No space left on device"))
        << r.Err().toStdString();
}

TEST_F(OutputFaults, AFifoIsWrittenInPlaceAndReadBack) {
    const QString fifo = Path("pipe");
    ASSERT_EQ(::mkfifo(QFile::encodeName(fifo).constData(), 0600), 0);
    for (const char* option : kOutputOptions) {
        FifoReader reader(fifo);
        const ToolResult r = RunTool(Invoice({option, fifo}));
        const QByteArray got = reader.Join();
        EXPECT_EQ(r.status, 0) << option << r.Err().toStdString();
        EXPECT_EQ(FileType(fifo), mode_t(S_IFIFO)) << option;
        if (QByteArray(option) == "--csv")
            EXPECT_TRUE(got.startsWith(QStringLiteral("序,开票日期").toUtf8()));
        else if (QByteArray(option) == "--xlsx")
            EXPECT_TRUE(got.startsWith("PK\x03\x04"));
        else
            EXPECT_TRUE(got.contains("Select ")) << got.left(200).toStdString();
    }
    EXPECT_TRUE(HiddenFiles(dir.path()).isEmpty());
}

TEST_F(OutputFaults, ADeviceNodeOfOurOwnStaysADevice) {
    if (::geteuid() != 0) GTEST_SKIP() << "making a device node needs root";
    const QString node = Path("null");
    if (::mknod(QFile::encodeName(node).constData(), S_IFCHR | 0666, makedev(1, 3)) != 0)
        GTEST_SKIP() << "no device nodes here";
    const int fd = ::open(QFile::encodeName(node).constData(), O_WRONLY);
    if (fd < 0) GTEST_SKIP() << "the folder's file system refuses devices";
    ::close(fd);
    for (const char* option : kOutputOptions) {
        EXPECT_EQ(RunTool(Invoice({option, node})).status, 0) << option;
        EXPECT_EQ(FileType(node), mode_t(S_IFCHR)) << option;
    }
    EXPECT_EQ(RunTool({"make-demo-db", node, "--tickets", "10", "--force"}).status, 0);
    EXPECT_EQ(FileType(node), mode_t(S_IFCHR));
}

TEST_F(OutputFaults, DevStdoutGoesToWhatTheShellOpened) {
    // A pipe.
    ToolResult r = RunTool(Invoice({"--csv", "/dev/stdout"}));
    EXPECT_EQ(r.status, 0) << r.Err().toStdString();
    EXPECT_TRUE(r.out.startsWith(QStringLiteral("序,开票日期").toUtf8()));
    // A regular file ("> out.csv"): written through, not replaced by a rename.
    const QString file = Path("out.csv");
    WriteAll(file, "");
    struct stat before {};
    ::stat(QFile::encodeName(file).constData(), &before);
    r = RunTool(Invoice({"--csv", "/dev/stdout"}), {.stdoutFile = file});
    EXPECT_EQ(r.status, 0) << r.Err().toStdString();
    struct stat after {};
    ::stat(QFile::encodeName(file).constData(), &after);
    EXPECT_EQ(before.st_ino, after.st_ino);
    EXPECT_TRUE(ReadAll(file).startsWith(QStringLiteral("序,开票日期").toUtf8()));
    EXPECT_EQ(FileType("/dev/stdout"), mode_t(S_IFLNK));
}

// ---- A full file system: short writes ----------------------------------------

TEST_F(OutputFaults, AShortWriteKeepsTheOldFileAndLeavesNoTemporaryFile) {
    struct Case {
        QStringList args;
        const char* target;
        qint64 limit;
    };
    const Case cases[] = {
        {Invoice({"--csv", Path("old.csv")}), "old.csv", 16 * 1024},
        {Invoice({"--xlsx", Path("old.xlsx")}), "old.xlsx", 64 * 1024},
        {Invoice({"--sql-log", Path("old.log")}), "old.log", 4 * 1024},
        {{"make-demo-db", Path("old.sqlite"), "--tickets", "3000", "--force"},
         "old.sqlite",
         256 * 1024},
    };
    for (const Case& c : cases) {
        const QString target = Path(c.target);
        WriteAll(target, "the old file\n");
        const ToolResult r = RunTool(c.args, {.fileSizeLimit = c.limit});
        EXPECT_EQ(r.status, 1) << c.target << r.Err().toStdString();
        EXPECT_TRUE(r.Err().contains(target)) << r.Err().toStdString();
        EXPECT_EQ(ReadAll(target), "the old file\n") << c.target;
        EXPECT_EQ(HiddenFiles(dir.path()), QStringList()) << c.target;
    }
    // The workbook's message says why.
    const ToolResult r =
        RunTool(Invoice({"--xlsx", Path("old.xlsx")}), {.fileSizeLimit = 64 * 1024});
    EXPECT_TRUE(r.Err().contains("xl/worksheets/sheet1.xml")) << r.Err().toStdString();
}

TEST_F(OutputFaults, TheSameRunWithoutALimitWritesEveryOutput) {
    const ToolResult r = RunTool(
        Invoice({"--csv", Path("a.csv"), "--xlsx", Path("a.xlsx"), "--sql-log", Path("a.log")}));
    EXPECT_EQ(r.status, 0) << r.Err().toStdString();
    EXPECT_GT(ReadAll(Path("a.csv")).size(), 16 * 1024);
    EXPECT_GT(ReadAll(Path("a.xlsx")).size(), 16 * 1024);
    EXPECT_GE(ReadAll(Path("a.log")).count('\n'), 4);
    EXPECT_TRUE(HiddenFiles(dir.path()).isEmpty());
    // New files get the usual permissions, not the private ones of a temporary file.
    struct stat st {};
    ::stat(QFile::encodeName(Path("a.xlsx")).constData(), &st);
    const mode_t mask = ::umask(0);
    ::umask(mask);
    EXPECT_EQ(st.st_mode & 0777, 0666 & ~mask);
}

// ---- Inputs are never outputs; existing ledgers are kept ----------------------

TEST_F(OutputFaults, AnOutputNamingTheLedgerIsRefusedAndTheLedgerKept) {
    const QByteArray bytes = ReadAll(ledger);
    const QString link = Path("link.sqlite");
    ASSERT_TRUE(QFile::link(ledger, link));
    for (const QStringList& args : {Invoice({"--sql-log", ledger}), Invoice({"--sql-log", link}),
                                    Invoice({"--csv", ledger}), Invoice({"--xlsx", ledger})}) {
        const ToolResult r = RunTool(args);
        EXPECT_EQ(r.status, 2) << args.join(' ').toStdString();
        EXPECT_TRUE(r.Err().contains("an output never replaces an input")) << r.Err().toStdString();
        EXPECT_TRUE(r.Err().contains("usage:"));
        EXPECT_EQ(ReadAll(ledger), bytes);
    }
    const ToolResult r = RunTool(Invoice({"--csv", Path("x"), "--xlsx", Path("x")}));
    EXPECT_EQ(r.status, 2);
    EXPECT_TRUE(r.Err().contains("name the same file")) << r.Err().toStdString();
}

TEST_F(OutputFaults, MakeDemoDbRefusesAnExistingFileWithoutForce) {
    const QString target = Path("ledger.sqlite");
    WriteAll(target, "a real ledger");
    ToolResult r = RunTool({"make-demo-db", target, "--tickets", "10"});
    EXPECT_EQ(r.status, 2);
    EXPECT_TRUE(r.Err().contains("exists; --force replaces it")) << r.Err().toStdString();
    EXPECT_EQ(ReadAll(target), "a real ledger");
    r = RunTool({"make-demo-db", target, "--tickets", "10", "--force"});
    EXPECT_EQ(r.status, 0) << r.Err().toStdString();
    EXPECT_TRUE(ReadAll(target).startsWith("SQLite format 3"));
    EXPECT_TRUE(HiddenFiles(dir.path()).isEmpty());
}

TEST_F(OutputFaults, ReadOnlyTargetsAreRefusedAlikeBeforeAnyWork) {
    for (const char* option : {"--csv", "--xlsx"}) {
        const QString target = Path(option + 2);
        WriteAll(target, "keep");
        ASSERT_EQ(::chmod(QFile::encodeName(target).constData(), 0444), 0);
        // The SQL log would be written by the first statement: none was sent.
        const ToolResult r = RunTool(Invoice({option, target, "--sql-log", Path("log")}));
        EXPECT_EQ(r.status, 1) << option;
        EXPECT_TRUE(r.Err().contains(target + ": the file is read-only") ||
                    r.Err().contains(target + ": Permission denied"))
            << r.Err().toStdString();
        EXPECT_EQ(ReadAll(target), "keep");
        EXPECT_FALSE(QFile::exists(Path("log")));
    }
    const ToolResult r = RunTool(Invoice({"--xlsx", Path("no/such/folder.xlsx")}));
    EXPECT_EQ(r.status, 1);
    EXPECT_TRUE(r.Err().contains("Path not found")) << r.Err().toStdString();
}

// Root passes every access check; an ordinary user is refused a folder that
// takes no new file, before the statement is run.
TEST_F(OutputFaults, AFolderWithoutWritePermissionIsRefusedBeforeAnyWork) {
    if (::geteuid() != 0) GTEST_SKIP() << "running as another user needs root";
    const struct passwd* nobody = ::getpwnam("nobody");
    if (!nobody) GTEST_SKIP() << "no user nobody here";
    const uid_t uid = nobody->pw_uid;
    const gid_t gid = nobody->pw_gid;
    // The ledger readable to that user.
    ASSERT_EQ(::chmod(QFile::encodeName(ledgerDir->path()).constData(), 0755), 0);
    ASSERT_EQ(::chmod(QFile::encodeName(ledger).constData(), 0644), 0);
    ASSERT_EQ(::chmod(QFile::encodeName(dir.path()).constData(), 0755), 0);

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
    int row = 0;
    for (const Case& c : cases) {
        const QString open = Path("open") + QString::number(++row);
        const QString closed = Path("closed") + QString::number(row);
        ASSERT_TRUE(QDir().mkdir(open) && QDir().mkdir(closed));
        ASSERT_EQ(::chmod(QFile::encodeName(open).constData(), 0777), 0);
        ASSERT_EQ(::chmod(QFile::encodeName(closed).constData(), 0755), 0);
        QStringList args = c.args;
        args.replaceInStrings(QStringLiteral("CLOSED"), closed);
        args.replaceInStrings(QStringLiteral("OPEN"), open);

        QProcess p;
        p.setChildProcessModifier([uid, gid] {
            if (::setgroups(0, nullptr) != 0 || ::setgid(gid) != 0 || ::setuid(uid) != 0)
                ::_exit(126);
        });
        StartTool(p, args);
        ASSERT_TRUE(p.waitForFinished(60000)) << c.name;
        const QString err = QString::fromUtf8(p.readAllStandardError());
        if (p.exitStatus() == QProcess::NormalExit && p.exitCode() == 126)
            GTEST_SKIP() << "this system does not let root become nobody";
        EXPECT_EQ(p.exitStatus(), QProcess::NormalExit) << c.name;
        EXPECT_EQ(p.exitCode(), 1) << c.name << ' ' << err.toStdString();
        // The path, and the folder to blame.
        const QString refused = closed + '/' + QString::fromUtf8(c.refused);
        EXPECT_TRUE(err.contains(refused + ": no new file can be made in " + closed))
            << c.name << ' ' << err.toStdString();
        for (const QString& folder : {open, closed}) {
            const QStringList made =
                QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
            EXPECT_TRUE(made.isEmpty())
                << c.name << ' ' << folder.toStdString() << ": " << made.join(' ').toStdString();
        }
    }
}

// ---- Signals leave no temporary file --------------------------------------------

TEST_F(OutputFaults, SigtermDuringALargeDemoLedgerLeavesNothing) {
    const QString target = Path("big.sqlite");
    QProcess p;
    StartTool(p, {"make-demo-db", target, "--tickets", "2000000"});
    ASSERT_TRUE(WaitFor([&] { return !HiddenFiles(dir.path()).isEmpty(); }, 20000));
    // Well into the writing.
    ASSERT_TRUE(WaitFor(
        [&] { return QFileInfo(dir.filePath(HiddenFiles(dir.path()).value(0))).size() > 1000000; },
        30000));
    ::kill(pid_t(p.processId()), SIGTERM);
    ASSERT_TRUE(p.waitForFinished(30000));
    EXPECT_EQ(p.exitStatus(), QProcess::CrashExit);
    EXPECT_TRUE(HiddenFiles(dir.path()).isEmpty())
        << HiddenFiles(dir.path()).join(' ').toStdString();
    EXPECT_FALSE(QFile::exists(target));
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
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGPIPE}) {
        for (const Case& c : cases) {
            QTemporaryDir out;
            QStringList args = c.args;
            args.replaceInStrings(QStringLiteral("OUT"), out.path());
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
            const QStringList left =
                QDir(out.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
            EXPECT_TRUE(left.isEmpty()) << c.name << ' ' << signal << ": "
                                        << left.join(' ').toStdString();
        }
    }
    EXPECT_EQ(FileType("/dev/null"), mode_t(S_IFCHR));
}
