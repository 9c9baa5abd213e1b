#include "cli/BatchFolder.h"

#include <QDir>
#include <QFileInfo>
#include <QRandomGenerator>

#include "cli/BatchProgress.h"
#include "core/os/FileSystem.h"
#include "reports/Reports.h"

namespace yunqi {

namespace {

const QStringList kOwnFiles{QStringLiteral("summary.csv"), QStringLiteral("mismatches.csv")};

QStringList ReportFiles() {
    QStringList ours;
    for (const ReportDefinition* r : AllReports())
        ours << r->command + QStringLiteral(".xlsx") << r->command + QStringLiteral(".csv");
    return ours;
}

QFileInfoList Entries(const QString& folder) {
    return QDir(folder).entryInfoList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot |
                                      QDir::System);
}

bool IsOwnFile(const QFileInfo& entry) {
    return entry.isFile() && !entry.isSymLink() && kOwnFiles.contains(entry.fileName());
}

bool IsReportFile(const QFileInfo& entry) {
    return entry.isFile() && !entry.isSymLink() && ReportFiles().contains(entry.fileName());
}

bool HoldsOnlyBatchFiles(const QString& folder) {
    for (const QFileInfo& entry : Entries(folder)) {
        if (IsOwnFile(entry)) continue;
        if (!entry.isDir() || entry.isSymLink()) return false;
        for (const QFileInfo& f : Entries(entry.filePath()))
            if (!IsReportFile(f)) return false;
    }
    return true;
}

QString Reason(os::Error error) { return os::Reason(error); }

// A folder of a fresh name "folder/.base.TAG-XXXXXX"; empty with *error set.
QString MakeUniqueFolder(const QString& folder, const QString& base, const char* tag,
                         os::Error* error) {
    for (int attempt = 0; attempt < 100; ++attempt) {
        const QString path = QDir(folder).filePath(
            QStringLiteral(".%1.%2-%3")
                .arg(base, QLatin1String(tag))
                .arg(QRandomGenerator::global()->generate() % 1000000, 6, 10, QLatin1Char('0')));
        *error = os::MakeFolder(path);
        if (!*error) return path;
        if (QFileInfo::exists(path)) continue;
        return QString();
    }
    return QString();
}

// from/name to to/name; the reason when it would not go.
QString Move(const QString& from, const QString& to, const QString& name) {
    const os::Error error = os::Rename(QDir(from).filePath(name), QDir(to).filePath(name));
    return error ? QDir(to).filePath(name) + QStringLiteral(": ") + Reason(error) : QString();
}

}  // namespace

QString ForeignFolderProblem(const QString& out, bool force) {
    const QFileInfo folder(out);
    if (folder.exists() && !folder.isDir()) return out + QStringLiteral(" is not a folder");
    if (!folder.exists() || force || HoldsOnlyBatchFiles(out)) return QString();
    return out + QStringLiteral(" holds files of something else; --force to write into it anyway");
}

QString FileNameOfCode(const QString& code) {
    static const QString unsafe = QStringLiteral("/\\:*?\"<>|%");
    QString name;
    for (const QChar ch : code) {
        const bool own = name.isEmpty() && kOwnFiles.contains(code, Qt::CaseInsensitive);
        if (own || ch.unicode() < 0x20 || ch.unicode() == 0x7f || unsafe.contains(ch)) {
            for (const char byte : QString(ch).toUtf8())
                name += QStringLiteral("%%1").arg(uchar(byte), 2, 16, QLatin1Char('0')).toUpper();
        } else {
            name += ch;
        }
    }
    if (name.isEmpty() || name == QLatin1String(".") || name == QLatin1String(".."))
        name.replace(QLatin1Char('.'), QStringLiteral("%2E"));
    return name.isEmpty() ? QStringLiteral("%00") : name;
}

// ---- BatchStaging ---------------------------------------------------------------

// A link to a folder: the folder itself is traded, the link stays.
BatchStaging::BatchStaging(const QString& out)
    : out_(QFileInfo(out).isSymLink() && QFileInfo(out).isDir() ? QFileInfo(out).canonicalFilePath()
                                                                : out) {}

BatchStaging::~BatchStaging() {
    if (!path_.isEmpty()) QDir(path_).removeRecursively();
    if (lock_ != os::kNoHandle) os::Close(lock_);
}

namespace {

// The folders of batches into out that were killed: no process holds them.
void RemoveLeftOvers(const QString& parent, const QString& base, const QString& out) {
    const QString pattern = QStringLiteral(".%1.batch-??????").arg(base);
    QFileInfoList found = QDir(parent).entryInfoList({pattern}, QDir::Dirs | QDir::Hidden);
    if (QFileInfo(out).isDir())
        found += QDir(out).entryInfoList(
            {QStringLiteral(".batch.new-??????"), QStringLiteral(".batch.old-??????")},
            QDir::Dirs | QDir::Hidden);
    for (const QFileInfo& folder : found) {
        if (folder.isSymLink()) continue;
        const os::Handle lock = os::LockFolder(folder.filePath());
        if (lock == os::kNoHandle) continue;
        QDir(folder.filePath()).removeRecursively();
        os::Close(lock);
    }
}

}  // namespace

