// SPDX-License-Identifier: MIT
#pragma once

#include "platform/sql/dialect/SqlRewriter.h"

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QString>

namespace Korvane {

/// What the driver has to know of a step before it runs it.
enum class TPostgresStepKind : quint8 {
    Selects,     ///< gives rows
    ChangesRows, ///< insert, update, delete: its count of rows is the statement's
    Defines,     ///< changes the schema; it has no count of rows
    Begins,      ///< begin, commit and rollback of a transaction
    Commits,
    RollsBack
};

/// One statement of PostgreSQL. Parameters (":NAME" and "?") stand in it as they were written.
struct TPostgresStep
{
    QByteArray Sql; ///< UTF-8
    TPostgresStepKind Kind = TPostgresStepKind::Defines;
    /// It reads the count of rows of the statement before: the driver runs RowCountSql first.
    bool ReadsRowCount = false;
};

/// A statement of the MSSQL dialect in the language of PostgreSQL.
struct TPostgresStatement
{
    QList<TPostgresStep> Steps; ///< to be run in order
    /// PostgreSQL knows all names in capital letters; the columns of a result that were written in
    /// another way: "ID" -> "Id". A result's column that is not in here keeps its name.
    QHash<QString, QString> WrittenNames;
    /// Anything but None: the driver does it in place of running statements; Steps is empty.
    TServerCommand Command = TServerCommand::None;
    QString CommandDatabase; ///< of the server command, as written
    QString CommandFile;     ///< of backup and restore
};

/// Rewrites a statement of the MSSQL dialect for PostgreSQL, at token level: literals and comments
/// are never touched. docs/dialects.md is the table of what becomes what. A construct without an
/// equivalent is refused with an ESqlError that names it. The text may hold several statements, one
/// behind the other with or without ";" between them.
TPostgresStatement RewriteForPostgres(const QString &statement);

/// The name under which PostgreSQL knows a table or column of the MSSQL dialect: its letters a to z
/// as capitals. Raises ESqlError for a name that is longer than the engine keeps.
QString PostgresName(const QString &name);

/// What tells the engine how many rows the last statement changed, for a step that asks.
QByteArray RowCountSql(qint64 count);

} // namespace Korvane
