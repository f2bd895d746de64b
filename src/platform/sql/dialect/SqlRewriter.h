// SPDX-License-Identifier: MIT
#pragma once

#include "platform/sql/SqlDriver.h"

#include <QByteArray>
#include <QList>
#include <QSet>
#include <QString>

namespace Korvane {

/// A change of a table that the engine has no statement for: the driver makes the table anew.
struct TTableChange
{
    enum TKind { AddColumn, AlterColumn, DropColumn, AddConstraint, DropConstraint };
    TKind Kind = AddColumn;
    QString Table;
    QString Column;  ///< or the name of the constraint
    QByteArray Text; ///< column definition or constraint, in the engine's language
};

/// One step of a rewritten statement, to be run in order: a statement of the engine, or a
/// change of a table.
struct TRewrittenStep
{
    QByteArray Sql; ///< UTF-8; empty when Change tells what to do
    std::optional<TTableChange> Change;
};

/// What the driver itself has to do beside or in place of running statements.
enum class TServerCommand { None, CreateDatabase, DropDatabase, BackupDatabase, RestoreDatabase };

struct TRewrittenStatement
{
    QList<TRewrittenStep> Steps;
    /// Names of the catalog tables that the statement reads, in lower case and without the
    /// database before them: "sysobjects", "sysdatabases", "sysprocesses".
    QSet<QString> CatalogTables;
    TServerCommand Command = TServerCommand::None;
    QString CommandDatabase; ///< of the server command
    QString CommandFile;     ///< of backup and restore
};

/// Rewrites a statement of one of the library's dialects for SQLite, at token level:
/// literals, comments and quoted names are never touched. docs/dialects.md is the table of
/// what becomes what. A construct without an equivalent is refused with an ESqlError that
/// names it. The text may hold several statements, one behind the other with or without
/// ";" between them, as a batch of a script does.
TRewrittenStatement RewriteForSqlite(const QString &statement, TSqlDialect dialect);

} // namespace Korvane
