#include "cli/BatchFolder.h"

#include <QDir>
#include <QFileInfo>

#include "cli/BatchProgress.h"
#include "reports/Reports.h"

namespace yunqi {

namespace {

bool HoldsOnlyBatchFiles(const QDir& dir) {
    QStringList ours;
    for (const ReportDefinition* r : AllReports())
        ours << r->command + QStringLiteral(".xlsx") << r->command + QStringLiteral(".csv");
    for (const QFileInfo& entry :
         dir.entryInfoList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot)) {
        if (entry.isFile() && (entry.fileName() == QLatin1String("summary.csv") ||
                               entry.fileName() == QLatin1String("mismatches.csv")))
            continue;
        if (!entry.isDir() || entry.isSymLink()) return false;
        for (const QFileInfo& f :
             QDir(entry.filePath())
                 .entryInfoList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot))
            if (!f.isFile() || f.isSymLink() || !ours.contains(f.fileName())) return false;
    }
    return true;
}

}  // namespace

QString ForeignFolderProblem(const QString& out, bool force) {
    const QDir dir(out);
    if (!dir.exists() || force || HoldsOnlyBatchFiles(dir)) return QString();
    return out + QStringLiteral(" holds files of something else; --force to write into it anyway");
}

bool MakeBatchFolders(const QString& path, const QStringList& folders) {
    const QDir out(path);
    if (!QDir().mkpath(out.absolutePath())) {
        BatchSay(path + QStringLiteral(": cannot make the folder"));
        return false;
    }
    for (const QString& folder : folders)
        if (!out.mkpath(folder)) {
            BatchSay(out.filePath(folder) + QStringLiteral(": cannot make the folder"));
            return false;
        }
    return true;
}

QString FileNameOfCode(const QString& code) {
    static const QString unsafe = QStringLiteral("/\\:*?\"<>|%");
    QString name;
    for (const QChar ch : code) {
        if (ch.unicode() < 0x20 || ch.unicode() == 0x7f || unsafe.contains(ch)) {
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

}  // namespace yunqi
