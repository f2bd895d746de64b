// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

namespace Korvane {

/// The settings that rewritten statements rely on: run it on every connection, before anything
/// else. One text of several statements.
QByteArray PostgresSessionSql();

/// Gives one row of one column, 1 where the database has the functions, operators and the text order
/// that rewritten statements use, in the schema "korvane" and of this version, else 0.
QByteArray PostgresIsPreparedSql();

/// Makes them, or brings those of an older version up to date: for each database once, when it was
/// made or is met for the first time. One text of several statements, to be run as one transaction;
/// two sessions that run it at once wait for each other. The server's own databases ("postgres") do
/// without: the catalog, the clock and server commands do not use them.
QByteArray PostgresPrepareSql();

} // namespace Korvane
