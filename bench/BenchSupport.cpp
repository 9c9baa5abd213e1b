#include "BenchSupport.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTextStream>

#include "cli/DemoDatabase.h"
#include "db/SqlDialect.h"

namespace yunqi {

namespace BenchSupport {

QString DemoLedger(int tickets) {
    const QString db = QDir::temp().filePath(QStringLiteral("yunqi-bench-%1.sqlite").arg(tickets));
    if (!QFile::exists(db)) {
        QElapsedTimer clock;
        clock.start();
        WriteDemoDatabase(db, tickets, 1);
        QTextStream(stdout) << "made " << db << " with " << tickets << " tickets in "
                            << clock.elapsed() << " ms\n";
    }
    return db;
}

QString LargestDepartment(DatabaseSession& session) {
    Recordset rs = session.Open(QStringLiteral(
        "Select 开票部门编号, count(*) As n From 票据 Group by 开票部门编号 Order by n desc"));
    return rs.Value(0).toString();
}

double ShellMs(const QString& db, const QStringList& sql, const QString& scriptPath) {
    QFile script(scriptPath);
    script.open(QIODevice::WriteOnly | QIODevice::Truncate);
    for (const QString& s : sql) script.write((AdaptToSQLite(s) + ";\n").toUtf8());
    script.close();
    QProcess shell;
    shell.setStandardInputFile(scriptPath);
    shell.setStandardOutputFile(QProcess::nullDevice());
    QElapsedTimer clock;
    clock.start();
    shell.start(QStringLiteral("sqlite3"), {QStringLiteral("-batch"), db});
    shell.waitForFinished(-1);
    return clock.nsecsElapsed() / 1e6;
}

namespace {
// A "VmRSS:" or "VmHWM:" line of /proc/self/status, in MiB.
double StatusMiB(const char* key) {
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly)) return -1;
    for (const QByteArray& line : status.readAll().split('\n'))
        if (line.startsWith(key)) return line.mid(int(qstrlen(key))).trimmed().split(' ')[0].toDouble() / 1024;
    return -1;
}
}  // namespace

double ResidentMiB() { return StatusMiB("VmRSS:"); }
double PeakResidentMiB() { return StatusMiB("VmHWM:"); }

}  // namespace BenchSupport

}  // namespace yunqi
