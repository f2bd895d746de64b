// SPDX-License-Identifier: MIT
#include "tools/korvane/CommandLine.h"

#include "ToolTesting.h"

using namespace Korvane;
using namespace Korvane::Testing;
using namespace Qt::StringLiterals;

namespace {
const QList<TOption> Options = {{u"name"_s, u"TEXT"_s, {}}, {u"yes"_s, {}, {}}};
}

TEST(CommandLine, options_stand_anywhere_before_the_double_dash)
{
    TCommandLine line(Options, {u"a"_s, u"--name"_s, u"--yes"_s, u"-"_s, u"--"_s, u"--yes"_s});
    EXPECT_EQ(line.Value(u"name"_s), u"--yes"_s);
    EXPECT_FALSE(line.Has(u"yes"_s));
    EXPECT_EQ(line.Take({}), u"a"_s);
    EXPECT_EQ(line.Take({}), u"-"_s);
    EXPECT_EQ(line.Take({}), u"--yes"_s);
    line.CheckEnd();
}

TEST(CommandLine, a_value_stands_behind_a_blank_or_an_equals_sign)
{
    EXPECT_EQ(TCommandLine(Options, {u"--name"_s, u"a=b"_s}).Value(u"name"_s), u"a=b"_s);
    EXPECT_EQ(TCommandLine(Options, {u"--name=a=b"_s}).Value(u"name"_s), u"a=b"_s);
    const TCommandLine empty(Options, {u"--name="_s});
    EXPECT_TRUE(empty.Has(u"name"_s));
    EXPECT_EQ(empty.Value(u"name"_s), u""_s);
    EXPECT_TRUE(TCommandLine(Options, {}).Value(u"name"_s).isNull());
}

TEST_F(ToolTest, a_wrong_call_does_nothing_and_says_what_is_wrong)
{
    const QString design = QStringLiteral(KORVANE_EXAMPLES_DIR "/orders.dbd");
    const QStringList create = {u"create"_s, design, u"--database"_s, u"x.db"_s};
    const QStringList sql = {u"sql"_s, u"--database"_s, u"x.db"_s};
    const struct
    {
        QStringList Arguments;
        QString Message;
    } rows[] = {
        {{}, u"缺少命令。用法见 korvane --help"_s},
        {{u"dance"_s}, u"未知的命令 dance。用法见 korvane --help"_s},
        {{u"--yes"_s}, u"未知的命令 --yes。用法见 korvane --help"_s},
        {{u"create"_s}, u"缺少参数 DESIGN。用法见 korvane create --help"_s},
        {{u"create"_s, design}, u"缺少选项 --database。用法见 korvane create --help"_s},
        {{u"create"_s, u"--design="_s}, u"缺少选项 --design。用法见 korvane create --help"_s},
        {create + QStringList{u"more"_s}, u"多余的参数 more。用法见 korvane create --help"_s},
        {create + QStringList{u"--yes=1"_s}, u"选项 --yes 没有值。用法见 korvane create --help"_s},
        {create + QStringList{u"--yes"_s, u"--yes"_s},
         u"选项 --yes 给了不止一次。用法见 korvane create --help"_s},
        {create + QStringList{u"--user"_s}, u"选项 --user 缺少值 NAME。用法见 korvane create --help"_s},
        {create + QStringList{u"-x"_s}, u"未知的选项 -x。用法见 korvane create --help"_s},
        {create + QStringList{u"--csv"_s}, u"未知的选项 --csv。用法见 korvane create --help"_s},
        {create + QStringList{u"--dialect"_s, u"oracle"_s},
         u"未知的方言 oracle，应为 access 或 mssql。用法见 korvane create --help"_s},
        {create + QStringList{u"--dialect"_s, u"mssql"_s},
         u"缺少选项 --server。用法见 korvane create --help"_s},
        {create + QStringList{u"--password=a"_s, u"--password-file=b"_s},
         u"选项 --password 和 --password-file 只能用一个。用法见 korvane create --help"_s},
        {sql, u"缺少参数 STATEMENT。用法见 korvane sql --help"_s},
        {sql + QStringList{u"select 1"_s, u"--file"_s, u"a.sql"_s},
         u"多余的参数 select 1。用法见 korvane sql --help"_s},
        {{u"fields"_s, design}, u"缺少参数 NAME。用法见 korvane fields --help"_s},
        {{u"fields"_s, design, u""_s}, u"缺少参数 NAME。用法见 korvane fields --help"_s},
        {{u"class"_s, design, u"UNIT"_s, u"--all"_s}, u"多余的参数 UNIT。用法见 korvane class --help"_s},
    };
    for (const auto &row : rows) {
        const ToolRun run = RunKorvane(row.Arguments);
        EXPECT_EQ(run.Status, 2) << qPrintable(row.Message);
        EXPECT_EQ(run.Err, row.Message + u'\n');
        EXPECT_EQ(run.Out, QString());
    }
    EXPECT_TRUE(QDir().isEmpty());
}

TEST(ToolHelp, tells_of_every_command_and_its_options)
{
    const QString tool = RunKorvane({u"--help"_s}).Out;
    EXPECT_EQ(RunKorvane({u"-h"_s}).Out, tool);
    const QHash<QString, QStringList> commands = {
        {u"create"_s,
         {u"--design FILE"_s, u"--dialect NAME"_s, u"--server NAME"_s, u"--database NAME"_s, u"--user NAME"_s,
          u"--password TEXT"_s, u"--password-file FILE"_s, u"--app-name NAME"_s, u"--bool-as-char"_s,
          u"--yes"_s, u"--progress"_s}},
        {u"upgrade"_s, {u"--design FILE"_s, u"--database NAME"_s}},
        {u"script"_s, {u"--bool-as-char"_s, u"--comments"_s, u"--properties"_s, u"--output FILE"_s}},
        {u"check"_s, {u"--database NAME"_s, u"--progress"_s}},
        {u"repair"_s, {u"--database NAME"_s, u"--yes"_s}},
        {u"tables"_s, {u"--design FILE"_s}},
        {u"fields"_s, {u"--design FILE"_s}},
        {u"sql"_s, {u"--database NAME"_s, u"--file FILE"_s, u"--csv"_s}},
        {u"class"_s, {u"--all"_s}},
    };
    for (auto command = commands.begin(); command != commands.end(); ++command) {
        EXPECT_TRUE(tool.contains(u"\n  "_s + command.key())) << qPrintable(command.key());
        const ToolRun help = RunKorvane({command.key(), u"--help"_s});
        EXPECT_EQ(help.Status, 0);
        EXPECT_TRUE(help.Out.startsWith(u"用法：korvane %1 "_s.arg(command.key()))) << qPrintable(help.Out);
        for (const QString &option : command.value())
            EXPECT_TRUE(help.Out.contains(u"\n  "_s + option + u' '))
                << qPrintable(option + u'\n' + help.Out);
    }
    EXPECT_EQ(RunKorvane({u"--version"_s}).Out.section(u' ', 0, 0), u"korvane"_s);
}
