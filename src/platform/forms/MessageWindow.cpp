// SPDX-License-Identifier: MIT
#include "platform/forms/MessageWindow.h"

#include "platform/core/Exceptions.h"
#include "platform/core/Prompts.h"

#include <QClipboard>
#include <QCloseEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QPushButton>

namespace Korvane {

using namespace Qt::StringLiterals;

namespace {

// More than a screen holds is shown in part, and whole on demand.
constexpr qsizetype MostLetters = 800;
constexpr qsizetype MostLines = 16;

struct TBoxButton
{
    TMessageAnswer Answer;
    QString Caption;
    QMessageBox::ButtonRole Role;
};

QList<TBoxButton> ButtonsOf(int flags)
{
    const TBoxButton ok{IDOK, u"确定"_s, QMessageBox::AcceptRole};
    const TBoxButton cancel{IDCANCEL, u"取消"_s, QMessageBox::RejectRole};
    const TBoxButton yes{IDYES, u"是(&Y)"_s, QMessageBox::YesRole};
    const TBoxButton no{IDNO, u"否(&N)"_s, QMessageBox::NoRole};
    switch (flags & MB_BUTTONS) {
    case MB_OK:
        return {ok};
    case MB_OKCANCEL:
        return {ok, cancel};
    case MB_ABORTRETRYIGNORE:
        // One role for all keeps them in this order.
        return {{IDABORT, u"中止(&A)"_s, QMessageBox::ActionRole},
                {IDRETRY, u"重试(&R)"_s, QMessageBox::ActionRole},
                {IDIGNORE, u"忽略(&I)"_s, QMessageBox::ActionRole}};
    case MB_YESNOCANCEL:
        return {yes, no, cancel};
    case MB_YESNO:
        return {yes, no};
    case MB_RETRYCANCEL:
        return {{IDRETRY, u"重试(&R)"_s, QMessageBox::AcceptRole}, cancel};
    default:
        throw Exception(u"消息框没有这种按钮：%1"_s.arg(flags & MB_BUTTONS));
    }
}

QMessageBox::Icon IconOf(int flags)
{
    switch (flags & MB_ICONS) {
    case MB_ICONERROR:
        return QMessageBox::Critical;
    case MB_ICONQUESTION:
        return QMessageBox::Question;
    case MB_ICONWARNING:
        return QMessageBox::Warning;
    case MB_ICONINFORMATION:
        return QMessageBox::Information;
    default:
        return QMessageBox::NoIcon;
    }
}

bool HasEscape(int flags)
{
    const int buttons = flags & MB_BUTTONS;
    return buttons != MB_YESNO && buttons != MB_ABORTRETRYIGNORE;
}

constexpr char AnswerProperty[] = "korvaneAnswer";

} // namespace

TMessageWindow::TMessageWindow(const QString &text, const QString &caption, int flags, QWidget *parent)
    : QMessageBox(parent), FFlags(flags)
{
    setWindowTitle(caption);
    setIcon(IconOf(flags));
    setTextFormat(Qt::PlainText);
    SetText(text);
    AddButtons();
    // NOTE: after setDetailedText, whose button must not take the keyboard first.
    setTextInteractionFlags(Qt::TextSelectableByMouse);
    setWindowFlag(Qt::WindowCloseButtonHint, HasEscape(flags));
    setWindowFlag(Qt::WindowStaysOnTopHint, (flags & MB_TOPMOST) != 0);
}

void TMessageWindow::AddButtons()
{
    for (const TBoxButton &each : ButtonsOf(FFlags)) {
        QPushButton *button = addButton(each.Caption, each.Role);
        button->setProperty(AnswerProperty, int(each.Answer));
        FButtons.append(button);
        if (each.Answer == IDCANCEL || (FFlags & MB_BUTTONS) == MB_OK)
            setEscapeButton(button);
    }
    const qsizetype second = qsizetype((FFlags & MB_DEFAULT_BUTTONS) / MB_DEFBUTTON2);
    setDefaultButton(qobject_cast<QPushButton *>(FButtons[second < FButtons.size() ? second : 0]));
}

void TMessageWindow::SetText(const QString &text)
{
    FText = text;
    FText.replace("\r\n"_L1, "\n"_L1).replace(u'\r', u'\n');
    qsizetype end = 0;
    for (qsizetype lines = 0; end < FText.size() && end < MostLetters && lines < MostLines; ++end)
        lines += FText[end] == u'\n';
    if (end < FText.size()) {
        setText(FText.left(end).trimmed() + u"…"_s);
        setDetailedText(FText);
    } else {
        setText(FText);
    }
}

int TMessageWindow::AnswerOfNone(int flags)
{
    switch (flags & MB_BUTTONS) {
    case MB_OK:
        return IDOK;
    case MB_YESNO:
        return IDNO;
    case MB_ABORTRETRYIGNORE:
        return IDABORT;
    default:
        return IDCANCEL;
    }
}

int TMessageWindow::Answer() const
{
    const QAbstractButton *button = clickedButton();
    return button == nullptr ? AnswerOfNone(FFlags) : button->property(AnswerProperty).toInt();
}

void TMessageWindow::CopyAll() const
{
    QStringList captions;
    for (const QAbstractButton *button : FButtons)
        captions.append(button->text().remove(u'&'));
    QGuiApplication::clipboard()->setText(windowTitle() + u"\n\n"_s + FText + u"\n\n"_s +
                                          captions.join(u"   "_s));
}

void TMessageWindow::keyPressEvent(QKeyEvent *event)
{
    if (event->matches(QKeySequence::Copy)) {
        CopyAll(); // what is marked has copied itself before the key comes here
        event->accept();
        return;
    }
    if (event->key() == Qt::Key_Escape && !HasEscape(FFlags)) {
        event->accept();
        return;
    }
    QMessageBox::keyPressEvent(event);
}

void TMessageWindow::closeEvent(QCloseEvent *event)
{
    if (HasEscape(FFlags))
        QMessageBox::closeEvent(event);
    else
        event->ignore();
}

} // namespace Korvane
