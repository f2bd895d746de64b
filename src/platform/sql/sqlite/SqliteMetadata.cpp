// SPDX-License-Identifier: MIT
#include "platform/sql/sqlite/SqliteMetadata.h"

#include "platform/sql/sqlite/PasswordVerifier.h"

#include <QFileInfo>

#include <sqlite3.h>

namespace Korvane {

namespace {

// Rows of the metadata table: Kind says what Name stands for.
constexpr auto CreateTable = "create table _korvane(Kind text not null, Name text not null collate nocase, "
                             "Value text, primary key(Kind, Name)) without rowid";

QByteArray PresentTime() { return QDateTime::currentDateTime().toString(Qt::ISODateWithMs).toUtf8(); }

bool HasMetadata(TSqliteDatabase &database)
{
    return sqlite3_table_column_metadata(database.Handle(), "main", MetadataTable, nullptr, nullptr, nullptr,
                                         nullptr, nullptr, nullptr) == SQLITE_OK;
}

QString MetadataValue(TSqliteDatabase &database, std::string_view kind)
{
    if (!HasMetadata(database))
        return {};
    TSqliteStatement statement(database, "select Value from _korvane where Kind=?1");
    statement.BindText(1, kind);
    return statement.Step() ? statement.String(0) : QString();
}

void InsertMetadata(TSqliteDatabase &database, std::string_view kind, const QByteArray &value)
{
    TSqliteStatement statement(database, "insert into _korvane(Kind, Name, Value) values(?1, '', ?2)");
    statement.BindText(1, kind);
    statement.BindText(2, {value.constData(), size_t(value.size())});
    statement.Step();
}

} // namespace

void CreateMetadata(TSqliteDatabase &database, const QString &password)
{
    database.Run(CreateTable);
    InsertMetadata(database, "database", PresentTime());
    if (!password.isEmpty())
        InsertMetadata(database, "password", MakePasswordVerifier(password).toUtf8());
    database.Run("pragma application_id=" + QByteArray::number(DatabaseApplicationId));
}

void CheckDatabasePassword(TSqliteDatabase &database, const QString &password)
{
    const QString verifier = MetadataValue(database, "password");
    if (verifier.isEmpty() || CheckPassword(password, verifier))
        return;
    throw ESqlError(password.isEmpty()
                        ? QStringLiteral("数据库设有密码，请输入密码后再连接：%1").arg(database.FileName())
                        : QStringLiteral("数据库密码不正确，不能连接：%1").arg(database.FileName()));
}

QDateTime DatabaseCreated(TSqliteDatabase &database)
{
    const QString recorded = MetadataValue(database, "database");
    if (!recorded.isEmpty())
        return QDateTime::fromString(recorded, Qt::ISODateWithMs);
    const QFileInfo file(database.FileName());
    return file.birthTime().isValid() ? file.birthTime() : file.lastModified();
}

QHash<QString, QDateTime> TablesCreated(TSqliteDatabase &database)
{
    QHash<QString, QDateTime> tables;
    if (!HasMetadata(database))
        return tables;
    TSqliteStatement statement(database, "select Name, Value from _korvane where Kind='table'");
    while (statement.Step())
        tables.insert(statement.String(0).toLower(),
                      QDateTime::fromString(statement.String(1), Qt::ISODateWithMs));
    return tables;
}

void RecordNewestTable(TSqliteDatabase &database)
{
    if (!HasMetadata(database))
        return;
    // Rows of the schema are numbered in the order in which they are made.
    TSqliteStatement statement(database,
                               "insert or replace into _korvane(Kind, Name, Value) "
                               "select 'table', name, ?1 from sqlite_master where type='table' "
                               "and name not like 'sqlite\\_%' escape '\\' order by rowid desc limit 1");
    const QByteArray now = PresentTime();
    statement.BindText(1, {now.constData(), size_t(now.size())});
    statement.Step();
}

void ForgetTables(TSqliteDatabase &database)
{
    if (HasMetadata(database))
        database.Run("delete from _korvane where Kind='table' and Name not in "
                     "(select name from sqlite_master where type='table')");
}

} // namespace Korvane
