// SPDX-License-Identifier: MIT
#include "platform/sql/postgres/PostgresRewriter.h"

#include "platform/sql/postgres/PostgresCommandRules.h"
#include "platform/sql/postgres/PostgresLiterals.h"

using namespace Qt::StringLiterals;

namespace Korvane {

namespace {

/// The text behind blanks and comments.
QByteArrayView BehindBlanks(QByteArrayView sql)
{
    for (;;) {
        sql = sql.trimmed();
        const bool isLine = sql.startsWith("--");
        if (!isLine && !sql.startsWith("/*"))
            return sql;
        const qsizetype end = sql.indexOf(isLine ? "\n" : "*/", 2);
        sql = end < 0 ? QByteArrayView() : sql.sliced(end + (isLine ? 1 : 2));
    }
}

TPostgresStepKind KindOf(QByteArrayView sql)
{
    struct TKind
    {
        QByteArrayView Word;
        TPostgresStepKind Kind;
    };
    static constexpr TKind Kinds[] = {
        {"select", TPostgresStepKind::Selects},     {"with", TPostgresStepKind::Selects},
        {"(", TPostgresStepKind::Selects},          {"insert", TPostgresStepKind::ChangesRows},
        {"update", TPostgresStepKind::ChangesRows}, {"delete", TPostgresStepKind::ChangesRows},
        {"begin", TPostgresStepKind::Begins},       {"commit", TPostgresStepKind::Commits},
        {"rollback", TPostgresStepKind::RollsBack}};
    const QByteArrayView start = BehindBlanks(sql);
    for (const TKind &kind : Kinds) {
        if (start.first(std::min(start.size(), kind.Word.size())).compare(kind.Word, Qt::CaseInsensitive) ==
            0)
            return kind.Kind;
    }
    return TPostgresStepKind::Defines;
}

TPostgresStatement Rewritten(const QString &statement)
{
    TPostgresEngine engine;
    TSqlCursor cursor(statement, TSqlDialect::MSSQL, &engine);
    const bool readsRowCount = WritePostgresLiterals(cursor.Edits);
    TPostgresCommandRules(cursor, engine).Batch();
    TPostgresStatement result;
    for (TRewrittenStep &step : cursor.Result.Steps) {
        const auto kind = KindOf(step.Sql);
        const bool reads = readsRowCount && step.Sql.contains(QByteArrayView(PostgresRowCount));
        result.Steps.append({std::move(step.Sql), kind, reads});
    }
    result.WrittenNames = std::move(engine.WrittenNames);
    result.Command = cursor.Result.Command;
    result.CommandDatabase = cursor.Result.CommandDatabase;
    result.CommandFile = cursor.Result.CommandFile;
    return result;
}

} // namespace

TPostgresStatement RewriteForPostgres(const QString &statement)
{
    try {
        return Rewritten(statement);
    } catch (const ESqlRefused &refused) {
        throw ESqlError(u"PostgreSQL 不支持“%1”"_s.arg(refused.Construct));
    }
}

QByteArray RowCountSql(qint64 count)
{
    return "select set_config('korvane.rowcount', '" + QByteArray::number(count) + "', false)";
}

} // namespace Korvane
