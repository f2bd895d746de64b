// SPDX-License-Identifier: MIT
#include "FormsTesting.h"

#include "platform/core/Exceptions.h"
#include "platform/forms/Application.h"
#include "platform/forms/Button.h"
#include "platform/forms/ComponentOwner.h"
#include "support/ScriptedPrompts.h"

#include <QLineEdit>
#include <QPlainTextEdit>
#include <QVBoxLayout>

using namespace Korvane;
using namespace Korvane::Testing;
using namespace Qt::StringLiterals;

namespace {

/// A form with a text field and the two buttons of most dialogs.
struct TDialog : TForm
{
    TDialog()
    {
        auto *content = new QWidget(this);
        Layout = new QVBoxLayout(content);
        for (QWidget *control : std::initializer_list<QWidget *>{Edit, Ok, CancelButton})
            Layout->addWidget(control);
        setCentralWidget(content);
        Ok->SetDefault(true);
        Ok->SetModalResult(mrOk);
        CancelButton->SetCancel(true);
        CancelButton->SetModalResult(mrCancel);
    }

    QVBoxLayout *Layout;
    QLineEdit *Edit = new QLineEdit;
    TButton *Ok = new TButton(u"确定"_s);
    TButton *CancelButton = new TButton(u"取消"_s);
};

} // namespace

TEST(FormTest, ModalResultsOfKeysButtonsAndFrames)
{
    const std::vector<std::pair<std::function<void(TDialog &)>, TModalResult>> table{
        {[](TDialog &d) { QTest::keyClick(d.Edit, Qt::Key_Return); }, mrOk},
        {[](TDialog &d) { QTest::keyClick(d.Edit, Qt::Key_Enter, Qt::KeypadModifier); }, mrOk},
        {[](TDialog &d) { QTest::keyClick(d.Edit, Qt::Key_Escape); }, mrCancel},
        {[](TDialog &d) { QTest::mouseClick(d.Ok, Qt::LeftButton); }, mrOk},
        // The button with the keyboard goes before the default one.
        {[](TDialog &d) {
             d.CancelButton->setFocus();
             QTest::keyClick(d.CancelButton, Qt::Key_Return);
         },
         mrCancel},
        {[](TDialog &d) { d.close(); }, mrCancel},
        {[](TDialog &d) { d.Close(); }, mrCancel},
        {[](TDialog &d) { d.hide(); }, mrCancel},
        {[](TDialog &d) { d.SetModalResult(mrYesToAll + 5); }, mrYesToAll + 5},
        // OnClick may take the result back, and the last one counts.
        {[](TDialog &d) {
             d.Ok->OnClick = [&d] { d.SetModalResult(mrNone); };
             d.Ok->Click();
             d.SetModalResult(mrRetry);
         },
         mrRetry},
    };
    for (size_t i = 0; i < table.size(); ++i) {
        TDialog dialog;
        int closes = 0;
        dialog.OnClose = [&](TForm::TCloseAction &) { ++closes; };
        dialog.OnShow = [&] { Soon([&] { table[i].first(dialog); }); };
        EXPECT_EQ(dialog.ShowModal(), table[i].second) << i;
        EXPECT_EQ(dialog.ModalResult(), i == 7 ? mrNone : table[i].second) << i;
        EXPECT_EQ(closes, i == 7 ? 0 : 1) << i; // hiding is no closing
        EXPECT_FALSE(dialog.isVisible()) << i;
        EXPECT_EQ(Modal(), nullptr) << i;
    }
}

TEST(FormTest, ARefusedResultIsTakenBack)
{
    TDialog dialog;
    QStringList log;
    dialog.OnCloseQuery = [&](bool &mayClose) {
        log.append(u"query %1"_s.arg(dialog.ModalResult()));
        mayClose = log.size() > 1;
    };
    dialog.OnClose = [&](TForm::TCloseAction &action) {
        log.append(u"close"_s);
        if (log.size() < 4)
            action = caNone;
    };
    dialog.OnShow = [&] {
        Soon([&] {
            QTest::keyClick(dialog.Edit, Qt::Key_Return); // the query refuses
            Soon([&] {
                EXPECT_EQ(dialog.ModalResult(), mrNone);
                EXPECT_TRUE(dialog.isVisible());
                EXPECT_FALSE(dialog.close()); // the action refuses
                EXPECT_EQ(dialog.ModalResult(), mrNone);
                dialog.SetModalResult(mrYes);
            });
        });
    };
    EXPECT_EQ(dialog.ShowModal(), mrYes);
    EXPECT_EQ(log, (QStringList{u"query 1"_s, u"query 2"_s, u"close"_s, u"query 6"_s, u"close"_s}));
}

