// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace Korvane {

/// The name of a database on a PostgreSQL server: as it is, but that "postgres" is what the MSSQL
/// dialect calls "master". Raises ESqlError for a name that is longer than the server keeps. NOTE: there
/// capital letters count.
QString PostgresDatabaseName(const QString &name);

/// The name of an application as a PostgreSQL session can carry it, which is up to 63 characters
/// of ASCII: any other is "b64:" and the base64 of its UTF-8, cut to 14 Chinese characters.
QString PostgresApplicationName(const QString &name);

/// A statement that gives a database another name.
QString PostgresRenameSql(const QString &from, const QString &to);

struct TOdbcCopyCall;
/// Copies a database, as last committed, by pg_dump. The file appears whole or not at all.
void BackupPostgres(const TOdbcCopyCall &call);
/// Makes a database out of such a file by pg_restore, and puts it into the place of the one of its name,
/// which need not be there. A file that is damaged, and a database in use, are found before that. The
/// connection must be one to another database.
void RestorePostgres(const TOdbcCopyCall &call);

/// Host and port of "postgresql://host:port". Raises ESqlError for anything else.
struct TPostgresAddress
{
    QString Host;
    int Port = 5432;
};
TPostgresAddress PostgresAddressOf(const QString &dataSource);

} // namespace Korvane
