// SPDX-License-Identifier: MIT
#include "ToolStreams.h"

#include "platform/core/Exceptions.h"
#include "platform/core/StringList.h"
#include "platform/core/Text.h"

namespace Korvane {

namespace {
constexpr auto ClearLine = "\r\x1b[K";
}

void PrintError(TToolStreams &streams, const Exception &error)
{
    // The library's messages separate their parts by carriage returns.
    QStringList lines;
    SetTextOf(lines, TrimRight(error.Message()));
    streams.Err << lines.join(u'\n') << '\n';
    streams.Err.flush();
}

void TProgressLine::Show(const QString &text)
{
    if (!FShown)
        return;
    if (FStreams.ShowsLines)
        FStreams.Err << ClearLine << text;
    else
        FStreams.Err << text << '\n';
    FStreams.Err.flush();
    FInLine = FStreams.ShowsLines;
}

void TProgressLine::End()
{
    if (FInLine)
        FStreams.Err << ClearLine;
    FStreams.Err.flush();
    FInLine = false;
}

} // namespace Korvane
