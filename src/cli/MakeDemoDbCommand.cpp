#include "cli/MakeDemoDbCommand.h"

#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QTextStream>

#include "cli/DemoDatabase.h"
#include "core/OutputFile.h"
#include "core/RuntimeError.h"

namespace yunqi {

namespace {

QString TicketsProblem(const QString& name, const QString& value) {
    bool ok = false;
    return value.toInt(&ok) >= 0 && ok ? QString()
                                       : Wants(name, QStringLiteral("a whole number"), value);
}

QString SeedProblem(const QString& name, const QString& value) {
    bool ok = false;
    value.toULongLong(&ok);
    return ok ? QString() : Wants(name, QStringLiteral("a whole number"), value);
}

}  // namespace

const CommandSpec& MakeDemoDbSpec() {
    using O = OptionSpec;
    static const CommandSpec spec{{{"FILE", "FILE", O::Required | O::Positional},
                                   {"--tickets", "N", 0, TicketsProblem},
                                   {"--seed", "S", 0, SeedProblem},
                                   {"--force", nullptr}}};
    return spec;
}

int RunMakeDemoDb(const QStringList& args) {
    QTextStream err(stderr);
    const auto bad = [](const QString& problem) {
        return CommandArgumentError(QStringLiteral("make-demo-db"), MakeDemoDbSpec(), problem);
    };
    const ParsedArgs parsed = ParseArgs(MakeDemoDbSpec(), args);
    if (!parsed.problem.isEmpty()) return bad(parsed.problem);
    const QString file = parsed.Value(QStringLiteral("FILE"));
    const bool force = parsed.Has(QStringLiteral("--force"));
    const int tickets = parsed.Has(QStringLiteral("--tickets"))
                            ? parsed.Value(QStringLiteral("--tickets")).toInt()
                            : 20000;
    const quint64 seed = parsed.Has(QStringLiteral("--seed"))
                             ? parsed.Value(QStringLiteral("--seed")).toULongLong()
                             : 1;
    // A ledger is never replaced by demo data unless asked for.
    const QFileInfo existing(file);
    if (!force && (existing.exists() || existing.isSymLink()))
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
            << e.NumberedText() << "\n";
        return 1;
    }
}

}  // namespace yunqi
