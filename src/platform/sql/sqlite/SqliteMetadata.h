// SPDX-License-Identifier: MIT
#pragma once

#include "platform/sql/sqlite/SqliteDatabase.h"

#include <QDateTime>

namespace Korvane {

/// Name of the table in which a database file keeps what the engine itself does not know:
/// when the database and each of its tables were made, and the password's verifier. Every
/// file that the driver creates has it; a file made by another tool does not, and is served
/// all the same.
inline constexpr auto MetadataTable = "_korvane";

/// Marks a database file as made by the driver (the engine's application_id, "KVDB").
inline constexpr int DatabaseApplicationId = 0x4B564442;

/// Makes the metadata of a new, empty database. An empty password means none.
void CreateMetadata(TSqliteDatabase &database, const QString &password);

/// Raises ESqlError when the file has a password and this is not it.
void CheckDatabasePassword(TSqliteDatabase &database, const QString &password);

/// When the database was made: as recorded, or by the file's own dates.
QDateTime DatabaseCreated(TSqliteDatabase &database);
/// When each table was made, by name in lower case, as far as that is recorded.
QHash<QString, QDateTime> TablesCreated(TSqliteDatabase &database);
/// Records when the table was made that is the newest one. Does nothing for a file without metadata.
void RecordNewestTable(TSqliteDatabase &database);
/// Forgets the tables that are gone. Does nothing for a file without metadata.
void ForgetTables(TSqliteDatabase &database);

} // namespace Korvane
