// SPDX-License-Identifier: MIT
#pragma once

#include "platform/core/Cursor.h"

#include <QCursor>

namespace Korvane {

QCursor ToQCursor(TCursor cursor);

/// Shows the cursor over all windows; crDefault leaves it to each control again. Needs the application
/// object.
void ShowCursor(TCursor cursor);

} // namespace Korvane
