// SPDX-License-Identifier: MIT
#include "platform/sql/sqlite/CatalogTables.h"

#include "platform/sql/sqlite/DatabaseFile.h"
#include "platform/sql/sqlite/SqliteMetadata.h"

#include <QFileInfo>

namespace Korvane {

namespace {

/// The form in which the engine keeps a point in time.
QString TimeText(const QDateTime &time) { return time.toString(QStringLiteral("yyyy-MM-dd hh:mm:ss.zzz")); }

/// Empties a temporary table, or makes it, and fills it with rows of values.
void FillTable(TSqliteDatabase &database, const QByteArray &name, const QByteArray &columns,
               const QList<QVariantList> &rows)
{
    database.Run("create temp table if not exists " + name + '(' + columns + ')');
    database.Run("delete from temp." + name);
    if (rows.isEmpty())
        return;
    QByteArray marks = "?";
    for (qsizetype i = 1; i < rows.first().size(); ++i)
        marks += ", ?";
    TSqliteStatement insert(database, "insert into temp." + name + " values(" + marks + ')');
    for (const QVariantList &row : rows) {
        for (qsizetype i = 0; i < row.size(); ++i)
            insert.Bind(int(i) + 1, row[i]);
        insert.Step();
        insert.Reset();
    }
}

void FillObjects(TSqliteDatabase &database)
{
    const QHash<QString, QDateTime> created = TablesCreated(database);
    const QDateTime databaseCreated = DatabaseCreated(database);
    QList<QVariantList> rows;
    TSqliteStatement objects(database, "select name, type, rootpage from main.sqlite_master order by name");
    while (objects.Step()) {
        const QString name = objects.String(0);
        const QString type = objects.String(1);
        if (type == QLatin1String("index"))
            continue;
        const bool system = name.startsWith(QLatin1String("sqlite_")) || name == QLatin1String(MetadataTable);
        const QString kind = type == QLatin1String("view")      ? QStringLiteral("V")
                             : type == QLatin1String("trigger") ? QStringLiteral("TR")
                             : system                           ? QStringLiteral("S")
                                                                : QStringLiteral("U");
        rows.append(
            {name, objects.Int(2), kind, kind, TimeText(created.value(name.toLower(), databaseCreated))});
    }
    FillTable(database, "sysobjects",
              "name varchar(128) collate nocase, id int, xtype char(2) collate nocase, type char(2) collate "
              "nocase, "
              "crdate datetime text",
              rows);
}

/// When a database of the folder was made; its file's own date where it cannot be opened now.
QDateTime CreatedOf(const QString &file)
{
    try {
        // NOTE: not read-only, since such a connection leaves the engine's files beside the database.
        return DatabaseCreated(*OpenDatabaseFile(file, TSqliteOpen::ReadWrite, 0));
    } catch (const ESqlError &) {
        return QFileInfo(file).lastModified();
    }
}

void FillDatabases(TSqliteDatabase &database, const TFolderServer *server)
{
    QList<QVariantList> rows;
    if (server) {
        int number = 0;
        for (const QString &name : server->Databases()) {
            const QString file = server->FileOf(name);
            rows.append({name, ++number, TimeText(CreatedOf(file)), file});
        }
    } else {
        rows.append({QFileInfo(database.FileName()).completeBaseName(), 1,
                     TimeText(DatabaseCreated(database)), database.FileName()});
    }
    FillTable(database, "sysdatabases",
              "name varchar(128) collate nocase, dbid int, crdate datetime text, filename varchar(260)",
              rows);
}

void FillProcesses(TSqliteDatabase &database, const TFolderServer *server, TConnectionRoster *roster)
{
    const QStringList databases = server ? server->Databases() : QStringList();
    QList<QVariantList> rows;
    for (const TRosterEntry &entry : roster ? roster->Entries() : QList<TRosterEntry>()) {
        qsizetype number = 0;
        while (number < databases.size() &&
               databases[number].compare(entry.Database, Qt::CaseInsensitive) != 0)
            ++number;
        rows.append({entry.Number + 50, number + 1, TimeText(entry.Connected), entry.ComputerName,
                     entry.ApplicationName, QString::number(entry.ProcessId), entry.LoginName});
    }
    FillTable(database, "sysprocesses",
              "spid smallint, dbid smallint, login_time datetime text, hostname varchar(128) collate nocase, "
              "program_name varchar(128) collate nocase, hostprocess varchar(10), loginame varchar(128) "
              "collate nocase",
              rows);
}

} // namespace

void FillCatalogTables(TSqliteDatabase &database, const QSet<QString> &names, const TFolderServer *server,
                       TConnectionRoster *roster)
{
    if (names.contains(QStringLiteral("sysobjects")))
        FillObjects(database);
    if (names.contains(QStringLiteral("sysdatabases")))
        FillDatabases(database, server);
    if (names.contains(QStringLiteral("sysprocesses")))
        FillProcesses(database, server, roster);
}

} // namespace Korvane
