// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace Korvane {

/// The name of a database on a PostgreSQL server: as it is, but that "postgres" is what the MSSQL
/// dialect calls "master". NOTE: there capital letters count.
QString PostgresDatabaseName(const QString &name);

/// The name of an application as a PostgreSQL session can carry it, which is up to 63 characters
/// of ASCII: any other is "b64:" and the base64 of its UTF-8, cut to 14 Chinese characters.
QString PostgresApplicationName(const QString &name);

/// Host and port of "postgresql://host:port". Raises ESqlError for anything else.
struct TPostgresAddress
{
    QString Host;
    int Port = 5432;
};
TPostgresAddress PostgresAddressOf(const QString &dataSource);

} // namespace Korvane
