// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace Korvane {

/// A query in brackets that stands for a table of the dialect's catalog: "sysobjects",
/// "sysdatabases" or "sysprocesses". Its columns are written in capitals.
QString PostgresCatalogTable(const QString &name);

/// The name of a session's program in pg_stat_activity, as the driver was told it: the engine takes ASCII
/// alone, the driver writes other names in base64.
QString PostgresProgramName();

} // namespace Korvane
