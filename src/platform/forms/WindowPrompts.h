// SPDX-License-Identifier: MIT
#pragma once

#include "platform/core/Prompts.h"

namespace Korvane {

/// Talks to the user with boxes over the active window. Each call waits until it is answered; whatever else
/// the application has to do can run meanwhile.
class TWindowPrompts : public Prompts
{
public:
    /// The text is shown as it is, and can be marked; Ctrl+C takes the whole box to the clipboard. Esc and
    /// the frame's close button answer Cancel where there is one and OK where there is nothing else, and do
    /// nothing in other boxes. A box that ends without an answer, as at the application's end, answers as Esc
    /// would, else IDNO or IDABORT. Raises Exception for buttons that do not exist.
    int MessageBox(const QString &text, const QString &caption, int flags) override;
    bool InputText(const QString &caption, const QString &prompt, QString &value) override;
    QString OpenFileName(const QString &title, const QString &filter, const QString &startName) override;
    /// Asks before a file is overwritten. A name without a suffix gets that of the filter chosen.
    QString SaveFileName(const QString &title, const QString &filter, const QString &startName) override;
    QString SelectFolder(const QString &title) override;
};

} // namespace Korvane
