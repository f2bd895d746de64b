// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace Korvane {

/// The caption of message boxes; the application's name unless set.
QString ApplicationTitle();
/// An empty title means the application's name again.
void SetApplicationTitle(const QString &title);

} // namespace Korvane
