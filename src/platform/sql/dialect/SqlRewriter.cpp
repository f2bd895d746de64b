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
    TCommandRules rules(cursor);
    bool endsOpen = false;
    while (!cursor.AtEnd()) {
        endsOpen = false;
        if (cursor.AcceptOperator(";"_L1))
            continue;
        const auto stepsBefore = cursor.Result.Steps.size();
        rules.Statement();
        // The next statement begins behind a ";" or with its first word.
        if (!cursor.AtStatementEnd() || cursor.IsOperator(")"_L1))
            cursor.Fail();
        endsOpen = cursor.AtEnd() && cursor.Result.Steps.size() > stepsBefore;
    }
    TRewrittenStatement &result = cursor.Result;
    if (result.Command != TServerCommand::None && !result.Steps.isEmpty())
        RefuseSql(u"一批中的 DATABASE 语句和其他语句"_s);
    // What stands behind the last statement stays with it.
    if (endsOpen && !result.Steps.last().Change)
        result.Steps.last().Sql += cursor.Token().Blanks.toUtf8();
    return std::move(cursor.Result);
}

} // namespace Korvane
