// SPDX-License-Identifier: MIT
#include "FormsTesting.h"

#include "platform/forms/Application.h"

#include <QLineEdit>
#include <QVBoxLayout>

using namespace Korvane;
using namespace Korvane::Testing;
using namespace Qt::StringLiterals;

namespace {

/// Writes down which keys it sees.
class TLoggingEdit : public QLineEdit
{
public:
    explicit TLoggingEdit(QStringList &log) : FLog(log) {}

protected:
    void keyPressEvent(QKeyEvent *event) override
    {
        FLog.append(u"edit %1"_s.arg(QKeySequence(event->key()).toString()));
        QLineEdit::keyPressEvent(event);
    }

private:
    QStringList &FLog;
};

class KeyPreviewTest : public testing::Test
{
protected:
    KeyPreviewTest()
    {
        auto *panel = new QWidget; // keys that are not used pass through it on their way up
        Form.setCentralWidget(panel);
        (new QVBoxLayout(panel))->addWidget(Edit);
        Form.SetKeyPreview(true);
        Form.OnKeyDown = [this](int &key, Qt::KeyboardModifiers) {
            Log.append(u"down %1"_s.arg(QKeySequence(key).toString()));
        };
        Form.OnKeyPress = [this](QChar &c) { Log.append(u"press %1"_s.arg(int(c.unicode()))); };
    }
    void SetUp() override { ShowActive(Form); }

    QStringList Log;
    TForm Form;
    TLoggingEdit *Edit = new TLoggingEdit(Log);
};

} // namespace

TEST_F(KeyPreviewTest, TheFormSeesEachKeyOnceAndFirst)
{
    QTest::keyClick(Edit, Qt::Key_A);
    QTest::keyClick(Edit, Qt::Key_F5);
    QTest::keyClick(Edit, Qt::Key_Return); // not used by the field, it goes up to the form
    QTest::keyClick(Edit, Qt::Key_Return);
    EXPECT_EQ(Log, (QStringList{u"down A"_s, u"press 97"_s, u"edit A"_s, u"down F5"_s, u"edit F5"_s,
                                u"down Return"_s, u"press 13"_s, u"edit Return"_s, u"down Return"_s,
                                u"press 13"_s, u"edit Return"_s}));
    Log.clear();
    Form.SetKeyPreview(false);
    QTest::keyClick(Edit, Qt::Key_Return);
    EXPECT_EQ(Log, QStringList{u"edit Return"_s});
    QTest::keyClick(&Form, Qt::Key_F5); // its own keys it always sees
    EXPECT_EQ(Log.last(), u"down F5");
}

TEST_F(KeyPreviewTest, TheFormEatsAndReplacesKeys)
{
    Form.OnKeyDown = [](int &key, Qt::KeyboardModifiers) {
        if (key == Qt::Key_X)
            key = 0;
        else if (key == Qt::Key_Down)
            key = Qt::Key_B;
    };
    Form.OnKeyPress = [](QChar &c) {
        if (c == u'y')
            c = QChar();
        else
            c = c.toUpper();
    };
    QTest::keyClicks(Edit, u"axyz"_s);
    QTest::keyClick(Edit, Qt::Key_Down);
    EXPECT_EQ(Edit->text(), u"AZb");
    EXPECT_EQ(Log, (QStringList{u"edit A"_s, u"edit Z"_s, u"edit B"_s}));
}

TEST_F(KeyPreviewTest, ABoxShownByAKeyDoesNotShowItTwice)
{
    QObject::connect(Edit, &QLineEdit::returnPressed, Edit, [this] {
        Soon([this] {
            Log.append(u"box"_s);
            QTest::keyClick(Modal(), Qt::Key_Space);
            QTest::keyClick(Modal(), Qt::Key_Return);
        });
        TApplication::Instance()->MessageBox(u"好"_s, QString(), MB_OK);
    });
    QTest::keyClick(Edit, Qt::Key_Return);
    EXPECT_EQ(Log, (QStringList{u"down Return"_s, u"press 13"_s, u"edit Return"_s, u"box"_s}));
}

TEST_F(KeyPreviewTest, OuterFormsSeeKeysBeforeInnerOnes)
{
    auto *part = new TForm;
    auto *edit = new TLoggingEdit(Log);
    part->setCentralWidget(edit);
    part->SetKeyPreview(true);
    part->OnKeyDown = [this](int &key, Qt::KeyboardModifiers) { Log.append(u"part %1"_s.arg(key)); };
    static_cast<QVBoxLayout *>(Form.centralWidget()->layout())->addWidget(part);
    QTest::keyClick(edit, Qt::Key_Return);
    EXPECT_EQ(Log, (QStringList{u"down Return"_s, u"press 13"_s, u"part %1"_s.arg(int(Qt::Key_Return)),
                                u"edit Return"_s}));
}

TEST_F(KeyPreviewTest, AFormMayBeClosedByItsPreview)
{
    QPointer<TForm> form(new TForm);
    auto *edit = new QLineEdit(form);
    form->SetKeyPreview(true);
    form->OnKeyDown = [&](int &, Qt::KeyboardModifiers) { delete form.data(); };
    QTest::sendKeyEvent(QTest::Press, edit, Qt::Key_Escape, QString(QChar(27)), Qt::NoModifier);
    EXPECT_FALSE(form);
}
