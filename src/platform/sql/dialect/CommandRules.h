// SPDX-License-Identifier: MIT
#pragma once

#include "platform/sql/dialect/QueryRules.h"

namespace Korvane {

/// Rules for statements as a whole: each is handed to the rules for its kind, and those without an
/// equivalent are refused here. Adds the statement's steps.
class TCommandRules
{
public:
    explicit TCommandRules(TSqlCursor &cursor) : C(cursor), FQuery(cursor) {}

    /// The statement at the cursor.
    void Statement();

private:
    void Select();
    void Create();
    void CreateIndex(int first);
    void CreateView(int first);
    void Drop();
    void DropIndex();
    void Truncate();
    void Begin();
    void EndTransaction(QLatin1StringView engine);
    void Set();
    void DatabaseCommand(TServerCommand command, QLatin1StringView fileWord);
    [[noreturn]] void Refuse();

    TSqlCursor &C;
    TQueryRules FQuery;
};

} // namespace Korvane
