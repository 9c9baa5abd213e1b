// Every command of yunqi-statement reads its arguments through one table: a
// mistake reads the same in each, exit 2, the reason then that command's own
// usage, once, on standard error; --help and --version answer on standard
// output.
#include <gtest/gtest.h>

#include <QRegularExpression>
#include <QTemporaryDir>

#include "cli/ToolProcess.h"
#include "reports/Reports.h"

using namespace yunqi;
using namespace yunqi::test;

namespace {

// A command, valid arguments but for one option, that option with a good and
// a bad value, and the first required option.
struct CommandRow {
    const char* command;
    QStringList rest;
    QString option, good, bad, wants, required;
};

// clang-format off
const CommandRow kCommands[] = {
    {"invoice", {"--dept", "01", "--to", "2024-12-31"}, "--from", "2024-01-01", "2024-02-30",
     "--from wants a date YYYY-MM-DD, not 2024-02-30", "--dept"},
    {"preinvoice", {"--dept", "01", "--from", "2024-01-01"}, "--to", "2024-12-31", "12/31/2024",
     "--to wants a date YYYY-MM-DD, not 12/31/2024", "--dept"},
    {"parking", {"--dept", "01", "--to", "2024-01-31"}, "--from", "2024-01-01", "2024-1-1",
     "--from wants a date YYYY-MM-DD, not 2024-1-1", "--dept"},
    {"reconciliation", {"--dept", "01", "--months", "01-06"}, "--year", "2024", "24",
     "--year wants a year YYYY, not 24", "--dept"},
    {"batch", {"--out", "out"}, "--month", "2024-03", "2024-13",
     "--month wants a month YYYY-MM, not 2024-13", "--month"},
    {"make-demo-db", {"demo.sqlite"}, "--tickets", "10", "many",
     "--tickets wants a whole number, not many", "FILE"},
};
// clang-format on

void PrintTo(const CommandRow& c, std::ostream* os) { *os << c.command; }

enum class Mistake { UnknownOption, Repeated, MissingValue, EmptyValue, Stray, BadShape, Required };
const char* const kMistakes[] = {"UnknownOption", "Repeated", "MissingValue", "EmptyValue",
                                 "Stray",         "BadShape", "Required"};
void PrintTo(Mistake m, std::ostream* os) { *os << kMistakes[int(m)]; }

// The arguments of a mistake and the one wording every command gives it.
std::pair<QStringList, QString> Make(const CommandRow& c, Mistake m) {
    const QStringList given = c.rest + QStringList{c.option, c.good};
    switch (m) {
        case Mistake::UnknownOption:
            return {given + QStringList{"--bogus"}, "unknown option --bogus"};
        case Mistake::Repeated:
            return {given + QStringList{c.option, c.good}, c.option + " given twice"};
        case Mistake::MissingValue:
            return {c.rest + QStringList{c.option}, c.option + " needs a value"};
        case Mistake::EmptyValue:
            return {c.rest + QStringList{c.option, ""},
                    c.option + " needs a value, not an empty text"};
        case Mistake::Stray:
            return {given + QStringList{"stray"}, "unexpected argument stray"};
        case Mistake::BadShape:
            return {c.rest + QStringList{c.option, c.bad}, c.wants};
        case Mistake::Required:
            return {{}, c.required + " is required"};
    }
    return {};
}

class StatementCliMistakes : public ::testing::TestWithParam<std::tuple<CommandRow, Mistake>> {};

TEST_P(StatementCliMistakes, ReadTheSameInEveryCommand) {
    const auto& [c, mistake] = GetParam();
    const auto [args, problem] = Make(c, mistake);
    QTemporaryDir dir;
    const ToolResult r = RunTool(QStringList{c.command} + args, {.workDir = dir.path()});
    EXPECT_EQ(r.status, 2);
    EXPECT_TRUE(r.out.isEmpty());
    const QStringList lines = r.Err().split('\n');
    ASSERT_EQ(lines.size(), 3) << r.Err().toStdString();  // the reason, the usage, ""
    EXPECT_TRUE(lines[0].startsWith("yunqi-statement: ")) << lines[0].toStdString();
    EXPECT_TRUE(lines[0].endsWith(": " + problem)) << lines[0].toStdString();
    EXPECT_TRUE(lines[1].startsWith(QStringLiteral("usage: yunqi-statement %1 ").arg(c.command)));
    EXPECT_TRUE(QDir(dir.path()).isEmpty());
}

std::string RowName(const ::testing::TestParamInfo<std::tuple<CommandRow, Mistake>>& info) {
    return QString(std::get<0>(info.param).command).remove('-').toStdString() + "_" +
           kMistakes[int(std::get<1>(info.param))];
}

INSTANTIATE_TEST_SUITE_P(
    AllCommands, StatementCliMistakes,
    ::testing::Combine(::testing::ValuesIn(kCommands),
                       ::testing::Values(Mistake::UnknownOption, Mistake::Repeated,
                                         Mistake::MissingValue, Mistake::EmptyValue, Mistake::Stray,
                                         Mistake::BadShape, Mistake::Required)),
    RowName);

TEST(StatementCliTest, HelpAndVersionAnswerOnStandardOutput) {
    const ToolResult all = RunTool({"--help"});
    EXPECT_EQ(all.status, 0);
    EXPECT_TRUE(all.err.isEmpty());
    EXPECT_TRUE(all.out.startsWith("usage:\n"));
    EXPECT_TRUE(all.out.contains("\n  yunqi-statement help COMMAND\n"));
    for (const QStringList& same : {QStringList{"-h"}, QStringList{"help"}})
        EXPECT_EQ(RunTool(same).out, all.out) << same.join(' ').toStdString();
    // No arguments: the same usage, as a mistake.
    const ToolResult none = RunTool({});
    EXPECT_EQ(none.status, 2);
    EXPECT_EQ(none.err, all.out);

    // A command's --help is the usage its mistakes show, and a line of the whole usage.
    for (const CommandRow& c : kCommands) {
        const ToolResult help = RunTool(QStringList{c.command} + c.rest + QStringList{"-h"});
        EXPECT_EQ(help.status, 0) << c.command;
        EXPECT_EQ(RunTool({"help", c.command}).out, help.out);
        const QString mistake = RunTool({c.command, "--bogus"}).Err();
        EXPECT_EQ(mistake.section('\n', 1), QString::fromUtf8(help.out)) << c.command;
        const QByteArray line = "usage: yunqi-statement " + QByteArray(c.command) + " ";
        ASSERT_TRUE(help.out.startsWith(line)) << help.out.toStdString();
        EXPECT_TRUE(all.out.contains(" " + help.out.mid(line.size()))) << c.command;
    }
    for (const ReportDefinition* report : AllReports())
        EXPECT_TRUE(all.out.contains(report->command.toUtf8()));

    const ToolResult version = RunTool({"--version"});
    EXPECT_EQ(version.status, 0);
    EXPECT_TRUE(QRegularExpression("^yunqi-statement \\d+\\.\\d+\\.\\d+\n$")
                    .match(QString::fromUtf8(version.out))
                    .hasMatch())
        << version.out.toStdString();
    EXPECT_EQ(RunTool({"--version", "x"}).status, 2);
    EXPECT_EQ(RunTool({"help", "nonsense"}).status, 2);
}

}  // namespace
