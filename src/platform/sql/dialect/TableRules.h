// SPDX-License-Identifier: MIT
#pragma once

#include "platform/sql/dialect/QueryRules.h"
#include "platform/sql/dialect/TypeRules.h"

namespace Korvane {

/// Rules for create table and alter table. Each adds its steps. What the virtual functions do is
/// SQLite's way.
class TTableRules
{
public:
    explicit TTableRules(TSqlCursor &cursor) : C(cursor), FQuery(cursor) {}
    virtual ~TTableRules() = default;

    /// Behind "create"; first is the token of that word.
    void CreateTable(int first);
    /// Behind "alter table".
    void AlterTable();

protected:
    struct TTable
    {
        QString Text; ///< as the engine is to read it
        QString Name; ///< without quotes, database and owner
    };
    struct TColumn
    {
        int First = -1; ///< the name, or the type of a column that is altered
        int Last = -1;
        int Name = -1;
        TSqlType Type;
        int Key = -1;     ///< the word "key" of an inline primary key
        int NotNull = -1; ///< the word "not"
        bool HasNull = false;
        bool HasDefault = false;
        bool IsConstantDefault = true;
        int DefaultFirst = -1; ///< behind the word "default"; -1 without one
        int DefaultLast = -1;
        QString DefaultName; ///< of the constraint that is the default
        bool IsIdentity = false;
        bool IsExact = false;    ///< texts are compared by their exact letters
        bool NeedsTable = false; ///< SQLite cannot add such a column to a table that is there
        QString Seed;
    };
    struct TConstraint
    {
        int First = -1;
        int Last = -1;
        QString Name;
        QList<int> KeyColumns;    ///< of a primary key
        int DefaultColumn = -1;   ///< of "default x for COLUMN"
        bool IsUnchecked = false; ///< rows that are there need not keep it
    };

    /// The type of a column has been read.
    virtual void WriteType(const TColumn &column);
    /// The order of a column's texts has been read.
    virtual void WriteExactOrder(const TColumn &column);
    /// All of a column has been read.
    virtual void EndColumn(TColumn &) {}
    /// A column that the engine is to compute begins.
    virtual void ComputedColumn() {}
    /// The clock as a column's default; empty for a name that is none.
    virtual QString ClockDefault(const TSqlToken &name) const;
    virtual void WriteIdentity(const TTable &table, TColumn &column, const QList<int> &keys,
                               QStringList &furtherSteps);
    /// What a table or column needs beside its own statement.
    virtual void FurtherSteps(const TTable &, const TColumn &, QStringList &) {}
    virtual void AddColumn(const TTable &table);
    virtual void AddConstraint(const TTable &table, const TConstraint &constraint);
    /// A column gets another type, options or default; a definition without a first token drops the
    /// default.
    virtual void ChangeColumn(const TTable &table, int name, const TColumn &definition);
    virtual void DropItem(const TTable &table, const QString &name, bool isColumn);

    TColumn ReadColumn(bool hasName);
    bool IsKey(const TColumn &column, const QList<int> &keys) const;

    TSqlCursor &C;
    TQueryRules FQuery;

private:
    bool ReadColumnOption(TColumn &column);
    bool AtConstraint() const;
    TConstraint ReadConstraint();
    void ReadKey(TConstraint *constraint);
    void ReadReferences();
    void DropStorage();
    bool AtOptionEnd() const;

    void ReadDefault(TColumn &column);
    int DefaultEnd() const;
    bool WriteClockDefault(int first, int last);
    QString FlagDefault(int token) const;

    void SetKeysNotNull(const QList<TColumn> &columns, const QList<int> &keys);

    void AddItems(const TTable &table, bool isUnchecked);
    void AlterColumn(const TTable &table);
    void DropItems(const TTable &table);
};

} // namespace Korvane
