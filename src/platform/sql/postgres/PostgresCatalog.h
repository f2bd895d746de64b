// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace Korvane {

/// A query in brackets that stands for a table of the dialect's catalog: "sysobjects",
/// "sysdatabases" or "sysprocesses". Its columns are written in capitals.
QString PostgresCatalogTable(const QString &name);

} // namespace Korvane
