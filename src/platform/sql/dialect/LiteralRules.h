// SPDX-License-Identifier: MIT
#pragma once

#include "platform/sql/dialect/SqlCursor.h"

namespace Korvane {

/// Writes what means the same wherever it stands: literals and names that SQLite spells in another
/// way, and the server's variables.
void RewriteLiterals(TSqlCursor &cursor);

} // namespace Korvane
