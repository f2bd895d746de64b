// SPDX-License-Identifier: MIT
#include "FormsTesting.h"

#include "platform/core/Cursor.h"
#include "platform/forms/Application.h"
#include "platform/forms/Button.h"
#include "platform/forms/Screen.h"
#include "support/ScriptedPrompts.h"

#include <QMessageBox>
#include <QPaintEvent>
#include <QThread>

#include <new>
#include <stdexcept>

using namespace Korvane;
using namespace Korvane::Testing;
using namespace Qt::StringLiterals;

namespace {

TApplication &Application() { return *TApplication::Instance(); }

QStringList TextsOf(const PromptScript &script)
{
    QStringList texts;
    for (const ScriptedPrompts::Box &box : script->Boxes)
        texts.append(box.Text);
    return texts;
}

/// Fails each time it is painted, as long as it has a text to fail with.
class TFailingWidget : public QWidget
{
public:
    QString Failure;
    int Paints = 0;

protected:
    void paintEvent(QPaintEvent *) override
    {
        ++Paints;
        if (!Failure.isEmpty())
            throw Exception(Failure);
    }
};

} // namespace

TEST(ApplicationTest, WhatLeavesAHandlerIsShownAndAbortIsSilent)
{
    const std::vector<std::pair<std::function<void()>, QStringList>> table{
        {[] { throw Exception(u"没有单据"_s); }, {u"没有单据"_s}},
        {[] { Abort(); }, {}},
        {[] { throw EAbort(); }, {}},
        {[] { throw std::runtime_error("broken"); }, {u"程序内部错误：broken"_s}},
        {[] { throw std::bad_alloc(); }, {u"内存不足，操作没有完成"_s}},
    };
    Application().SetTitle(u"订单"_s);
    for (const auto &[raise, texts] : table) {
        PromptScript script;
        TForm form;
        TButton button(&form);
        button.OnClick = raise;
        form.OnShow = raise;
        form.show();
        EXPECT_EQ(TextsOf(script), texts);
        script->Boxes.clear();
        QTest::mouseClick(&button, Qt::LeftButton);
        EXPECT_EQ(TextsOf(script), texts);
        script->Boxes.clear();
        Soon(raise);
        QMetaObject::invokeMethod(&form, raise, Qt::QueuedConnection);
        Settle();
        EXPECT_EQ(TextsOf(script), texts + texts);
        for (const ScriptedPrompts::Box &box : script->Boxes) {
            EXPECT_EQ(box.Caption, u"订单");
            EXPECT_EQ(box.Flags, MB_OK + MB_ICONERROR + MB_TOPMOST);
        }
    }
    Application().SetTitle(QString());
}

TEST(ApplicationTest, OnExceptionTakesThePlaceOfTheBox)
{
    PromptScript script;
    QStringList seen;
    Application().OnException = [&seen](const std::exception &error) {
        seen.append(QString::fromUtf8(error.what()));
    };
    Soon([] { throw Exception(u"一"_s); });
    Soon([] { Abort(); });
    Settle();
    EXPECT_EQ(seen, QStringList{u"一"_s});
    EXPECT_TRUE(script->Boxes.isEmpty());

    Application().OnException = [](const std::exception &) { throw Exception(u"二"_s); };
    Soon([] { throw Exception(u"一"_s); });
    Settle();
    EXPECT_EQ(TextsOf(script), QStringList{u"二"_s});
    Application().OnException = nullptr;
}

TEST(ApplicationTest, AnotherThreadsFailureIsShownHere)
{
    PromptScript script;
    QThread thread;
    QObject worker;
    worker.moveToThread(&thread);
    thread.start();
    QMetaObject::invokeMethod(
        &worker, [] { throw Exception(u"线程"_s); }, Qt::QueuedConnection);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !script->Boxes.isEmpty(); }));
    EXPECT_EQ(TextsOf(script), QStringList{u"线程"_s});
    thread.quit();
    thread.wait();
}

TEST(ApplicationTest, APaintThatAlwaysFailsIsToldOnce)
{
    TFailingWidget widget;
    widget.Failure = u"画不出"_s;
    int boxes = 0;
    QTimer answers;
    QObject::connect(&answers, &QTimer::timeout, &answers, [&] {
        if (Modal() == nullptr)
            return;
        ++boxes;
        for (int i = 0; i < 3; ++i) { // more of the same while the box is up
            widget.update();
            Settle();
        }
        EXPECT_EQ(QApplication::topLevelWidgets().count(Modal()), 1);
        QTest::keyClick(Modal(), Qt::Key_Return);
    });
    answers.start(0);
    const auto paint = [&] {
        const int before = widget.Paints;
        widget.update();
        EXPECT_TRUE(QTest::qWaitFor([&] { return widget.Paints > before; }));
        Settle();
    };
    widget.show();
    EXPECT_TRUE(QTest::qWaitForWindowExposed(&widget));
    paint();
    paint();
    EXPECT_EQ(boxes, 1);

    widget.Failure = u"另一种"_s; // another failure is news
    paint();
    EXPECT_EQ(boxes, 2);
    widget.Failure.clear();
    paint();
    widget.Failure = u"另一种"_s; // so is the same after it has gone well
    paint();
    EXPECT_EQ(boxes, 3);
}