TEST(FormTest, AResultWaitsForItsHandler)
{
    TDialog dialog;
    dialog.OnShow = [&] {
        Soon([&] {
            dialog.SetModalResult(mrOk);
            Settle();
            PressInBox(Qt::Key_Return);
            TApplication::Instance()->MessageBox(u"还没完"_s, QString(), MB_OK);
            EXPECT_TRUE(dialog.isVisible());
        });
    };
    EXPECT_EQ(dialog.ShowModal(), mrOk);
}

TEST(FormTest, FailuresInAModalFormDoNotEndIt)
{
    PromptScript script;
    TDialog dialog;
    int rounds = 0;
    dialog.Ok->OnClick = [&] {
        dialog.SetModalResult(mrNone);
        throw Exception(u"点击"_s);
    };
    dialog.OnCloseQuery = [&](bool &) {
        if (++rounds < 3)
            throw Exception(u"询问"_s);
    };
    dialog.OnShow = [&] {
        Soon([&] {
            QTest::mouseClick(dialog.Ok, Qt::LeftButton);
            dialog.SetModalResult(mrOk); // raises from the loop
            Soon([&] {
                EXPECT_EQ(dialog.ModalResult(), mrNone);
                dialog.close(); // raises from the event
                EXPECT_EQ(dialog.ModalResult(), mrNone);
                EXPECT_TRUE(dialog.isVisible());
                dialog.SetModalResult(mrNo);
            });
        });
        throw Exception(u"显示"_s);
    };
    EXPECT_EQ(dialog.ShowModal(), mrNo);
    QStringList texts;
    for (const ScriptedPrompts::Box &box : script->Boxes)
        texts.append(box.Text);
    EXPECT_EQ(texts, (QStringList{u"显示"_s, u"点击"_s, u"询问"_s, u"询问"_s}));
}

TEST(FormTest, AModalFormMayBeFreedInside)
{
    for (const bool hasResult : {false, true}) {
        QPointer<TDialog> dialog(new TDialog);
        Soon([&] {
            if (hasResult)
                dialog->SetModalResult(mrYes);
            delete dialog.data();
        });
        EXPECT_EQ(dialog->ShowModal(), hasResult ? mrYes : mrCancel);
        EXPECT_FALSE(dialog);
    }
    // In its own events, and by its close action.
    QPointer<TDialog> inQuery(new TDialog);
    inQuery->OnCloseQuery = [&](bool &) { delete inQuery.data(); };
    Soon([&] { inQuery->SetModalResult(mrOk); });
    EXPECT_EQ(inQuery->ShowModal(), mrOk);
    EXPECT_FALSE(inQuery);

    QPointer<TDialog> freed(new TDialog);
    freed->OnClose = [](TForm::TCloseAction &action) { action = caFree; };
    Soon([&] { freed->Close(); });
    EXPECT_EQ(freed->ShowModal(), mrCancel);
    Settle();
    EXPECT_FALSE(freed);
}

TEST(FormTest, ModalFormsNestAndBlockTheOthers)
{
    TDialog outer, inner;
    TModalResult innerResult = mrNone;
    Soon([&] {
        Soon([&] {
            outer.SetModalResult(mrOk); // waits until the inner one is through
            EXPECT_EQ(Modal(), &inner);
            EXPECT_THROW(inner.ShowModal(), Exception);
            QTest::keyClick(inner.Edit, Qt::Key_Escape);
        });
        innerResult = inner.ShowModal();
        EXPECT_TRUE(outer.isVisible());
    });
    EXPECT_EQ(outer.ShowModal(), mrOk);
    EXPECT_EQ(innerResult, mrCancel);

    TForm visible;
    visible.show();
    EXPECT_THROW(visible.ShowModal(), Exception);
    TForm part;
    part.setParent(&visible, Qt::Widget);
    EXPECT_THROW(part.ShowModal(), Exception);
}

TEST(FormTest, CloseActionsOfAFormThatIsNotModal)
{
    for (const TForm::TCloseAction chosen : {caNone, caHide, caFree, caMinimize}) {
        QPointer<TForm> form(new TForm);
        form->OnClose = [&](TForm::TCloseAction &action) {
            EXPECT_EQ(action, caHide);
            action = chosen;
            form->Close(); // a second time is no second close
        };
        form->show();
        form->Close();
        EXPECT_EQ(form->isVisible(), chosen == caNone || chosen == caMinimize);
        EXPECT_EQ(form->isMinimized(), chosen == caMinimize);
        Settle();
        EXPECT_EQ(form.isNull(), chosen == caFree);
        delete form.data();
    }
}

