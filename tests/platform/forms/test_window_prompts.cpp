// SPDX-License-Identifier: MIT
#include "FormsTesting.h"

#include "platform/core/Exceptions.h"
#include "platform/forms/WindowPrompts.h"

#include <QClipboard>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTemporaryDir>

using namespace Korvane;
using namespace Korvane::Testing;
using namespace Qt::StringLiterals;

namespace {

struct TKey
{
    int Key;
    Qt::KeyboardModifiers Modifiers = {};
};

/// The answer to keys; -1 if the box is still up after them.
int AnswerTo(int flags, const QList<TKey> &keys)
{
    bool isStillUp = false;
    QTimer patience; // a letter shows its button pressed for a while before it answers
    patience.setSingleShot(true);
    QObject::connect(&patience, &QTimer::timeout, &patience, [&isStillUp] {
        isStillUp = true;
        static_cast<QDialog *>(Modal())->reject();
    });
    Soon([&] {
        EXPECT_TRUE(QTest::qWaitForWindowActive(Modal()));
        for (const TKey &key : keys)
            if (Modal() != nullptr)
                QTest::keyClick(Modal()->focusWidget(), Qt::Key(key.Key), key.Modifiers);
        patience.start(500);
    });
    const int answer = TWindowPrompts().MessageBox(u"继续吗？"_s, u"订单"_s, flags);
    return isStillUp ? -1 : answer;
}

const TKey Enter{Qt::Key_Return}, Esc{Qt::Key_Escape}, Right{Qt::Key_Right}, Tab{Qt::Key_Tab};

} // namespace

TEST(WindowPromptsTest, AnswersByFlagsAndKeys)
{
    const struct
    {
        int Flags;
        QList<TKey> Keys;
        int Answer;
    } table[] = {
        {MB_OK, {Enter}, IDOK},
        {MB_OK | MB_ICONINFORMATION | MB_TOPMOST, {Esc}, IDOK},
        {MB_OKCANCEL, {Enter}, IDOK},
        {MB_OKCANCEL, {Esc}, IDCANCEL},
        {MB_OKCANCEL | MB_DEFBUTTON2, {Enter}, IDCANCEL},
        {MB_OKCANCEL | MB_DEFBUTTON3, {Enter}, IDOK}, // there is no third
        {MB_YESNO | MB_ICONQUESTION, {Enter}, IDYES},
        {MB_YESNO | MB_DEFBUTTON2, {Enter}, IDNO},
        {MB_YESNO, {{Qt::Key_N}}, IDNO},
        {MB_YESNO, {{Qt::Key_Y}}, IDYES},
        {MB_YESNO, {{Qt::Key_N, Qt::AltModifier}}, IDNO},
        {MB_YESNO, {Tab, {Qt::Key_Space}}, IDNO},
        {MB_YESNO, {Esc}, -1},
        {MB_YESNO, {Esc, Enter}, IDYES},
        {MB_YESNOCANCEL, {Esc}, IDCANCEL},
        {MB_YESNOCANCEL | MB_DEFBUTTON2, {Enter}, IDNO},
        {MB_YESNOCANCEL | MB_DEFBUTTON3, {Enter}, IDCANCEL},
        {MB_RETRYCANCEL, {Enter}, IDRETRY},
        {MB_RETRYCANCEL, {Esc}, IDCANCEL},
        {MB_RETRYCANCEL | MB_DEFBUTTON2, {Enter}, IDCANCEL},
        {MB_ABORTRETRYIGNORE, {Enter}, IDABORT},
        {MB_ABORTRETRYIGNORE | MB_DEFBUTTON2, {Enter}, IDRETRY},
        {MB_ABORTRETRYIGNORE | MB_DEFBUTTON3, {Enter}, IDIGNORE},
        {MB_ABORTRETRYIGNORE, {{Qt::Key_I}}, IDIGNORE},
        {MB_ABORTRETRYIGNORE | MB_ICONWARNING, {Esc}, -1},
    };
    for (const auto &row : table)
        EXPECT_EQ(AnswerTo(row.Flags, row.Keys), row.Answer)
            << std::hex << row.Flags << " key " << row.Keys.first().Key;
    EXPECT_THROW(TWindowPrompts().MessageBox(QString(), QString(), 7), Exception);
}

