// SPDX-License-Identifier: MIT
#include "platform/sql/DriverRegistry.h"

#include "platform/sql/jet/JetDriver.h"
#include "platform/sql/odbc/OdbcDriver.h"
#include "platform/sql/sqlite/FolderServer.h"
#include "platform/sql/sqlite/SqliteDriver.h"

namespace Korvane {

namespace {

QList<TDriverEntry> BuiltInDrivers()
{
    const auto jetProvider = QStringLiteral("Microsoft.Jet.OLEDB.4.0");
    const auto serverProvider = QStringLiteral("SQLOLEDB.1");
    return {
        {QStringLiteral("sqlite"), jetProvider, [](const TConnectionString &) { return true; },
         [] { return std::make_unique<TSqliteDriver>(TSqlDialect::Access); }},
        {QStringLiteral("sqlite"), serverProvider,
         [](const TConnectionString &connection) {
             return TFolderServer::IsAddress(connection.DataSource());
         },
         [] { return std::make_unique<TSqliteDriver>(TSqlDialect::MSSQL); }},
        {QStringLiteral("odbc"), serverProvider,
         [](const TConnectionString &connection) { return TOdbcDriver::IsServer(connection.DataSource()); },
         [] { return std::make_unique<TOdbcDriver>(); }},
        {QStringLiteral("jet"), jetProvider,
         [](const TConnectionString &connection) { return TJetDriver::IsJetFile(connection.DataSource()); },
         [] { return std::make_unique<TJetDriver>(); }},
    };
}

QList<TDriverEntry> &Drivers()
{
    static QList<TDriverEntry> drivers = BuiltInDrivers();
    return drivers;
}

} // namespace

void RegisterDriver(TDriverEntry entry) { Drivers().append(std::move(entry)); }

void UnRegisterDriver(const QString &name)
{
    Drivers().removeIf([&name](const TDriverEntry &entry) { return entry.Name == name; });
}

std::unique_ptr<SqlDriver> CreateDriver(const TConnectionString &connection)
{
    const QList<TDriverEntry> &drivers = Drivers();
    for (auto entry = drivers.crbegin(); entry != drivers.crend(); ++entry)
        if (entry->Provider.compare(connection.Provider(), Qt::CaseInsensitive) == 0 &&
            entry->Serves(connection))
            return entry->Create();
    throw ESqlError(connection.Provider().isEmpty()
                        ? QStringLiteral("连接字符串没有指定数据提供者")
                        : QStringLiteral("没有可用的数据库驱动程序：%1，%2")
                              .arg(connection.Provider(), connection.DataSource()));
}

} // namespace Korvane
