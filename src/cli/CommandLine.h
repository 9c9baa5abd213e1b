#pragma once

#include <QString>
#include <QStringList>
#include <utility>
#include <vector>

namespace yunqi {

// The arguments of every yunqi-statement command are read from a table of
// its options, so that one mistake reads the same in every command and each
// usage line is written once.
struct OptionSpec {
    enum Flag : unsigned {
        Required = 1,    // "--dept is required"
        Repeatable = 2,  // given more than once; else "--dept given twice"
        Positional = 4,  // a bare argument (make-demo-db's FILE), named by name
        Hidden = 8,      // left out of the usage (the batch's own --ratio-if-present)
    };
    const char* name;   // "--dept", or "FILE" for a positional
    const char* value;  // the usage's placeholder ("CODE"); null for a flag
    unsigned flags = 0;
    // The whole problem for a value of the wrong shape, else an empty text.
    QString (*check)(const QString& name, const QString& value) = nullptr;
};

struct CommandSpec {
    std::vector<OptionSpec> options;
    // Options of a sibling command, refused with name + foreignHint.
    QStringList foreign;
    QString foreignHint;
};

// What the arguments said: the options in the order given (a flag with an
// empty value, a positional under its name), a request for the usage, or
// the first problem.
struct ParsedArgs {
    std::vector<std::pair<QString, QString>> given;
    bool help = false;
    QString problem;

    bool Has(const QString& name) const;
    QString Value(const QString& name) const;  // the last one given
    QStringList Values(const QString& name) const;
};

// Reads the arguments after the command name. "--help" or "-h" where an
// option may stand asks for the usage. The next argument is a value unless
// it names an option of the command, so "--csv -" writes to standard output
// and "--csv --xlsx x" lacks the CSV path.
ParsedArgs ParseArgs(const CommandSpec& spec, const QStringList& args);

// "yunqi-statement NAMES OPTIONS...", from the table.
QString UsageLine(const QString& names, const CommandSpec& spec);
// "usage: yunqi-statement NAME OPTIONS...\n": the usage of one command.
QString CommandUsage(const QString& name, const CommandSpec& spec);

// The wording of a value of the wrong shape: "--year wants a year YYYY, not 24".
QString Wants(const QString& name, const QString& what, const QString& value);

// Exit statuses shared by every command.
constexpr int kExitBadArguments = 2;

// A bad argument of a command: "yunqi-statement: COMMAND: PROBLEM", then the
// command's usage, on standard error. Returns kExitBadArguments.
int CommandArgumentError(const QString& command, const CommandSpec& spec, const QString& problem);

}  // namespace yunqi
