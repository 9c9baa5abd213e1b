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
            if (report->makePaged)
                list.push_back({report->command, spec, [report](const QStringList& args) {
                                    return RunPagedStatement(*report, args, OpenStatementSession);
                                }});
            else if (report->makeMonthly)
                list.push_back({report->command, spec, [report](const QStringList& args) {
                                    return RunMonthlyStatement(*report, args,
                                                               OpenStatementSession);
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

}  // namespace

QString StatementUsage(const QString& command) {
    if (const Command* c = Find(command))
        return QStringLiteral("usage: ") + UsageLine(c->name, *c->spec) + QLatin1Char('\n');
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
    return usage;
}

int CommandArgumentError(const QString& command, const QString& problem) {
    QTextStream(stderr) << "yunqi-statement: " << command << ": " << problem << "\n"
                        << StatementUsage(command);
    return kExitBadArguments;
}

int RunStatementCli(const QStringList& args) {
    if (args.isEmpty()) return Usage(QString());
    const QString& name = args.first();
    const Command* command = Find(name);
    if (!command) return Usage(QStringLiteral("unknown command: ") + name);
    static ConsoleDialogs dialogs;
    SetAppDialogs(&dialogs);
    return command->run(args.mid(1));
}

}  // namespace yunqi