TEST(FormTest, EnterAndEscBelongToTheControlThatUsesThem)
{
    TDialog dialog;
    auto *memo = new QPlainTextEdit;
    dialog.Layout->addWidget(memo);
    QStringList pressed;
    dialog.Ok->OnClick = [&] { pressed.append(u"ok"_s); };
    dialog.CancelButton->OnClick = [&] { pressed.append(u"cancel"_s); };
    ShowActive(dialog);
    EXPECT_EQ(dialog.ActiveControl(), dialog.Edit); // the first in the tab order
    memo->setFocus();
    QTest::keyClick(memo, Qt::Key_Return);
    EXPECT_EQ(pressed, QStringList());
    EXPECT_EQ(memo->toPlainText(), u"\n");
    QTest::keyClick(memo, Qt::Key_Escape);
    dialog.Edit->setFocus();
    dialog.Ok->SetEnabled(false);
    QTest::keyClick(dialog.Edit, Qt::Key_Return);
    dialog.Ok->SetEnabled(true);
    QTest::keyClick(dialog.Edit, Qt::Key_Return, Qt::ControlModifier);
    EXPECT_EQ(pressed, QStringList{u"cancel"_s});

    // A form inside of another has its own buttons.
    auto *part = new TDialog;
    dialog.Layout->addWidget(part);
    Settle();
    part->Ok->OnClick = [&] { pressed.append(u"part"_s); };
    QTest::keyClick(part->Edit, Qt::Key_Return);
    QTest::keyClick(dialog.Edit, Qt::Key_Return);
    EXPECT_EQ(pressed, (QStringList{u"cancel"_s, u"part"_s, u"ok"_s}));
}

TEST(FormTest, PositionsAndFixedSizes)
{
    TForm mainForm;
    mainForm.setGeometry(100, 120, 300, 200);
    mainForm.show();
    TApplication::Instance()->SetMainForm(&mainForm);
    TForm form;
    form.resize(100, 50);
    const auto center = [&form](TForm::TPosition position) {
        form.hide();
        form.SetPosition(position);
        form.show();
        return form.pos() + QPoint(50, 25);
    };
    EXPECT_EQ(center(poMainFormCenter), mainForm.frameGeometry().center());
    EXPECT_EQ(center(poScreenCenter), form.screen()->availableGeometry().center());
    form.hide();
    form.move(7, 8);
    form.SetPosition(poDesigned);
    form.show();
    EXPECT_EQ(form.pos(), QPoint(7, 8));
    mainForm.setGeometry(-250, -180, 300, 200);
    center(poMainFormCenter);
    EXPECT_EQ(form.pos(), QPoint(0, 0)); // it stays on the screen

    for (const TBorderStyle style : {bsSingle, bsDialog}) {
        form.SetBorderStyle(style);
        EXPECT_TRUE(form.isVisible());
        EXPECT_EQ(form.minimumSize(), form.maximumSize());
        form.SetHeight(90);
        form.SetWidth(140);
        EXPECT_EQ(form.size(), QSize(140, 90));
    }
    form.SetBorderStyle(bsSizeable);
    form.resize(200, 210);
    EXPECT_EQ(form.size(), QSize(200, 210));
    TApplication::Instance()->SetMainForm(nullptr);

    TForm dialog;
    dialog.SetBorderStyle(bsDialog);
    auto *content = new QWidget;
    content->setMinimumSize(400, 300);
    dialog.setCentralWidget(content);
    dialog.show();
    EXPECT_TRUE(dialog.rect().contains(content->geometry())) << "fixed with what it holds when it is shown";
    EXPECT_EQ(dialog.minimumSize(), dialog.maximumSize());
}

TEST(FormTest, ComponentsAreFoundByName)
{
    TForm form;
    auto *panel = new QWidget(&form);
    auto *inner = new QLineEdit(panel);
    auto *inOther = new QLineEdit(new TForm(panel));
    inner->setObjectName(u"edtCode"_s);
    inOther->setObjectName(u"edtOther"_s);
    EXPECT_EQ(form.FindComponent(u"EDTCODE"_s), inner);
    EXPECT_EQ(form.FindComponent<QLineEdit>(u"edtcode"_s), inner);
    EXPECT_EQ(form.FindComponent<QPushButton>(u"edtcode"_s), nullptr);
    EXPECT_EQ(form.FindComponent(u"edtOther"_s), nullptr);
    EXPECT_EQ(form.FindComponent(QString()), nullptr);
    auto *nearer = new QObject(&form);
    nearer->setObjectName(u"EdtCode"_s);
    EXPECT_EQ(form.FindComponent(u"edtCode"_s), nearer);
    EXPECT_EQ(FindComponent(*panel, u"EDTCODE"_s), inner);
    EXPECT_EQ(FindComponent(form, u"EDTOTHER"_s), nullptr);
}
