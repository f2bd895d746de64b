// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace Korvane {

/// Shows a message with an OK button, an information symbol and the application's title,
/// and waits until it is answered. Gives the answer, IDOK.
int ShowMsg(const QString &text);

/// Asks a question with the buttons Yes and No and gives the answer, IDYES or IDNO (6 or 7).
/// The flags are added to those of the box: MB_DEFBUTTON2 (256) makes No the default button.
int ShowDialog(const QString &text, int flags);

} // namespace Korvane
