// SPDX-License-Identifier: MIT
#pragma once

#include "platform/sql/sqlite/ConnectionRoster.h"
#include "platform/sql/sqlite/SqliteDatabase.h"

namespace Korvane {

// The schema rowsets of the embedded engine; SqlDriver::OpenSchema tells their columns. A
// restriction is compared with the column at its position, blind to the case of letters.

/// System tables come first: the database's own date stands in the first row.
TDataPacket TablesRowset(TSqliteDatabase &database, const QVariantList &restrictions);
TDataPacket ColumnsRowset(TSqliteDatabase &database, const QVariantList &restrictions);
TDataPacket IndexesRowset(TSqliteDatabase &database, const QVariantList &restrictions);
TDataPacket UserRosterRowset(const QList<TRosterEntry> &entries);

} // namespace Korvane
