// SPDX-License-Identifier: MIT
#pragma once

#include "platform/sql/SqlDriver.h"
#include "platform/sql/dialect/SqlRewriter.h"

#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

#include <functional>
#include <span>

namespace Korvane {

/// Where a connection goes to and as whom.
struct TOdbcTarget
{
    QString Host;
    QString Instance; ///< of a SQL Server, empty for the default one
    int Port = 0;     ///< 0: the server's usual one
    QString Database;
    QString User;
    QString Password;
    QString ApplicationName;
};

/// A driver of the ODBC driver manager that reaches a server.
struct TOdbcDriverChoice
{
    QString Names;   ///< regular expression for the names under which it is installed
    QString Library; ///< its shared library, taken where no name is listed; may be empty
    /// The parts of its connection string behind "Driver=".
    QString (*Parts)(const TOdbcTarget &target);
};

enum class TOdbcStepKind : quint8 {
    Any, ///< a batch of the server's own: may give rows and counts, several of each
    Selects,
    ChangesRows,
    Defines,
    Begins,
    Commits,
    RollsBack
};

/// A text that is sent to the server in one piece; parameters stand in it as ":NAME".
struct TOdbcStep
{
    QString Sql;
    TOdbcStepKind Kind = TOdbcStepKind::Any;
    bool ReadsRowCount = false; ///< the server is told the last count of rows before
};

/// What becomes of one statement.
struct TOdbcBatch
{
    QList<TOdbcStep> Steps;
    QHash<QString, QString> WrittenNames;          ///< of result columns that the server names differently
    TServerCommand Command = TServerCommand::None; ///< done by the driver in place of steps
    QString CommandDatabase;
    QString CommandFile; ///< of backup and restore
};

/// Sentence for the user in front of the server's own words, where the state is known.
struct TOdbcSentence
{
    QLatin1StringView SQLState;
    const char *Text;
};

/// A database that is copied to a file of this machine, or brought back from one.
struct TOdbcCopyCall
{
    const TOdbcTarget &Target; ///< of the connection
    QString Database;
    QString FileName;
    /// Runs a text of the server's own language on the connection.
    std::function<TDataPacket(const QString &)> Run;
};

/// All that one kind of server does differently from another. The driver asks this record and
/// nothing else; what a server has no need of is null.
struct TOdbcServer
{
    QString Title;                    ///< for messages
    QString Package;                  ///< that brings a driver, for messages
    QList<TOdbcDriverChoice> Drivers; ///< best first
    QString ServerDatabase;           ///< the database that is always there
    /// Types whose texts the driver gives as the UTF-8 that the server sent; others come as UTF-16.
    QStringList Utf8Types;
    /// A text column of unlimited length is a memo only where it is a column of a table: any
    /// computed text is of that type, too.
    bool ComputedTextsAreUnlimited = false;
    /// Texts hold no NUL: the driver would cut one off there.
    bool TextsEndAtNul = false;
    /// Steps of one statement are done as a whole or not at all.
    bool KeepsStepsTogether = false;
    /// What the driver adds behind the server's words.
    QString NoiseBehindErrors;
    std::span<const TOdbcSentence> Sentences;

    TOdbcTarget (*ReadAddress)(const QString &dataSource) = nullptr;
    QString (*DatabaseName)(const QString &name) = nullptr; ///< as the server keeps it
    /// Run at the beginning of each connection.
    QString (*SessionSql)(const TOdbcTarget &target, const TSqlConnectOptions &options) = nullptr;
    bool (*IsReadOnly)(const TSqlConnectOptions &options) = nullptr; ///< whether SessionSql made it so
    QString (*IsPreparedSql)() =
        nullptr; ///< gives 0 when a database needs what PrepareSql makes; may be null
    QString (*PrepareSql)() = nullptr;
    TOdbcBatch (*Rewrite)(const QString &statement) = nullptr;
    QString (*RowCountSql)(qint64 count) = nullptr; ///< may be null
    QStringList (*CreateDatabaseSql)(const QString &name) = nullptr;
    QStringList (*DropDatabaseSql)(const QString &name) = nullptr;
    /// Only where Rewrite gives these commands.
    void (*Backup)(const TOdbcCopyCall &call) = nullptr;
    void (*Restore)(const TOdbcCopyCall &call) = nullptr;

    // Statements that give the schema rowsets in the columns that SqlDriver names.
    const char *TablesSql = nullptr;
    const char *ColumnsSql = nullptr;
    const char *IndexesSql = nullptr;
    const char *UsersSql = nullptr;
};

const TOdbcServer &SqlServerOverOdbc();
const TOdbcServer &PostgresOverOdbc();

/// The kind of server that a data source names: "postgresql://host:port" is PostgreSQL; "host",
/// "host,port" and "host\instance" are Microsoft SQL Server.
const TOdbcServer &OdbcServerOf(const QString &dataSource);

/// What a connection string asks for. Raises ESqlError for an address that cannot be read.
TOdbcTarget OdbcTargetOf(const TOdbcServer &server, const TConnectionString &connection,
                         const QString &applicationName);

/// The connection string for the driver manager, with the best of the installed drivers.
QString OdbcConnectionText(const TOdbcServer &server, const TOdbcTarget &target,
                           const QStringList &installedDrivers);

/// A value in braces, as ODBC's connection strings carry any text.
QString OdbcBraced(const QString &value);

} // namespace Korvane