TEST(WindowPromptsTest, TheFrameAnswersAsEsc)
{
    for (const auto &[flags, answer] : {std::pair(int(MB_OK), int(IDOK)), {MB_OKCANCEL, IDCANCEL}}) {
        Soon([] { EXPECT_TRUE(Modal()->close()); });
        EXPECT_EQ(TWindowPrompts().MessageBox(u"！"_s, QString(), flags), answer);
    }
    for (const int flags : {int(MB_YESNO), int(MB_ABORTRETRYIGNORE)}) {
        Soon([] {
            EXPECT_FALSE(Modal()->close());
            EXPECT_FALSE(Modal()->windowFlags() & Qt::WindowCloseButtonHint);
            QTest::keyClick(Modal(), Qt::Key_Return);
        });
        EXPECT_EQ(TWindowPrompts().MessageBox(u"！"_s, QString(), flags),
                  flags == MB_YESNO ? IDYES : IDABORT);
    }
}

TEST(WindowPromptsTest, TheTextIsShownAsItIsOverTheActiveWindow)
{
    TForm form;
    ShowActive(form);
    const QString text = u"<b>select</b> 1\rfrom T"_s;
    Soon([&] {
        auto *box = qobject_cast<QMessageBox *>(Modal());
        ASSERT_NE(box, nullptr);
        EXPECT_EQ(box->parentWidget(), &form);
        EXPECT_EQ(box->windowTitle(), u"订单");
        EXPECT_EQ(box->icon(), QMessageBox::Question);
        EXPECT_TRUE(box->windowFlags() & Qt::WindowStaysOnTopHint);
        EXPECT_EQ(box->textFormat(), Qt::PlainText);
        EXPECT_TRUE(box->textInteractionFlags() & Qt::TextSelectableByMouse);
        QTest::keyClick(box->focusWidget(), Qt::Key_C, Qt::ControlModifier);
        EXPECT_EQ(QGuiApplication::clipboard()->text(),
                  u"订单\n\n<b>select</b> 1\nfrom T\n\n是(Y)   否(N)"_s);
        QTest::keyClick(box, Qt::Key_Return);
    });
    TWindowPrompts().MessageBox(text, u"订单"_s, MB_YESNO + MB_ICONQUESTION + MB_TOPMOST);

    // More than a screen holds is there on demand, and no higher than the screen.
    const QString longText =
        u"第一行\n"_s + u"insert into ORDERS values('一')\n"_s.repeated(500) + u"最后一行"_s;
    Soon([&] {
        auto *box = qobject_cast<QMessageBox *>(Modal());
        EXPECT_TRUE(box->text().startsWith(u"第一行"_s));
        EXPECT_EQ(box->detailedText(), longText);
        EXPECT_LT(box->height(), box->screen()->availableGeometry().height());
        QTest::keyClick(box->focusWidget(), Qt::Key_C, Qt::ControlModifier);
        EXPECT_TRUE(QGuiApplication::clipboard()->text().contains(u"最后一行"_s));
        for (const QAbstractButton *button : box->buttons())
            EXPECT_TRUE(button->text() == u"确定"_s || button->text() == u"显示全文…"_s)
                << button->text().toStdString();
        QTest::keyClick(box, Qt::Key_Escape);
    });
    EXPECT_EQ(TWindowPrompts().MessageBox(longText, u"订单"_s, MB_OK + MB_ICONERROR), IDOK);
}

TEST(WindowPromptsTest, ABoxMayLoseItsWindow)
{
    auto form = std::make_unique<TForm>();
    ShowActive(*form);
    Soon([&form] { form.reset(); });
    EXPECT_EQ(TWindowPrompts().MessageBox(u"？"_s, QString(), MB_YESNO), IDNO);
}

