// SPDX-License-Identifier: MIT
#include "DataSetTesting.h"

#include "support/ScriptedPrompts.h"

using namespace Korvane;
using namespace Korvane::Testing;

namespace {

class Commands : public DataSetTest
{
protected:
    Commands()
    {
        AddParts({{u"P1"_s, u"a"_s, 1}});
        AIsSuper = u"N"_s;
        Command.SetDBDFile(&Design);
        Command.SetDBSession(&Session);
    }

    const QStringList Clocks{u"<clock>"_s, u"<clock>"_s, u"<clock>"_s};
    TExCommand Command;
};

TEST_P(Commands, AsksForFileThenSessionAndConnects)
{
    TExCommand command;
    EXPECT_EQ(MessageOf([&] { command.Execute(); }), "没有设置正确的DBDFile属性");
    command.SetDBDFile(&Design);
    EXPECT_EQ(MessageOf([&] { command.Execute(); }), "没有设置正确的DBSession属性");
    command.SetDBSession(&Session);
    command.SetCommand(u"CLOSE"_s);
    Session.SetConnected(false);
    EXPECT_NE(command.GetCommandSQL(), "");
    EXPECT_TRUE(Session.Connected());
    command.SetCommand(u"NOWHERE"_s);
    EXPECT_NE(MessageOf([&] { command.Execute(); }), "nothing");
}

TEST_P(Commands, UserMacrosInTheTextOfTheDialect)
{
    const QString note = u"u1 g1 N "_s + (GetParam() == dbtMSSQL ? u"mssql"_s : u"access"_s);
    Command.SetCommand(u"CLOSE"_s);
    EXPECT_TRUE(Command.Execute());
    EXPECT_EQ(Log(), Clocks + QStringList{u"update PART set NOTE='"_s + note + u"' where CODE='P1'"_s});
    EXPECT_EQ(TextOfTable(u"select NOTE from PART"_s), note);
}

TEST_P(Commands, ClockMacrosAndArguments)
{
    Command.SetCommand(u"STAMP"_s);
    EXPECT_TRUE(Command.Execute({"P1"}));
    EXPECT_EQ(Log().mid(0, 3), Clocks);
    static const QRegularExpression form(u"^(\\d{14}) (\\d{8}) \\d{6}$"_s);
    const auto match = form.match(TextOfTable(u"select NOTE from PART"_s));
    ASSERT_TRUE(match.hasMatch()) << match.captured().toStdString();
    EXPECT_EQ(match.captured(1).left(8), match.captured(2));
    // Too few arguments, and a percent sign that only the macro brings in.
    EXPECT_NE(MessageOf([&] { Command.Execute(QVariantList()); }), "nothing");
    Command.SetCommand(u"CLOSE"_s);
    AUserCode = u"50%"_s;
    EXPECT_NE(MessageOf([&] { Command.Execute({"P1"}); }), "nothing");
    EXPECT_TRUE(Command.Execute());
}

TEST_P(Commands, AnUnknownMacroStandsAsItIs)
{
    Command.SetCommand(u"TYPO"_s);
    EXPECT_TRUE(Command.Execute());
    EXPECT_EQ(TextOfTable(u"select NOTE from PART"_s), "%USERNAME%");
    EXPECT_NE(MessageOf([&] { Command.Execute({"P1"}); }), "nothing");
}

TEST_P(Commands, DebugShowsTheStatementAndRunsNothing)
{
    PromptScript script;
    Command.SetCommand(u"STAMP"_s);
    Command.Debug({"P1"});
    EXPECT_EQ(Log(), Clocks);
    ASSERT_EQ(script->Boxes.size(), 1);
    EXPECT_TRUE(script->Boxes[0].Text.endsWith(u"' where CODE='P1'"_s));
    EXPECT_EQ(TextOfTable(u"select NOTE from PART"_s), "~");
}

INSTANTIATE_TEST_SUITE_P(Places, Commands, testing::ValuesIn(AllPlaces()), PlaceName);

} // namespace
