#include "cli/StatementCli.h"

#include <QTextStream>
#include <functional>
#include <vector>

#include "cli/BatchCommand.h"
#include "cli/BatchOptions.h"
#include "cli/CommandLine.h"
#include "cli/ConsoleDialogs.h"
#include "cli/MakeDemoDbCommand.h"
#include "cli/MonthlyStatementCommand.h"
#include "cli/PagedStatementCommand.h"
#include "cli/StatementOptions.h"
#include "cli/StatementSession.h"
#include "reports/Reports.h"

#ifndef YUNQI_VERSION
#error "YUNQI_VERSION comes from the project's version"
#endif

namespace yunqi {

namespace {

struct Command {
    QString name;
    const CommandSpec* spec;
    std::function<int(const QStringList&)> run;
};

// Every command in the order of the usage.
const std::vector<Command>& Commands() {
    static const std::vector<Command> commands = [] {
        std::vector<Command> list;
        for (const ReportDefinition* report : AllReports()) {
            const CommandSpec* spec = &StatementSpec(report->conditions);
            const auto run = report->conditions == ConditionsKind::DateWindow ? RunPagedStatement
                                                                              : RunMonthlyStatement;
            list.push_back({report->command, spec, [report, run](const QStringList& args) {
                                return RunStatementCommand(*report, args, OpenStatementSession,
                                                           run);
                            }});
        }
        list.push_back({QStringLiteral("make-demo-db"), &MakeDemoDbSpec(), RunMakeDemoDb});
        list.push_back({QStringLiteral("batch"), &BatchSpec(), RunBatch});
        return list;
    }();
    return commands;
}

const Command* Find(const QString& name) {
    for (const Command& c : Commands())
        if (c.name == name) return &c;
    return nullptr;
}

int Usage(const QString& problem) {
    QTextStream err(stderr);
    if (!problem.isEmpty()) err << "yunqi-statement: " << problem << "\n";
    err << StatementUsage();
    return kExitBadArguments;
}

int Print(const QString& text) {
    QTextStream(stdout) << text;
    return 0;
}

}  // namespace

QString StatementUsage(const QString& command) {
    if (const Command* c = Find(command)) return CommandUsage(c->name, *c->spec);
    // Commands of one table share a line: "invoice|preinvoice|parking".
    QString usage = QStringLiteral("usage:\n");
    const auto& commands = Commands();
    for (std::size_t i = 0; i < commands.size();) {
        QStringList names;
        const CommandSpec* spec = commands[i].spec;
        for (; i < commands.size() && commands[i].spec == spec; ++i) names << commands[i].name;
        usage += QStringLiteral("  ") + UsageLine(names.join(QLatin1Char('|')), *spec) +
                 QLatin1Char('\n');
    }
    return usage + QStringLiteral(
                       "  yunqi-statement COMMAND --help\n"
                       "  yunqi-statement help COMMAND\n"
                       "  yunqi-statement --help|--version\n");
}

int RunStatementCli(const QStringList& args) {
    if (args.isEmpty()) return Usage(QString());
    const QString& name = args.first();
    if (name == QLatin1String("--help") || name == QLatin1String("-h") ||
        name == QLatin1String("help")) {
        const QStringList rest = args.mid(1);
        if (rest.isEmpty()) return Print(StatementUsage());
        // "help batch" is the usage of batch alone.
        const bool named = name == QLatin1String("help");
        if (named && rest.size() == 1)
            return Find(rest[0]) ? Print(StatementUsage(rest[0]))
                                 : Usage(QStringLiteral("unknown command: ") + rest[0]);
        return Usage(QStringLiteral("unexpected argument ") + rest[named ? 1 : 0]);
    }
    if (name == QLatin1String("--version")) {
        if (args.size() > 1) return Usage(QStringLiteral("unexpected argument ") + args[1]);
        return Print(QStringLiteral("yunqi-statement " YUNQI_VERSION "\n"));
    }
    const Command* command = Find(name);
    if (!command) return Usage(QStringLiteral("unknown command: ") + name);
    const QStringList rest = args.mid(1);
    // The command's own table tells where "--help" stands as an option.
    if (ParseArgs(*command->spec, rest).help) return Print(StatementUsage(name));
    static ConsoleDialogs dialogs;
    SetAppDialogs(&dialogs);
    return command->run(rest);
}

}  // namespace yunqi
