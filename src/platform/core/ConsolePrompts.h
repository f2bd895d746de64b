// SPDX-License-Identifier: MIT
#pragma once

#include "platform/core/Prompts.h"

#include <iosfwd>

namespace Korvane {

/// Asks on one stream and reads the answers, a line each, from another, both in UTF-8. An empty line
/// is the default button, or the value as it stands. The end of the input refuses (No, Cancel), so
/// that nothing waits and nothing is agreed to unseen.
class TConsolePrompts : public Prompts
{
public:
    TConsolePrompts(); ///< standard input and standard error
    /// The streams must outlive the object.
    TConsolePrompts(std::istream &input, std::ostream &output);

    int MessageBox(const QString &text, const QString &caption, int flags) override;
    bool InputText(const QString &caption, const QString &prompt, QString &value) override;
    QString OpenFileName(const QString &title, const QString &filter, const QString &startName) override;
    QString SaveFileName(const QString &title, const QString &filter, const QString &startName) override;
    QString SelectFolder(const QString &title) override;

private:
    void Print(const QString &text);
    bool ReadLine(QString &line);

    std::istream &FInput;
    std::ostream &FOutput;
};

} // namespace Korvane
