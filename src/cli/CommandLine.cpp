#include "cli/CommandLine.h"

#include <QSet>
#include <QTextStream>
#include <algorithm>

namespace yunqi {

namespace {

bool IsHelp(const QString& arg) {
    return arg == QLatin1String("--help") || arg == QLatin1String("-h");
}

const OptionSpec* Find(const CommandSpec& spec, const QString& name) {
    for (const OptionSpec& o : spec.options)
        if (!(o.flags & OptionSpec::Positional) && name == QLatin1String(o.name)) return &o;
    return nullptr;
}

// An argument that names an option is never taken as another's value.
bool NamesOption(const CommandSpec& spec, const QString& arg) {
    return IsHelp(arg) || Find(spec, arg) || spec.foreign.contains(arg);
}

}  // namespace

bool ParsedArgs::Has(const QString& name) const {
    for (const auto& [n, v] : given)
        if (n == name) return true;
    return false;
}

QString ParsedArgs::Value(const QString& name) const {
    const QStringList all = Values(name);
    return all.isEmpty() ? QString() : all.last();
}

QStringList ParsedArgs::Values(const QString& name) const {
    QStringList values;
    for (const auto& [n, v] : given)
        if (n == name) values << v;
    return values;
}

ParsedArgs ParseArgs(const CommandSpec& spec, const QStringList& args) {
    ParsedArgs parsed;
    const auto fail = [&parsed](const QString& problem) {
        parsed.problem = problem;
        parsed.given.clear();
        return parsed;
    };
    const auto emptyValue = [](const QString& name) {
        return name + QStringLiteral(" needs a value, not an empty text");
    };
    QSet<QString> seen;
    for (int i = 0; i < args.size(); ++i) {
        const QString& arg = args[i];
        if (IsHelp(arg)) {
            parsed.help = true;
            parsed.given.clear();
            return parsed;
        }
        if (!arg.startsWith(QLatin1String("--"))) {
            const auto slot = std::find_if(
                spec.options.begin(), spec.options.end(), [&seen](const OptionSpec& o) {
                    return (o.flags & OptionSpec::Positional) && !seen.contains(o.name);
                });
            if (slot == spec.options.end())
                return fail(QStringLiteral("unexpected argument ") + arg);
            if (arg.isEmpty()) return fail(emptyValue(slot->name));
            seen.insert(slot->name);
            parsed.given.emplace_back(slot->name, arg);
            continue;
        }
        const OptionSpec* option = Find(spec, arg);
        if (!option) {
            if (spec.foreign.contains(arg)) return fail(arg + spec.foreignHint);
            return fail(QStringLiteral("unknown option ") + arg);
        }
        QString value;
        if (option->value) {
            if (i + 1 >= args.size() || NamesOption(spec, args[i + 1]))
                return fail(arg + QStringLiteral(" needs a value"));
            value = args[++i];
            if (value.isEmpty()) return fail(emptyValue(arg));
        }
        if (!(option->flags & OptionSpec::Repeatable) && seen.contains(arg))
            return fail(arg + QStringLiteral(" given twice"));
        seen.insert(arg);
        parsed.given.emplace_back(arg, value);
    }
    // Values are checked once every option is known to be well formed.
    for (const auto& [name, value] : parsed.given) {
        const OptionSpec* option = Find(spec, name);
        if (option && option->check)
            if (const QString problem = option->check(name, value); !problem.isEmpty())
                return fail(problem);
    }
    for (const OptionSpec& o : spec.options)
        if ((o.flags & OptionSpec::Required) && !seen.contains(o.name))
            return fail(QLatin1String(o.name) + QStringLiteral(" is required"));
    return parsed;
}

QString UsageLine(const QString& names, const CommandSpec& spec) {
    QString line = QStringLiteral("yunqi-statement ") + names;
    for (const OptionSpec& o : spec.options) {
        if (o.flags & OptionSpec::Hidden) continue;
        QString text = QLatin1String(o.name);
        if (o.value && !(o.flags & OptionSpec::Positional))
            text += QLatin1Char(' ') + QLatin1String(o.value);
        if (!(o.flags & OptionSpec::Required)) text = QLatin1Char('[') + text + QLatin1Char(']');
        // A repeated flag says nothing more; only repeated values are shown as such.
        if ((o.flags & OptionSpec::Repeatable) && o.value) text += QStringLiteral("...");
        line += QLatin1Char(' ') + text;
    }
    return line;
}

QString CommandUsage(const QString& name, const CommandSpec& spec) {
    return QStringLiteral("usage: ") + UsageLine(name, spec) + QLatin1Char('\n');
}

int CommandArgumentError(const QString& command, const CommandSpec& spec, const QString& problem) {
    QTextStream(stderr) << "yunqi-statement: " << command << ": " << problem << "\n"
                        << CommandUsage(command, spec);
    return kExitBadArguments;
}

QString Wants(const QString& name, const QString& what, const QString& value) {
    return name + QStringLiteral(" wants ") + what + QStringLiteral(", not ") + value;
}

}  // namespace yunqi
