// SPDX-License-Identifier: MIT
#pragma once

class QCoreApplication;
class QString;

namespace Korvane {

/// Makes Qt's own buttons, menus and dialogs Chinese as long as the application object lives: by Qt's
/// translation where it is installed, and for the commonest texts in any case.
void InstallChineseTexts(QCoreApplication &application);

/// The Chinese text of one of Qt's; null if it is none of the commonest.
QString ChineseText(const char *sourceText);

} // namespace Korvane
