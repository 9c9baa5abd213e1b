#include "cli/MakeDemoDbCommand.h"

#include <QElapsedTimer>
#include <QTextStream>

#include "cli/DemoDatabase.h"
#include "core/RuntimeError.h"

namespace yunqi {

int RunMakeDemoDb(const QStringList& args) {
    QTextStream err(stderr);
    QString file;
    int tickets = 20000;
    quint64 seed = 1;
    for (int i = 0; i < args.size(); ++i) {
        const QString& a = args[i];
        bool ok = true;
        if (a == QLatin1String("--tickets") && i + 1 < args.size()) {
            tickets = args[++i].toInt(&ok);
            ok = ok && tickets >= 0;
        } else if (a == QLatin1String("--seed") && i + 1 < args.size()) {
            seed = args[++i].toULongLong(&ok);
        } else if (!a.startsWith(QLatin1String("--")) && file.isEmpty()) {
            file = a;
        } else {
            ok = false;
        }
        if (!ok) {
            err << "yunqi-statement: make-demo-db: bad argument " << a << "\n"
                << "usage: yunqi-statement make-demo-db FILE [--tickets N] [--seed S]\n";
            return 2;
        }
    }
    if (file.isEmpty()) {
        err << "usage: yunqi-statement make-demo-db FILE [--tickets N] [--seed S]\n";
        return 2;
    }
    try {
        QElapsedTimer clock;
        clock.start();
        const DemoSummary s = WriteDemoDatabase(file, tickets, seed);
        QTextStream(stdout) << file << ": " << s.tickets << " tickets, " << s.lines
                            << " lines, largest department " << s.largestDepartment << ", "
                            << clock.elapsed() << " ms\n";
        return 0;
    } catch (const RuntimeError& e) {
        err << "yunqi-statement: make-demo-db: " << e.description() << "\n";
        return 1;
    }
}

}  // namespace yunqi
