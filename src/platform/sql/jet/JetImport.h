// SPDX-License-Identifier: MIT
#pragma once

#include "platform/sql/jet/JetFile.h"
#include "platform/sql/sqlite/SqliteDatabase.h"

namespace Korvane {

enum class TJetNulls { AsDeclared, Allowed };

/// Makes an empty table in a database of the embedded engine, with fitting declared types.
/// A column that demands a value may hold NULL in rows that are older than the demand, so
/// that rows go only into a table in which NULL is allowed.
void CreateJetTable(const QString &table, const QList<TJetColumn> &columns, TJetNulls nulls,
                    TSqliteDatabase &database);

/// Makes the table and copies all rows, in the order of the file. The caller sets the
/// transaction. Booleans become 0 and 1, money and decimals numbers, dates ISO texts.
void CopyJetTable(TJetFile &file, const QString &table, TSqliteDatabase &database);

} // namespace Korvane
