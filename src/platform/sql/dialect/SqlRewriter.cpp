// SPDX-License-Identifier: MIT
#include "platform/sql/dialect/SqlRewriter.h"

#include "platform/sql/dialect/CommandRules.h"
#include "platform/sql/dialect/LiteralRules.h"

using namespace Qt::StringLiterals;

namespace Korvane {

TRewrittenStatement RewriteForSqlite(const QString &statement, TSqlDialect dialect)
{
    TSqlCursor cursor(statement, dialect);
    RewriteLiterals(cursor);
    TCommandRules(cursor).Batch();
    return std::move(cursor.Result);
}

} // namespace Korvane
