// SPDX-License-Identifier: MIT
#include "FormsTesting.h"

#include "platform/core/Exceptions.h"
#include "platform/forms/ActionList.h"
#include "platform/forms/Button.h"
#include "support/ScriptedPrompts.h"

#include <QPixmap>

using namespace Korvane;
using namespace Korvane::Testing;
using namespace Qt::StringLiterals;

namespace {

class ActionTest : public testing::Test
{
protected:
    ActionTest()
    {
        Save->SetShortCut(QKeySequence(u"Ctrl+S"_s));
        Save->OnExecute = [this](TAction *action) {
            EXPECT_EQ(action, Save);
            ++Saves;
        };
    }

    TForm Form;
    TActionList *List = new TActionList(&Form);
    TAction *Save = new TAction(List);
    int Saves = 0;
};

} // namespace

TEST_F(ActionTest, ExecutesByShortCutButtonAndCallWhenEnabled)
{
    auto *button = new TButton(&Form);
    Save->SetCaption(u"保存(&S)"_s);
    button->SetAction(Save);
    EXPECT_EQ(button->Caption(), u"保存(&S)");
    ShowActive(Form);
    const auto all = [&] {
        const int before = Saves;
        QTest::keyClick(&Form, Qt::Key_S, Qt::ControlModifier);
        QTest::mouseClick(button, Qt::LeftButton);
        Save->Execute();
        return Saves - before;
    };
    EXPECT_EQ(all(), 3);
    Save->SetEnabled(false);
    EXPECT_FALSE(button->Enabled());
    EXPECT_EQ(all(), 0);
    Save->SetEnabled(true);
    List->SetState(asSuspended);
    EXPECT_EQ(all(), 0);
    List->SetState(asNormal);
    EXPECT_EQ(all(), 3);

    // The update that goes before an execution may refuse it.
    Save->OnUpdate = [](TAction *action) { action->SetEnabled(false); };
    EXPECT_FALSE(Save->Execute());
    // What the list has handled does not come to the action.
    Save->OnUpdate = nullptr;
    Save->SetEnabled(true);
    List->OnExecute = [](TAction *, bool &isHandled) { isHandled = true; };
    EXPECT_EQ(all(), 0);
}

TEST_F(ActionTest, EnabledDoesNotDependOnVisible)
{
    Save->SetVisible(false);
    EXPECT_TRUE(Save->Enabled());
    EXPECT_FALSE(Save->Execute()); // nobody could choose it
    Save->SetEnabled(false);
    Save->SetVisible(true);
    EXPECT_FALSE(Save->Enabled());
    Save->SetVisible(false);
    Save->SetEnabled(true);
    Save->SetVisible(true);
    EXPECT_TRUE(Save->Enabled());
    EXPECT_TRUE(Save->Execute());
}

TEST_F(ActionTest, OnlyAutoCheckChangesChecked)
{
    Save->SetChecked(true);
    Save->OnExecute = [](TAction *action) { EXPECT_TRUE(action->Checked()); };
    Save->Execute();
    EXPECT_TRUE(Save->Checked() && Save->isChecked());
    Save->SetAutoCheck(true);
    Save->OnExecute = [](TAction *action) { EXPECT_FALSE(action->Checked()); };
    Save->Execute();
    EXPECT_FALSE(Save->Checked() || Save->isChecked());
}

TEST_F(ActionTest, UpdatesWhenNothingElseIsToDo)
{
    bool isDirty = false;
    int updates = 0;
    Save->OnUpdate = [&](TAction *action) {
        ++updates;
        action->SetEnabled(isDirty);
    };
    QEventLoop loop;
    const auto pause = [&loop] {
        QTimer::singleShot(20, &loop, &QEventLoop::quit);
        loop.exec();
    };
    pause();
    EXPECT_EQ(updates, 0); // its window is not seen
    ShowActive(Form);
    pause();
    EXPECT_GT(updates, 0);
    EXPECT_FALSE(Save->Enabled());
    isDirty = true;
    pause();
    EXPECT_TRUE(Save->Enabled());
    EXPECT_LT(updates, 60); // it would be thousands
    updates = 0;
    List->OnUpdate = [](TAction *action, bool &isHandled) {
        action->SetEnabled(false);
        isHandled = true;
    };
    pause();
    EXPECT_EQ(updates, 0);
    EXPECT_FALSE(Save->Enabled());
}

TEST_F(ActionTest, WhatItRaisesEndsInTheApplication)
{
    PromptScript script;
    Save->OnExecute = [](TAction *) { throw Exception(u"存不了"_s); };
    ShowActive(Form);
    QTest::keyClick(&Form, Qt::Key_S, Qt::ControlModifier);
    Save->OnExecute = [](TAction *) { Abort(); };
    QTest::keyClick(&Form, Qt::Key_S, Qt::ControlModifier);
    ASSERT_EQ(script->Boxes.size(), 1);
    EXPECT_EQ(script->Boxes[0].Text, u"存不了");
}

TEST_F(ActionTest, PicturesComeFromTheList)
{
    Save->SetImageIndex(0);
    EXPECT_TRUE(Save->icon().isNull());
    auto images = std::make_unique<TImageList>();
    List->SetImages(images.get());
    QPixmap red(16, 16);
    red.fill(Qt::red);
    images->Add(red);
    EXPECT_EQ(Save->icon().pixmap(16).toImage().pixelColor(8, 8), QColor(Qt::red));
    Save->SetImageIndex(-1);
    EXPECT_TRUE(Save->icon().isNull());
    Save->SetImageIndex(0);
    images.reset();
    EXPECT_TRUE(Save->icon().isNull());
}

TEST_F(ActionTest, ListsAndActionsMayGoInAnyOrder)
{
    auto *loose = new TAction(&Form);
    loose->SetActionList(List);
    EXPECT_EQ(List->Actions(), (QList<TAction *>{Save, loose}));
    EXPECT_EQ(Form.actions(), (QList<QAction *>{Save, loose}));
    EXPECT_THROW(List->Action(2), EListError);
    delete Save;
    EXPECT_EQ(List->Actions(), QList<TAction *>{loose});
    delete List;
    EXPECT_EQ(loose->ActionList(), nullptr);
    // The hint may be changed or held back.
    loose->SetHint(u"提示"_s);
    loose->OnHint = [](QString &hint, bool &isShown) { isShown = (hint += u"！"_s).size() < 4; };
    EXPECT_EQ(loose->HintToShow(), u"提示！");
    loose->SetHint(u"长的提示"_s);
    EXPECT_EQ(loose->HintToShow(), QString());
}
