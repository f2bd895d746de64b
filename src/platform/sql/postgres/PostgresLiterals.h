// SPDX-License-Identifier: MIT
#pragma once

#include "platform/sql/dialect/SqlCursor.h"

namespace Korvane {

/// Stands for the count of rows that the statement before changed: PostgreSQL itself forgets it.
inline constexpr QLatin1StringView PostgresRowCount{"cast(current_setting('korvane.rowcount') as bigint)"};

/// Writes what means the same wherever it stands: literals that PostgreSQL spells in another way,
/// and the server's variables. True if the count of rows is among them.
bool WritePostgresLiterals(TSqlEdits &edits);

} // namespace Korvane
