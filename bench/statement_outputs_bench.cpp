// The companion's outputs on a large ledger, as a user runs them: the invoice
// year of the largest department written as CSV, as a workbook, and both, each
// in a process of its own, with its wall time and peak resident memory.
//   statement_outputs_bench [LEDGER] [TICKETS]
// A missing LEDGER is made first with make-demo-db (TICKETS, 800,000 unless
// given).
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTextStream>
#include <vector>

namespace {

QTextStream out(stdout);

struct Run {
    int status = -1;
    double seconds = 0;
    double peakMb = 0;
};

// One process of the companion; its own figures from wait4.
Run Companion(const QStringList& args) {
    const QByteArray program =
        QFile::encodeName(QCoreApplication::applicationDirPath() + "/../bin/yunqi-statement");
    std::vector<QByteArray> owned{program};
    for (const QString& a : args) owned.push_back(a.toUtf8());
    std::vector<char*> argv;
    for (QByteArray& a : owned) argv.push_back(a.data());
    argv.push_back(nullptr);

    QElapsedTimer clock;
    clock.start();
    const pid_t pid = fork();
    if (pid == 0) {
        execv(argv[0], argv.data());
        _exit(127);
    }
    int status = 0;
    rusage usage{};
    wait4(pid, &status, 0, &usage);
    Run run;
    run.seconds = clock.nsecsElapsed() / 1e9;
    run.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    run.peakMb = usage.ru_maxrss / 1024.0;
    return run;
}

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    QTemporaryDir dir;
    const QStringList args = app.arguments();
    const QString ledger = args.size() > 1 ? args[1] : dir.filePath("ledger.sqlite");
    const QString tickets = args.size() > 2 ? args[2] : QStringLiteral("800000");
    if (!QFileInfo::exists(ledger)) {
        const Run made = Companion({"make-demo-db", ledger, "--tickets", tickets});
        out << QString::asprintf("make-demo-db %s tickets: %.1f s\n", qPrintable(tickets),
                                 made.seconds);
        if (made.status != 0) return 1;
    }
    const QStringList invoice{"invoice", "--database", ledger, "--dept",    "01",
                              "--from",  "2024-01-01", "--to", "2024-12-31"};
    const QString csv = dir.filePath("invoice.csv"), xlsx = dir.filePath("invoice.xlsx");
    const struct {
        const char* name;
        QStringList outputs;
    } cases[] = {
        {"csv", {"--csv", csv}},
        {"xlsx", {"--xlsx", xlsx}},
        {"csv + xlsx", {"--csv", csv, "--xlsx", xlsx}},
    };
    for (const auto& c : cases) {
        QFile::remove(csv);
        QFile::remove(xlsx);
        const Run run = Companion(invoice + c.outputs);
        out << QString::asprintf("invoice 01 2024, %-10s: exit %d, %.2f s, peak %.0f MB", c.name,
                                 run.status, run.seconds, run.peakMb);
        if (QFileInfo::exists(csv))
            out << QString::asprintf(", csv %lld bytes", QFileInfo(csv).size());
        if (QFileInfo::exists(xlsx))
            out << QString::asprintf(", xlsx %lld bytes", QFileInfo(xlsx).size());
        out << "\n";
        out.flush();
    }
    return 0;
}
