// SPDX-License-Identifier: MIT
#pragma once

#include "platform/sql/sqlite/ConnectionRoster.h"
#include "platform/sql/sqlite/FolderServer.h"
#include "platform/sql/sqlite/SqliteDatabase.h"

#include <QSet>

namespace Korvane {

/// Makes the named catalog tables ("sysobjects", "sysdatabases", "sysprocesses") stand as
/// temporary tables of the connection, with what is true at this moment. Without a folder
/// server the list of databases is the open one alone.
void FillCatalogTables(TSqliteDatabase &database, const QSet<QString> &names, const TFolderServer *server,
                       TConnectionRoster *roster);

} // namespace Korvane
