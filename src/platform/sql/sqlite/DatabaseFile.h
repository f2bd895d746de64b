// SPDX-License-Identifier: MIT
#pragma once

#include "platform/sql/sqlite/SqliteDatabase.h"

#include <memory>

namespace Korvane {

/// The first bytes of a file, fewer of a shorter one. Read through the engine: closing any other descriptor
/// of a database's file would drop the locks that this process has on it (fcntl(2)). Raises ESqlError when
/// the file cannot be read.
QByteArray FirstBytesOf(const QString &fileName, int count);

/// Opens a database file after looking at what it is. Raises ESqlError with the file's name
/// when it is missing, a folder, empty, of another format or cannot be read. Another user's
/// lock is waited for, now and later, as long as is told, in seconds.
std::unique_ptr<TSqliteDatabase> OpenDatabaseFile(const QString &fileName, TSqliteOpen mode, int timeout);

/// Makes a new database file with its metadata. Raises ESqlError when the file exists or
/// cannot be written, and leaves nothing behind then.
void CreateDatabaseFile(const QString &fileName, const QString &password);

/// Removes a database file and what the engine keeps beside it. Raises ESqlError.
void RemoveDatabaseFile(const QString &fileName);

/// Sees to it that the file has the journal that its place allows: a write-ahead log, or a
/// rollback journal on network file systems, where a log's shared memory does not work.
void ChooseJournal(TSqliteDatabase &database);

} // namespace Korvane
