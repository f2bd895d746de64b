// SPDX-License-Identifier: MIT
#pragma once

#include "platform/data/RowFeed.h"
#include "platform/sql/ConnectionString.h"
#include "platform/sql/SqlError.h"

#include <QVariant>

#include <span>

namespace Korvane {

/// The two SQL dialects in which statements are written.
enum class TSqlDialect : quint8 { Access, MSSQL };

/// A value bound to a parameter of a statement: ":" and its name, outside of literals.
struct TSqlParameter
{
    QString Name;
    /// Null, bool, int, qlonglong, double, QString or QByteArray (a blob).
    QVariant Value;
};

/// Which schema rowset is asked for.
enum TSchemaInfo { siTables, siColumns, siIndexes, siProviderSpecific };

/// What a program may ask of an engine before it relies on it.
enum class TSqlFeature {
    Transactions,
    BlobParameters,
    SchemaChanges,
    ReadOnly,
    CopyDatabase,
    CreateDatabase
};

/// How a connection uses its database.
enum TConnectMode { cmUnknown, cmRead, cmWrite, cmReadWrite };

/// Whether a copy of a database is looked through for damage before it appears.
enum class TCopyCheck : quint8 { None, Whole };

struct TSqlConnectOptions
{
    TConnectMode Mode = cmUnknown;
    /// How long a statement waits for a lock of another user, in seconds.
    int CommandTimeout = 30;
    /// Under which name the connection is listed, where its connection string has no place for one.
    QString ApplicationName;
};

/// The seam between the library and a database engine. Statements come in one of the two
/// dialects; a driver whose engine speaks another rewrites them. All failures are ESqlError.
/// A driver is used from one thread and serves one connection.
class SqlDriver
{
public:
    virtual ~SqlDriver();

    virtual bool HasFeature(TSqlFeature feature) const = 0;

    virtual void Connect(const TConnectionString &connection, const TSqlConnectOptions &options) = 0;
    /// Rolls back what is open and lets go of the database. Never fails.
    virtual void Disconnect() = 0;
    virtual bool IsConnected() const = 0;

    /// Runs a statement and returns how many rows it affected, 0 if the engine reports none.
    virtual qint64 Execute(const QString &statement, std::span<const TSqlParameter> parameters = {}) = 0;
    /// Runs a statement and returns all of its rows. A statement that gives no rowset gives
    /// a packet without fields.
    virtual TDataPacket Query(const QString &statement, std::span<const TSqlParameter> parameters = {}) = 0;
    /// The same rows, but only the first ones at once, at least so many unless there are fewer. The others,
    /// which are those of this moment, are read when the feed is asked; it may outlive the driver. By
    /// default, and wherever it would keep other users from working, all rows are read at once.
    virtual TFirstRows QueryFirst(const QString &statement, qsizetype rows);
    /// The first value of the first row that Query gives; a null QVariant without one.
    virtual QVariant QueryValue(const QString &statement);

    virtual void BeginTransaction() = 0;
    virtual void CommitTransaction() = 0;
    virtual void RollbackTransaction() = 0;
    virtual bool InTransaction() const = 0;

    /// A schema rowset. siTables has TABLE_NAME, TABLE_TYPE ("TABLE", "VIEW",
    /// "SYSTEM TABLE"), DATE_CREATED (a date-time number); siColumns has TABLE_NAME,
    /// COLUMN_NAME, ORDINAL_POSITION, DATA_TYPE (the declared type), CHARACTER_MAXIMUM_LENGTH,
    /// IS_NULLABLE, COLUMN_DEFAULT; siIndexes has TABLE_NAME, INDEX_NAME, COLUMN_NAME,
    /// ORDINAL_POSITION, UNIQUE, PRIMARY_KEY. siProviderSpecific is chosen by schemaId.
    /// Restrictions are given by position as in the rowset's columns, empty ones unset.
    virtual TDataPacket OpenSchema(TSchemaInfo schema, const QVariantList &restrictions,
                                   const QString &schemaId) = 0;

    /// Makes the empty database that a connection string names; the driver is not connected
    /// afterwards. An existing database is an error.
    virtual void CreateDatabase(const TConnectionString &connection);
    /// Removes the database that a connection string names. One in use is an error.
    virtual void DropDatabase(const TConnectionString &connection);
    /// Copies the whole database, as last committed, to a file, which appears whole or not
    /// at all.
    virtual void CopyDatabase(const QString &fileName);
    /// The same for the database in a file, to which the driver need not be connected.
    virtual void CopyDatabaseFile(const QString &source, const QString &target, TCopyCheck check);
    /// Puts a copy, which stands in the same folder, into the place of the database that a connection string
    /// names, in one step; the database need not be there before. The driver is not connected. A
    /// database in use, or whose password is another, is an error.
    virtual void ReplaceDatabase(const TConnectionString &connection, const QString &copy);
};

/// Schema id of the roster of users: a row per connection, COMPUTER_NAME, LOGIN_NAME,
/// CONNECTED, APPLICATION_NAME, PROCESS_ID.
inline constexpr auto UserRosterSchemaId = "{947bb102-5d43-11d1-bdbf-00c04fb92675}";

} // namespace Korvane
