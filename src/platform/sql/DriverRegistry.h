// SPDX-License-Identifier: MIT
#pragma once

#include "platform/sql/SqlDriver.h"

#include <functional>
#include <memory>

namespace Korvane {

/// A way to serve the connection strings of a provider.
struct TDriverEntry
{
    QString Name;     ///< of the driver: "sqlite", "jet", "odbc" …
    QString Provider; ///< as the connection string names it, blind to the case of letters
    /// Whether the driver serves this data source; entries are asked from the last registered
    /// to the first, so that an application's own driver goes before the built-in ones.
    std::function<bool(const TConnectionString &)> Serves;
    std::function<std::unique_ptr<SqlDriver>()> Create;
};

/// The built-in drivers are there from the start:
///
/// | provider                | data source              | driver |
/// |-------------------------|--------------------------|--------|
/// | Microsoft.Jet.OLEDB.4.0 | a Jet file, by content   | jet    |
/// | Microsoft.Jet.OLEDB.4.0 | anything else            | sqlite |
/// | SQLOLEDB.1              | folder:PATH              | sqlite |
/// | SQLOLEDB.1              | any other server         | odbc   |
void RegisterDriver(TDriverEntry entry);
/// Takes back what was registered under a name, built-in drivers too.
void UnRegisterDriver(const QString &name);

/// A new driver for a connection string. Raises ESqlError when no driver serves it.
std::unique_ptr<SqlDriver> CreateDriver(const TConnectionString &connection);

} // namespace Korvane
