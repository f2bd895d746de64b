// SPDX-License-Identifier: MIT
#include "platform/sql/dialect/SqlRewriter.h"
#include "platform/sql/dialect/SqlTokenizer.h"
#include "platform/sql/dialect/TableText.h"

#include <cstdio>
#include <cstdlib>

namespace {

void Require(bool holds, const char *what)
{
    if (holds)
        return;
    std::fprintf(stderr, "%s\n", what);
    std::abort();
}

/// The tokens and what stands between them are the text again.
void CheckTokens(const QString &text, Korvane::TSqlDialect dialect)
{
    QString joined;
    for (const Korvane::TSqlToken &token : Korvane::TokenizeSql(text, dialect)) {
        joined += token.Blanks;
        joined += token.Text;
    }
    Require(joined == text, "tokens lose text");
}

void CheckStatement(const QString &text, Korvane::TSqlDialect dialect)
{
    const auto result = Korvane::RewriteForSqlite(text, dialect);
    for (const Korvane::TRewrittenStep &step : result.Steps)
        Require(step.Change.has_value() != !step.Sql.isEmpty(), "a step is a statement or a change");
    Require(result.Command == Korvane::TServerCommand::None || result.Steps.isEmpty(),
            "a server command has no steps");
}

void CheckTable(const QString &text)
{
    const QString sql = Korvane::TTableText(text).ToSql();
    Require(Korvane::TTableText(sql).ToSql() == sql, "a table's text does not read the same again");
}

template <class Check> void OnlySqlErrors(Check check)
{
    try {
        check();
    } catch (const Korvane::ESqlError &) {
        // a text that the rules refuse
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, size_t size)
{
    const QString text = QString::fromUtf8(reinterpret_cast<const char *>(data), qsizetype(size));
    for (const auto dialect : {Korvane::TSqlDialect::Access, Korvane::TSqlDialect::MSSQL}) {
        OnlySqlErrors([&] { CheckTokens(text, dialect); });
        OnlySqlErrors([&] { CheckStatement(text, dialect); });
    }
    OnlySqlErrors([&] { CheckTable(text); });
    return 0;
}
