// SPDX-License-Identifier: MIT
#pragma once

#include "platform/sql/dialect/QueryRules.h"

namespace Korvane {

/// Rules for statements as a whole: each is handed to the rules for its kind, and those without an
/// equivalent are refused here. Adds the statement's steps. What the virtual functions do is
/// SQLite's way.
class TCommandRules
{
public:
    explicit TCommandRules(TSqlCursor &cursor) : C(cursor), FQuery(cursor) {}
    virtual ~TCommandRules() = default;

    /// All statements of the text.
    void Batch();

protected:
    virtual void Insert();
    virtual void Update();
    virtual void Delete();
    virtual void CreateTable(int first);
    virtual void AlterTable();
    /// The name of an index that belongs to a table, as the engine keeps it.
    virtual QString IndexName(const QString &table, const QString &index) const;
    /// The bracket of "create index" at the cursor.
    virtual void IndexColumns() { FQuery.Group(); }
    virtual void Truncate(const QString &table);

    TSqlCursor &C;
    TQueryRules FQuery;

private:
    void Statement();
    void Select();
    void Create();
    void CreateIndex(int first);
    void CreateView(int first);
    void Drop();
    void DropIndex();
    void Begin();
    void EndTransaction(QLatin1StringView engine);
    void Set();
    void DatabaseCommand(TServerCommand command, QLatin1StringView fileWord);
    [[noreturn]] void Refuse();
};

} // namespace Korvane
