// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QTextStream>

namespace Korvane {

class Exception;

/// Where the tool reads and writes. Results go to Out, which stands on a device; messages,
/// questions and progress go to Err.
struct TToolStreams
{
    QTextStream &Out;
    QTextStream &Err;
    QTextStream &In;
    bool HasReader = false;  ///< somebody sits at a terminal and can answer a question
    bool ShowsLines = false; ///< Err is a terminal, on which a line can be written over
};

/// Writes an exception's message to Err as lines.
void PrintError(TToolStreams &streams, const Exception &error);

/// One line on Err that tells how far a command has come, written over and over on a terminal.
/// Elsewhere it is silent, unless it is asked for; then each text is a line of its own.
class TProgressLine
{
public:
    enum class When { OnTerminal, Always };

    TProgressLine(TToolStreams &streams, When when)
        : FStreams(streams), FShown(streams.ShowsLines || when == When::Always)
    {
    }
    TProgressLine(const TProgressLine &) = delete;
    TProgressLine &operator=(const TProgressLine &) = delete;
    ~TProgressLine() { End(); }

    void Show(const QString &text);
    /// Takes the line off the terminal, before something else is written.
    void End();

private:
    TToolStreams &FStreams;
    bool FShown;
    bool FInLine = false;
};

} // namespace Korvane
