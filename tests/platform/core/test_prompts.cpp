// SPDX-License-Identifier: MIT
#include "platform/core/ApplicationTitle.h"
#include "platform/core/ConsolePrompts.h"
#include "platform/core/Cursor.h"

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <sstream>
#include <stdexcept>

using namespace Korvane;

namespace {

QString S(const char *text) { return QString::fromUtf8(text); }

/// A console whose input is given beforehand.
struct TScriptedConsole
{
    explicit TScriptedConsole(const std::string &input) : Input(input) {}

    std::istringstream Input;
    std::ostringstream Output;
    TConsolePrompts Prompts{Input, Output};
};

} // namespace

TEST(ConsolePrompts, AnswersMessageBoxes)
{
    const struct
    {
        int Flags;
        const char *Input;
        int Answer;
    } rows[] = {
        {MB_OK | MB_ICONINFORMATION, "", IDOK},
        {MB_YESNO | MB_ICONQUESTION, "y\n", IDYES},
        {MB_YESNO, "YES\n", IDYES},
        {MB_YESNO, " 是 \n", IDYES},
        {MB_YESNO, "否\n", IDNO},
        {MB_YESNO, "n", IDNO},
        {MB_YESNO, "\n", IDYES},
        {MB_YESNO | MB_DEFBUTTON2, "\n", IDNO},
        {MB_YESNO, "what\ny\n", IDYES},
        {MB_YESNO, "what\n", IDNO}, // the end of the input refuses
        {MB_YESNO, "", IDNO},
        {MB_OKCANCEL, "", IDCANCEL},
        {MB_OKCANCEL, "\n", IDOK},
        {MB_OKCANCEL, "取消\n", IDCANCEL},
        {MB_OKCANCEL | MB_DEFBUTTON2, "\n", IDCANCEL},
        {MB_ABORTRETRYIGNORE, "", IDABORT},
        {MB_ABORTRETRYIGNORE | MB_DEFBUTTON3, "\n", IDIGNORE},
        {MB_YESNOCANCEL, "", IDCANCEL},
        {MB_YESNOCANCEL | MB_DEFBUTTON2, "\n", IDNO},
        {MB_RETRYCANCEL, "重试\n", IDRETRY},
        {MB_RETRYCANCEL | MB_DEFBUTTON3, "\n", IDCANCEL}, // which it does not have
    };
    for (const auto &row : rows) {
        TScriptedConsole console(row.Input);
        EXPECT_EQ(console.Prompts.MessageBox(S("删除？"), S("订单"), row.Flags), row.Answer)
            << row.Flags << " " << row.Input;
        EXPECT_EQ(console.Output.str().substr(0, std::string("订单：删除？\n").size()), "订单：删除？\n");
    }
}

TEST(ConsolePrompts, ReadsTextAndNames)
{
    const QTemporaryDir folder;
    const QString file = folder.filePath(S("a.txt"));
    QFile(file).open(QIODevice::WriteOnly);
    TScriptedConsole console(
        (S("新值\n\n") + file + S("\n/none/b.txt\n\n") + folder.path() + u'\n' + file + u'\n').toStdString());
    QString value = S("旧值");
    EXPECT_TRUE(console.Prompts.InputText(S("标题"), S("名称"), value));
    EXPECT_EQ(value, S("新值"));
    EXPECT_TRUE(console.Prompts.InputText(S("标题"), S("名称"), value));
    EXPECT_EQ(value, S("新值")); // an empty line leaves it
    EXPECT_EQ(console.Prompts.OpenFileName(S("打开"), S("*"), {}), file);
    EXPECT_EQ(console.Prompts.OpenFileName(S("打开"), S("*"), {}), QString());
    EXPECT_EQ(console.Prompts.SaveFileName(S("保存"), S("*"), S("c.txt")), S("c.txt"));
    EXPECT_EQ(console.Prompts.SelectFolder(S("选择路径")), folder.path());
    EXPECT_EQ(console.Prompts.SelectFolder(S("选择路径")), QString()); // a file is no folder
    EXPECT_FALSE(console.Prompts.InputText(S("标题"), S("名称"), value));
    EXPECT_EQ(value, S("新值"));
    EXPECT_EQ(console.Prompts.SaveFileName(S("保存"), S("*"), S("c.txt")), QString());
}

TEST(Prompts, AreInstalledAndGivenBack)
{
    std::istringstream input;
    std::ostringstream output;
    const auto mine = std::make_shared<TConsolePrompts>(input, output);
    const auto before = Prompts::Install(mine);
    EXPECT_EQ(&Prompts::Current(), mine.get());
    EXPECT_EQ(Prompts::Install(nullptr), mine);
    EXPECT_NE(&Prompts::Current(), mine.get());
    Prompts::Install(before);
    EXPECT_EQ(&Prompts::Current(), before.get());
}

TEST(Cursor, HourGlassComesAndGoesThroughTheHook)
{
    {
        const THourGlass withoutHook;
    }
    QList<TCursor> shown;
    const TCursorHook before = InstallCursorHook([&](TCursor cursor) { shown += cursor; });
    SetScreenCursor(crSQLWait);
    try {
        const THourGlass outer;
        const THourGlass inner; // shows nothing new
        throw std::runtime_error("failure");
    } catch (const std::runtime_error &) {
    }
    SetScreenCursor(crDefault);
    InstallCursorHook(before);
    EXPECT_EQ(shown, (QList<TCursor>{crSQLWait, crHourGlass, crSQLWait, crDefault}));
}

TEST(ApplicationTitle, IsTheApplicationsNameUnlessSet)
{
    SetApplicationTitle(S("订单管理"));
    EXPECT_EQ(ApplicationTitle(), S("订单管理"));
    SetApplicationTitle({});
    EXPECT_EQ(ApplicationTitle(), QCoreApplication::applicationName());
}
