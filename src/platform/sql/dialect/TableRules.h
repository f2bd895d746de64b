// SPDX-License-Identifier: MIT
#pragma once

#include "platform/sql/dialect/QueryRules.h"
#include "platform/sql/dialect/TypeRules.h"

namespace Korvane {

/// Rules for create table and alter table. Each adds its steps.
class TTableRules
{
public:
    explicit TTableRules(TSqlCursor &cursor) : C(cursor), FQuery(cursor) {}

    /// Behind "create"; first is the token of that word.
    void CreateTable(int first);
    /// Behind "alter table".
    void AlterTable();

private:
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
        bool IsIdentity = false;
        bool NeedsTable = false; ///< the engine cannot add such a column to a table that is there
        QString Seed;
    };
    struct TConstraint
    {
        int First = -1;
        int Last = -1;
        QString Name;
        QList<int> KeyColumns;  ///< of a primary key
        int DefaultColumn = -1; ///< of "default x for COLUMN"
    };

    TColumn ReadColumn(bool hasName);
    bool ReadColumnOption(TColumn &column);
    void WriteType(const TColumn &column);
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

    void NumberRows(const QString &tableText, const QString &table, const TColumn &column);
    void SetKeysNotNull(const QList<TColumn> &columns, const QList<int> &keys);
    bool IsKey(const TColumn &column, const QList<int> &keys) const;
    void WriteIdentity(const QString &tableText, const QString &table, TColumn &column,
                       const QList<int> &keys, QStringList &furtherSteps);

    void AddItems(const QString &tableText, const QString &table);
    void AddColumn(const QString &tableText, const QString &table);
    void AlterColumn(const QString &table);
    void DropItems(const QString &table);

    TSqlCursor &C;
    TQueryRules FQuery;
};

} // namespace Korvane
