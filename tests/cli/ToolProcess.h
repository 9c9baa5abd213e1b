#pragma once

#include <grp.h>
#include <pwd.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>
#include <csignal>

#include "cli/DemoDatabase.h"
#include "support/Files.h"

namespace yunqi::test {

// yunqi-statement run as a user runs it: a process of its own, optionally
// under a file-size limit (with SIGXFSZ ignored, as a shell that traps it or
// Python leaves it, so a write fails short instead of killing).
struct ToolResult {
    int status = -1;      // exit status; -1 when ended by a signal
    QByteArray out, err;  // standard output (unless sent to a file), standard error
    QString Err() const { return QString::fromUtf8(err); }
};

struct ToolOptions {
    qint64 fileSizeLimit = 0;  // bytes; 0 for none
    QString stdoutFile;        // standard output goes to this file when set
    QString workDir;
    QStringList env;                      // NAME=VALUE settings added to the environment
    const struct passwd* user = nullptr;  // run as this user (root only); 126 when refused
};

inline QString ToolPath() { return QStringLiteral(YUNQI_BIN_DIR "/yunqi-statement"); }

inline void StartTool(QProcess& p, const QStringList& args, const ToolOptions& o = {}) {
    if (!o.stdoutFile.isEmpty()) p.setStandardOutputFile(o.stdoutFile);
    if (!o.workDir.isEmpty()) p.setWorkingDirectory(o.workDir);
    if (!o.env.isEmpty()) {
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        for (const QString& setting : o.env)
            env.insert(setting.section('=', 0, 0), setting.section('=', 1));
        p.setProcessEnvironment(env);
    }
    const qint64 limit = o.fileSizeLimit;
    const uid_t uid = o.user ? o.user->pw_uid : 0;
    const gid_t gid = o.user ? o.user->pw_gid : 0;
    p.setChildProcessModifier([limit, uid, gid] {
        if (limit > 0) {
            ::signal(SIGXFSZ, SIG_IGN);
            const struct rlimit rl { rlim_t(limit), rlim_t(limit) };
            ::setrlimit(RLIMIT_FSIZE, &rl);
        }
        if (uid != 0 && (::setgroups(0, nullptr) != 0 || ::setgid(gid) != 0 || ::setuid(uid) != 0))
            ::_exit(126);
    });
    p.start(ToolPath(), args);
    p.waitForStarted();
}

inline ToolResult RunTool(const QStringList& args, const ToolOptions& o = {}) {
    QProcess p;
    StartTool(p, args, o);
    p.waitForFinished(120000);
    ToolResult r;
    r.status = p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1;
    if (o.stdoutFile.isEmpty()) r.out = p.readAllStandardOutput();
    r.err = p.readAllStandardError();
    return r;
}

// A demo ledger of 3000 tickets, made once for the process.
inline const QString& DemoLedger() {
    static QTemporaryDir dir;
    static const QString path = [] {
        const QString file = dir.filePath("demo.sqlite");
        WriteDemoDatabase(file, 3000, 5);
        return file;
    }();
    return path;
}

// The invoice statement of department 01 over 2024, on ledger.
inline QStringList Invoice(const QStringList& extra, const QString& ledger = DemoLedger()) {
    return QStringList{"invoice", "--database", ledger, "--dept",    "01",
                       "--from",  "2024-01-01", "--to", "2024-12-31"} +
           extra;
}

}  // namespace yunqi::test
