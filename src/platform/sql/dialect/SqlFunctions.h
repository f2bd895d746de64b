// SPDX-License-Identifier: MIT
#pragma once

#include "platform/sql/SqlDriver.h"

struct sqlite3;

namespace Korvane {

/// Gives a connection of the engine the functions that rewritten statements call, and the dialect's
/// "like". Raises ESqlError. Everything but korvane_spid, which the driver adds.
void RegisterSqlFunctions(sqlite3 *db, TSqlDialect dialect);

} // namespace Korvane
