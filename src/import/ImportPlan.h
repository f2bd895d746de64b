// SPDX-License-Identifier: MIT
#pragma once

#include "general/Types.h"
#include "platform/sql/jet/JetFile.h"

#include <QStringList>

#include <optional>

namespace Korvane {

class TDBDFile;

/// By which of its names a field of the design was found in the old table.
enum class TImportMatch { None, Code, Property, Label };

/// Where a column of the new database gets its values from.
enum class TImportOrigin {
    OldColumn, ///< the column of the old table
    Audit,     ///< an audit column that the old table does not have: who imports, and when
    Default,   ///< the same value in every row, since the column must have one
    Empty      ///< nothing: the row gets the default of the database, or NULL
};

/// A column of a new table, and what goes into it.
struct TImportColumn
{
    QString Code;
    QString Label;
    TDataType Type = dtChar;
    int Size = 0;
    int Precision = 0;
    bool IsKey = false;
    bool IsAuto = false;
    bool IsAudit = false;
    /// What stands in for NULL, where the design allows none: the design's default, as the
    /// statements of TDBDFile::GetRepairSQL fill it in. No value where NULL may stay.
    std::optional<QString> Default;
    TImportOrigin Origin = TImportOrigin::Empty;
    TImportMatch Match = TImportMatch::None;
    int Old = -1;         ///< number of the column in the old table
    TJetColumn OldColumn; ///< of TImportOrigin::OldColumn
};

/// A table of the design and the old table that its rows come from.
struct TImportTable
{
    QString Code;
    QString Label;
    QString OldName;
    qint64 RowCount = 0; ///< as the old file counts, which may be behind
    QList<TImportColumn> Columns;
    QList<TJetColumn> Unplaced; ///< old columns for which the design has no field

    /// The columns that an insert statement names.
    QList<TImportColumn> Filled() const;
};

struct TNamedTable
{
    QString Name;
    QString Label;
};

/// What an import will do, worked out from the definitions alone: no row is read.
struct TImportPlan
{
    QString OldFile;
    QString DesignFile;
    int DesignVersion = 0;
    std::optional<int> OldVersion; ///< of the old database, where it keeps one
    QList<TImportTable> Tables;    ///< in the order of the design
    QStringList Unplaced;          ///< old tables for which the design has none
    QStringList Queries;           ///< stored in the old file; an import takes rows alone
    QList<TNamedTable> Empty;      ///< tables of the design for which there is no old one
    /// Why the import cannot begin; empty when it can.
    QStringList Obstacles;

    /// The plan for people, a line each.
    QStringList Lines() const;
};

/// Maps the old file's tables and columns to those of a design that is open. Names are blind
/// to case. A table is found by its code, then by its label; a column by its code, then by its
/// property name, then by its label.
TImportPlan MakeImportPlan(TDBDFile &design, TJetFile &file);

/// The highest number in an old table Version; nothing where it is no such table or has no row.
std::optional<int> OldDatabaseVersion(TJetFile &file, const QString &table);

/// "CUSTOMER 客户资料"; a label that says the same is left out.
QString WithLabel(const QString &name, const QString &label);
/// "定长文本(14)".
QString JetTypeText(const TJetColumn &column);
/// "varchar(10)".
QString FieldTypeText(const TImportColumn &column);

} // namespace Korvane