TEST(WindowPromptsTest, InputTextGivesBackWhatWasTyped)
{
    QString value = u"旧"_s;
    const auto type = [](const QString &text, int key) {
        Soon([text, key] {
            auto *edit = Modal()->findChild<QLineEdit *>();
            EXPECT_EQ(edit->selectedText(), u"旧"); // typing replaces it
            edit->insert(text);
            QTest::keyClick(edit, Qt::Key(key));
        });
    };
    type(u"新"_s, Qt::Key_Escape);
    EXPECT_FALSE(TWindowPrompts().InputText(u"题"_s, u"编号："_s, value));
    EXPECT_EQ(value, u"旧");
    type(u"新"_s, Qt::Key_Return);
    EXPECT_TRUE(TWindowPrompts().InputText(u"题"_s, u"编号："_s, value));
    EXPECT_EQ(value, u"新");
}

TEST(WindowPromptsTest, FilesAndFolders)
{
    QTemporaryDir place;
    const QString there = place.filePath(u"there.xlsx"_s);
    QFile(there).open(QIODevice::WriteOnly);
    const QString filter = u"工作簿 (*.xlsx *.xls);;所有文件 (*)"_s;
    const auto enter = [](
                           const QString &name, std::function<void()> then = [] {}) {
        Soon([name, then] {
            ASSERT_NE(qobject_cast<QFileDialog *>(Modal()), nullptr);
            auto *edit = Modal()->findChild<QLineEdit *>(u"fileNameEdit"_s);
            QTest::qWait(50); // it reads the folder and selects the name to begin with
            if (!name.isNull())
                edit->setText(name);
            then();
            QTest::keyClick(edit, name.isNull() ? Qt::Key_Escape : Qt::Key_Return);
        });
    };
    TWindowPrompts prompts;
    enter(QString());
    EXPECT_EQ(prompts.OpenFileName(u"打开"_s, filter, place.path()), QString());
    enter(u"there.xlsx"_s);
    EXPECT_EQ(prompts.OpenFileName(u"打开"_s, filter, place.path()), there);
    enter(u"new"_s);
    EXPECT_EQ(prompts.SaveFileName(u"保存"_s, filter, there), place.filePath(u"new.xlsx"_s));
    enter(place.path());
    EXPECT_EQ(prompts.SelectFolder(u"选择路径"_s), place.path());

    // A file that is there is overwritten only when the user says so.
    for (const bool mayOverwrite : {true, false}) {
        enter(u"there"_s, [mayOverwrite] {
            Soon([mayOverwrite] {
                auto *question = qobject_cast<QMessageBox *>(Modal());
                ASSERT_NE(question, nullptr);
                EXPECT_TRUE(question->text().contains(u"已经存在"_s)) << question->text().toStdString();
                question->button(mayOverwrite ? QMessageBox::Yes : QMessageBox::No)->click();
                if (!mayOverwrite)
                    Soon([] { static_cast<QDialog *>(Modal())->reject(); });
            });
        });
        EXPECT_EQ(prompts.SaveFileName(u"保存"_s, filter, there), mayOverwrite ? there : QString());
    }
}

TEST(ChineseTextsTest, StandardButtonsAreChinese)
{
    using enum QDialogButtonBox::StandardButton;
    const QDialogButtonBox box(Ok | QDialogButtonBox::Cancel | Yes | No | QDialogButtonBox::Close | Save |
                               QDialogButtonBox::Open | Abort | Retry | QDialogButtonBox::Ignore | Apply |
                               Reset | Discard | Help | YesToAll | NoToAll | SaveAll | RestoreDefaults);
    EXPECT_EQ(box.button(Ok)->text(), u"确定");
    EXPECT_EQ(box.button(QDialogButtonBox::Cancel)->text(), u"取消");
    EXPECT_EQ(box.button(Yes)->text(), u"是(&Y)");
    for (const QAbstractButton *button : box.buttons())
        EXPECT_GT(button->text()[0].unicode(), 0x7F) << button->text().toStdString();
    EXPECT_EQ(QCoreApplication::translate("TOrderForm", "Name"), u"Name"); // the application's own
}