bool BatchStaging::Make() {
    const QFileInfo out(out_);
    const QString parent = out.absolutePath();
    QString base = out.fileName();
    if (base.isEmpty() || base == QLatin1String(".") || base == QLatin1String(".."))
        base = QFileInfo(out.absoluteFilePath()).canonicalFilePath().section(QLatin1Char('/'), -1);
    if (!out.exists() && !QDir().mkpath(parent)) {
        BatchSay(parent + QStringLiteral(": cannot make the folder"));
        return false;
    }
    RemoveLeftOvers(parent, base, out_);
    os::Error error = 0;
    path_ = MakeUniqueFolder(parent, base, "batch", &error);
    if (path_.isEmpty() && out.isDir()) {
        // A folder the user may write in a parent the user may not.
        inside_ = true;
        path_ = MakeUniqueFolder(out_, QStringLiteral("batch"), "new", &error);
    }
    if (path_.isEmpty()) {
        BatchSay(out_ + QStringLiteral(": cannot make the batch's folder beside it: ") +
                 Reason(error));
        return false;
    }
    lock_ = os::LockFolder(path_);
    // The folder that takes the old one's place keeps its permissions.
    if (out.isDir()) QFile::setPermissions(path_, out.permissions());
    return true;
}

QString BatchStaging::MakeFolder(const QString& folder) const {
    const os::Error error = os::MakeFolder(QDir(path_).filePath(folder));
    return error ? QDir(out_).filePath(folder) + QStringLiteral(": cannot make the folder: ") +
                       Reason(error)
                 : QString();
}

QString BatchStaging::AsOutput(QString text) const {
    return text.replace(path_, QDir(out_).path());
}

bool BatchStaging::SwapIn() {
    const QFileInfo out(out_);
    QString problem;
    if (!out.exists()) {
        if (const os::Error e = os::Rename(path_, out_))
            problem = out_ + QStringLiteral(": ") + Reason(e);
        else
            path_.clear();
    } else if (!inside_ && HoldsOnlyBatchFiles(out_) && !os::ExchangeFolders(path_, out_)) {
        // The staging folder now holds the earlier batch.
        QDir(path_).removeRecursively();
        path_.clear();
        return true;
    } else {
        // The earlier batch's files out of the way, then the new ones in.
        os::Error error = 0;
        const QString old = MakeUniqueFolder(out_, QStringLiteral("batch"), "old", &error);
        if (old.isEmpty()) problem = out_ + QStringLiteral(": ") + Reason(error);
        const os::Handle oldLock = old.isEmpty() ? os::kNoHandle : os::LockFolder(old);
        const QString hidden = QFileInfo(path_).fileName();
        for (const QFileInfo& entry : old.isEmpty() ? QFileInfoList() : Entries(out_)) {
            if (!problem.isEmpty()) break;
            if (IsOwnFile(entry)) {
                problem = Move(out_, old, entry.fileName());
            } else if (entry.isDir() && !entry.isSymLink() && entry.fileName() != hidden &&
                       entry.filePath() != old) {
                const QString from = entry.filePath(), to = QDir(old).filePath(entry.fileName());
                for (const QFileInfo& f : Entries(from)) {
                    if (!IsReportFile(f)) continue;
                    if (!QFileInfo::exists(to)) os::MakeFolder(to);
                    if (!(problem = Move(from, to, f.fileName())).isEmpty()) break;
                }
                QDir().rmdir(from);  // when nothing else was in it
            }
        }
        QStringList names;
        for (const QFileInfo& entry : Entries(path_))
            if (entry.isDir()) names << entry.fileName();
        names << QStringLiteral("mismatches.csv") << QStringLiteral("summary.csv");
        for (const QString& name : names) {
            if (!problem.isEmpty()) break;
            const QString from = QDir(path_).filePath(name), to = QDir(out_).filePath(name);
            if (!QFileInfo(to).isDir()) {
                problem = Move(path_, out_, name);
                continue;
            }
            for (const QFileInfo& f : Entries(from))
                if (!(problem = Move(from, to, f.fileName())).isEmpty()) break;
        }
        if (!old.isEmpty()) QDir(old).removeRecursively();
        if (oldLock != os::kNoHandle) os::Close(oldLock);
    }
    if (!problem.isEmpty()) BatchSay(problem);
    return problem.isEmpty();
}

}  // namespace yunqi
