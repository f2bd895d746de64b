// SPDX-License-Identifier: MIT
#pragma once

#include "platform/sql/sqlite/SqliteDatabase.h"

#include <functional>
#include <memory>

namespace Korvane {

// NOTE: a database that may be in use is opened here through the engine and in no other way: closing
// any other descriptor of its file would drop the locks that this process has on it (fcntl(2)).

/// Opens a database to copy it, whether it is in use or not. A lock of another user is waited for as
/// long as is told, in seconds. Raises ESqlError with the file's name.
std::unique_ptr<TSqliteDatabase> OpenCopySource(const QString &fileName, int timeout);

/// Copies a database, as last committed, to a file. Writers go on meanwhile, where the database has a
/// write-ahead log; with a rollback journal their commits wait. What was in the file's place is
/// replaced when the copy is complete and on disk, as ReplaceDatabaseFile does it: a copy that fails or is
/// killed leaves it as it was. The copy is one file without a log, readable from any medium.
///
/// finish, if given, sees the copy before it takes its place, and may refuse or change it.
void CopyDatabaseTo(TSqliteDatabase &source, const QString &target,
                    const std::function<void(TSqliteDatabase &)> &finish = {});

/// Puts a copy in the same folder, made by CopyDatabaseTo, into the place of a database file, in one step.
/// At any moment either the old or the new one stands there whole, with no log of the other beside it.
/// The new file gets the old one's mode and owner. Raises ESqlError when the old one is in use.
void ReplaceDatabaseFile(const QString &copy, const QString &fileName);

/// Raises ESqlError when the engine finds damage anywhere in a copy, in the name of what it is a copy of.
void CheckUndamaged(TSqliteDatabase &copy, const QString &source);
/// Whether a failure says that a file is damaged or no database at all.
bool IsDamage(const ESqlError &error);

/// The name under which a server knew the database that a backup was made of. Files without metadata
/// keep none.
void RecordBackupName(TSqliteDatabase &backup, const QString &name);
QString BackupName(TSqliteDatabase &backup);
void ForgetBackupName(TSqliteDatabase &database);

} // namespace Korvane
