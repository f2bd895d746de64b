// SPDX-License-Identifier: MIT
#include "platform/core/ConsolePrompts.h"

#include "platform/core/Text.h"

#include <QFileInfo>
#include <QList>

#include <iostream>
#include <string>

namespace Korvane {

namespace {

struct TButton
{
    TMessageAnswer Answer;
    QString Caption;
    QStringList Words; ///< what may be typed for it, beside the caption
};

QList<TButton> ButtonsOf(int flags)
{
    const TButton ok{IDOK, QStringLiteral("确定"), {QStringLiteral("ok"), QStringLiteral("o")}};
    const TButton cancel{IDCANCEL, QStringLiteral("取消"), {QStringLiteral("cancel"), QStringLiteral("c")}};
    const TButton yes{IDYES, QStringLiteral("是"), {QStringLiteral("yes"), QStringLiteral("y")}};
    const TButton no{IDNO, QStringLiteral("否"), {QStringLiteral("no"), QStringLiteral("n")}};
    const TButton abort{IDABORT, QStringLiteral("中止"), {QStringLiteral("abort"), QStringLiteral("a")}};
    const TButton retry{IDRETRY, QStringLiteral("重试"), {QStringLiteral("retry"), QStringLiteral("r")}};
    const TButton ignore{IDIGNORE, QStringLiteral("忽略"), {QStringLiteral("ignore"), QStringLiteral("i")}};
    switch (flags & MB_BUTTONS) {
    case MB_OKCANCEL:
        return {ok, cancel};
    case MB_ABORTRETRYIGNORE:
        return {abort, retry, ignore};
    case MB_YESNOCANCEL:
        return {yes, no, cancel};
    case MB_YESNO:
        return {yes, no};
    case MB_RETRYCANCEL:
        return {retry, cancel};
    default:
        return {ok};
    }
}

qsizetype DefaultOf(int flags, qsizetype count)
{
    const int button = flags & MB_DEFAULT_BUTTONS;
    return qMin<qsizetype>(button == MB_DEFBUTTON3 ? 2 : button == MB_DEFBUTTON2 ? 1 : 0, count - 1);
}

/// The answer that agrees to nothing: the last button, but for a failure that may be ignored.
TMessageAnswer RefusalOf(const QList<TButton> &buttons)
{
    return buttons.first().Answer == IDABORT ? IDABORT : buttons.last().Answer;
}

QString Captions(const QList<TButton> &buttons, qsizetype defaultButton)
{
    QStringList result;
    for (qsizetype i = 0; i < buttons.size(); ++i) {
        const QString caption = buttons[i].Caption + u'/' + buttons[i].Words.last();
        result += i == defaultButton ? u'[' + caption + u']' : caption;
    }
    return result.join(u' ');
}

const TButton *FindButton(const QList<TButton> &buttons, const QString &word)
{
    for (const TButton &button : buttons)
        if (word == button.Caption || button.Words.contains(word, Qt::CaseInsensitive))
            return &button;
    return nullptr;
}

} // namespace

TConsolePrompts::TConsolePrompts() : TConsolePrompts(std::cin, std::cerr) {}

TConsolePrompts::TConsolePrompts(std::istream &input, std::ostream &output) : FInput(input), FOutput(output)
{
}

void TConsolePrompts::Print(const QString &text) { FOutput << text.toStdString() << std::flush; }

bool TConsolePrompts::ReadLine(QString &line)
{
    std::string bytes;
    if (!std::getline(FInput, bytes))
        return false;
    line = Trim(QString::fromStdString(bytes));
    return true;
}

int TConsolePrompts::MessageBox(const QString &text, const QString &caption, int flags)
{
    const QList<TButton> buttons = ButtonsOf(flags);
    Print(caption.isEmpty() ? text + u'\n' : caption + QStringLiteral("：") + text + u'\n');
    if (buttons.size() == 1)
        return buttons.first().Answer; // nothing to choose, so nothing to wait for
    const qsizetype defaultButton = DefaultOf(flags, buttons.size());
    for (;;) {
        Print(Captions(buttons, defaultButton) + QStringLiteral("："));
        QString line;
        if (!ReadLine(line)) {
            Print(QStringLiteral("\n"));
            return RefusalOf(buttons);
        }
        if (line.isEmpty())
            return buttons[defaultButton].Answer;
        if (const TButton *button = FindButton(buttons, line))
            return button->Answer;
    }
}

bool TConsolePrompts::InputText(const QString &caption, const QString &prompt, QString &value)
{
    Print(caption + QStringLiteral("：") + prompt + (value.isEmpty() ? QString() : u'[' + value + u']') +
          QStringLiteral("："));
    QString line;
    if (!ReadLine(line)) {
        Print(QStringLiteral("\n"));
        return false;
    }
    if (!line.isEmpty())
        value = line;
    return true;
}

QString TConsolePrompts::OpenFileName(const QString &title, const QString &filter, const QString &startName)
{
    const QString name = SaveFileName(title, filter, startName);
    if (name.isEmpty() || QFileInfo(name).isFile())
        return name;
    Print(QStringLiteral("文件 '%1' 不存在\n").arg(name));
    return {};
}

QString TConsolePrompts::SaveFileName(const QString &title, const QString &filter, const QString &startName)
{
    QString name = startName;
    return InputText(title, filter, name) ? name : QString();
}

QString TConsolePrompts::SelectFolder(const QString &title)
{
    QString name;
    if (!InputText(title, QStringLiteral("文件夹"), name) || name.isEmpty())
        return {};
    if (QFileInfo(name).isDir())
        return name;
    Print(QStringLiteral("文件夹 '%1' 不存在\n").arg(name));
    return {};
}

} // namespace Korvane
