// SPDX-License-Identifier: MIT
#include "ToolPrompts.h"

#include "platform/core/Text.h"

namespace Korvane {

int TToolPrompts::MessageBox(const QString &text, const QString &, int flags)
{
    switch (flags & MB_BUTTONS) {
    case MB_YESNO:
        return Agrees(text) ? IDYES : IDNO;
    case MB_OKCANCEL:
        return Agrees(text) ? IDOK : IDCANCEL;
    default:
        FStreams.Out << text << '\n';
        return IDOK;
    }
}

bool TToolPrompts::Agrees(const QString &question)
{
    FStreams.Out.flush();
    FStreams.Err << question;
    if (FAnswer == Answer::Yes) {
        FStreams.Err << QStringLiteral(" 是\n");
        return true;
    }
    if (!FStreams.HasReader) {
        FStreams.Err << QStringLiteral(" 否（没有终端可以询问，选项 --yes 表示同意）\n");
        return false;
    }
    return Ask();
}

bool TToolPrompts::Ask()
{
    for (;;) {
        FStreams.Err << QStringLiteral(" [是/y 否/n]：");
        FStreams.Err.flush();
        QString line;
        if (!FStreams.In.readLineInto(&line))
            return false;
        line = Trim(line).toLower();
        if (line == QStringLiteral("是") || line == QLatin1String("y") || line == QLatin1String("yes"))
            return true;
        if (line == QStringLiteral("否") || line == QLatin1String("n") || line == QLatin1String("no"))
            return false;
    }
}

} // namespace Korvane