TEST(ApplicationTest, FailuresWhileABoxIsUpWaitForIt)
{
    QStringList shown;
    QTimer answers;
    QObject::connect(&answers, &QTimer::timeout, &answers, [&] {
        auto *box = qobject_cast<QMessageBox *>(Modal());
        if (box == nullptr)
            return;
        if (shown.isEmpty())
            for (const QString &text : {u"甲"_s, u"乙"_s, u"乙"_s, u"丙"_s})
                Application().HandleException(Exception(text));
        shown.append(box->text());
        QTest::keyClick(box, Qt::Key_Return);
    });
    answers.start(0);
    Application().ShowException(Exception(u"甲"_s));
    EXPECT_EQ(shown, (QStringList{u"甲"_s, u"乙"_s, u"丙"_s}));
}

TEST(ApplicationTest, ClosingTheMainFormEndsRun)
{
    TForm form;
    TForm other;
    QStringList log;
    Application().SetMainForm(&form);
    form.OnShow = [&] {
        log.append(u"show"_s);
        other.Show();
        Soon([&] {
            form.close();
            log.append(form.isVisible() ? u"open"_s : u"closed"_s);
            form.close();
        });
    };
    form.OnCloseQuery = [&](bool &mayClose) { mayClose = log.contains(u"open"_s); };
    form.OnClose = [&](TForm::TCloseAction &action) { log.append(u"close %1"_s.arg(action)); };
    EXPECT_EQ(Application().Run(), 0);
    EXPECT_EQ(log, (QStringList{u"show"_s, u"open"_s, u"close %1"_s.arg(caHide)}));
    EXPECT_TRUE(other.isVisible());
    Application().SetMainForm(nullptr);
}

TEST(ApplicationTest, TerminateEndsModalFormsAndBoxes)
{
    TForm form;
    TForm dialog;
    TModalResult result = mrNone;
    int answer = 0;
    Application().SetMainForm(&form);
    dialog.OnCloseQuery = [](bool &mayClose) { mayClose = false; }; // is not asked
    form.OnShow = [&] { Soon([&] { result = dialog.ShowModal(); }); };
    dialog.OnShow = [&] {
        Soon([&] {
            Soon([] { Application().Terminate(); });
            answer = Application().MessageBox(u"？"_s, u"题"_s, MB_YESNO);
        });
    };
    Application().Run();
    EXPECT_EQ(result, mrCancel);
    EXPECT_EQ(answer, IDNO);
    EXPECT_FALSE(dialog.isVisible());
    Application().SetMainForm(nullptr);
}

TEST(ApplicationTest, OwnedFormsAreFreedWithTheirNamesAndTheFirstIsTheMainForm)
{
    auto *first = Application().CreateForm<TForm>();
    auto *second = Application().CreateForm<TForm>();
    EXPECT_EQ(Application().MainForm(), first);
    EXPECT_EQ(Application().Components(), (QList<TForm *>{first, second}));
    EXPECT_EQ(Screen().Forms(), (QList<TForm *>{first, second}));
    delete first;
    EXPECT_EQ(Application().Components(), QList<TForm *>{second});
    EXPECT_EQ(Application().MainForm(), nullptr);
    delete second;
    EXPECT_EQ(Screen().FormCount(), 0);
}

TEST(ApplicationTest, IdleComesAfterEventsAndNotOfItself)
{
    int count = 0;
    Application().OnIdle = [&count](bool &done) {
        ++count;
        done = count % 3 == 0; // twice more at once
    };
    QEventLoop loop;
    const auto run = [&loop] {
        QTimer::singleShot(50, &loop, &QEventLoop::quit);
        loop.exec();
    };
    run();
    EXPECT_GE(count, 3);
    EXPECT_LT(count, 60); // it would be thousands
    EXPECT_EQ(count % 3, 0);

    // What fails each time is told once.
    PromptScript script;
    Application().OnIdle = [](bool &) { throw Exception(u"空闲"_s); };
    run();
    run();
    EXPECT_EQ(TextsOf(script), QStringList{u"空闲"_s});
    Application().OnIdle = nullptr;
}

TEST(ApplicationTest, TheScreensCursorLiesOverAllWindowsButNotOverBoxes)
{
    const auto shape = [] {
        const QCursor *cursor = QGuiApplication::overrideCursor();
        return cursor == nullptr ? -1 : int(cursor->shape());
    };
    {
        const THourGlass hourGlass;
        EXPECT_EQ(shape(), int(Qt::WaitCursor));
        Screen().SetCursor(crNo);
        EXPECT_EQ(shape(), int(Qt::ForbiddenCursor));
        Soon([&] {
            EXPECT_EQ(shape(), -1);
            QTest::keyClick(Modal(), Qt::Key_Return);
        });
        Application().MessageBox(u"看"_s, QString(), MB_OK);
        EXPECT_EQ(shape(), int(Qt::ForbiddenCursor));
    }
    EXPECT_EQ(shape(), -1);
    EXPECT_EQ(Screen().Cursor(), crDefault);
}

TEST(ApplicationTest, TheScreenTellsItsActiveForm)
{
    TForm first, second;
    QList<TForm *> active;
    Screen().OnActiveFormChange = [&active] { active.append(Screen().ActiveForm()); };
    ShowActive(first);
    ShowActive(second);
    ShowActive(first);
    active.removeAll(nullptr);
    EXPECT_EQ(active, (QList<TForm *>{&first, &second, &first}));
    Screen().OnActiveFormChange = nullptr;
}
