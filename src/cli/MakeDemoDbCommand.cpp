#include "cli/MakeDemoDbCommand.h"

#include <sys/stat.h>

#include <QElapsedTimer>
#include <QFile>
#include <QSet>
#include <QTextStream>

#include "cli/DemoDatabase.h"
#include "cli/StatementOptions.h"
#include "core/OutputFile.h"
#include "core/RuntimeError.h"

namespace yunqi {

int RunMakeDemoDb(const QStringList& args) {
    QTextStream err(stderr);
    const auto bad = [&err](const QString& problem) {
        err << "yunqi-statement: make-demo-db: " << problem << "\n" << StatementUsage();
        return 2;
    };
    QString file;
    bool fileGiven = false, force = false;
    int tickets = 20000;
    quint64 seed = 1;
    QSet<QString> seen;
    for (int i = 0; i < args.size(); ++i) {
        const QString& a = args[i];
        if (!a.startsWith(QLatin1String("--"))) {
            if (fileGiven) return bad(QStringLiteral("unexpected argument ") + a);
            if (a.isEmpty()) return bad(QStringLiteral("FILE is an empty text"));
            file = a;
            fileGiven = true;
            continue;
        }
        if (a != QLatin1String("--tickets") && a != QLatin1String("--seed") &&
            a != QLatin1String("--force"))
            return bad(QStringLiteral("unknown option ") + a);
        if (seen.contains(a)) return bad(a + QStringLiteral(" given twice"));
        seen.insert(a);
        if (a == QLatin1String("--force")) {
            force = true;
            continue;
        }
        if (i + 1 >= args.size() || args[i + 1].startsWith(QLatin1String("--")))
            return bad(a + QStringLiteral(" needs a value"));
        const QString& value = args[++i];
        bool ok = false;
        if (a == QLatin1String("--tickets")) {
            tickets = value.toInt(&ok);
            ok = ok && tickets >= 0;
        } else {
            seed = value.toULongLong(&ok);
        }
        if (!ok) return bad(a + QStringLiteral(" wants a whole number, not ") + value);
    }
    if (!fileGiven) return bad(QStringLiteral("FILE is required"));
    // A ledger is never replaced by demo data unless asked for.
    struct stat st {};
    if (!force && ::lstat(QFile::encodeName(file).constData(), &st) == 0)
        return bad(file + QStringLiteral(" exists; --force replaces it"));
    try {
        // A read-only file or a missing folder is refused before any work.
        CheckOutput(file);
        QElapsedTimer clock;
        clock.start();
        const DemoSummary s = WriteDemoDatabase(file, tickets, seed);
        const QString summary = file +
                                QStringLiteral(": %1 tickets, %2 lines, largest department ")
                                    .arg(s.tickets)
                                    .arg(s.lines) +
                                s.largestDepartment +
                                QStringLiteral(", %1 ms\n").arg(clock.elapsed());
        WriteOutputFile(QStringLiteral("-"), summary.toUtf8(), Dash::IsStdout);
        return 0;
    } catch (const RuntimeError& e) {
        // The engine's own failures don't name the file; the writer's do.
        err << "yunqi-statement: make-demo-db: "
            << (e.description().contains(file) ? QString() : file + QStringLiteral(": "))
            << "error " << e.number() << ": " << e.description() << "\n";
        return 1;
    }
}

}  // namespace yunqi
