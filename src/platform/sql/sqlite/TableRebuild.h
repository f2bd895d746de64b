// SPDX-License-Identifier: MIT
#pragma once

#include "platform/sql/dialect/SqlRewriter.h"
#include "platform/sql/sqlite/SqliteDatabase.h"

namespace Korvane {

/// Carries out a change of a table for which the engine has no statement: the table is made
/// anew from its edited text, its rows are copied, its indexes and triggers made again
/// (sqlite.org/lang_altertable.html, section 7). Must run inside a savepoint or transaction:
/// it either succeeds or raises ESqlError half-way.
void RebuildTable(TSqliteDatabase &database, const TTableChange &change);

/// Suspends the foreign keys while a table is made anew and checks them at the end. Raises
/// ESqlError when that is impossible because a transaction is open and keys refer to tables.
class TForeignKeyPause
{
public:
    TForeignKeyPause(TSqliteDatabase &database, bool needed);
    ~TForeignKeyPause();
    TForeignKeyPause(const TForeignKeyPause &) = delete;
    TForeignKeyPause &operator=(const TForeignKeyPause &) = delete;

private:
    TSqliteDatabase &FDatabase;
    bool FPaused = false;
};

} // namespace Korvane
