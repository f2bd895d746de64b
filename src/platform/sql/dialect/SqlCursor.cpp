// SPDX-License-Identifier: MIT
#include "platform/sql/dialect/SqlCursor.h"

#include "platform/sql/dialect/SqlEngine.h"

using namespace Qt::StringLiterals;

namespace Korvane {

namespace {

/// Words that begin a statement and so end the one before them.
constexpr std::initializer_list<QLatin1StringView> StatementWords = {
    "select"_L1,   "insert"_L1,  "update"_L1,  "delete"_L1,    "create"_L1, "alter"_L1,   "drop"_L1,
    "truncate"_L1, "begin"_L1,   "commit"_L1,  "rollback"_L1,  "backup"_L1, "restore"_L1, "set"_L1,
    "exec"_L1,     "execute"_L1, "declare"_L1, "transform"_L1, "print"_L1,  "use"_L1,     "while"_L1,
    "grant"_L1,    "revoke"_L1,  "return"_L1,  "if"_L1};

constexpr std::initializer_list<QLatin1StringView> CatalogTables = {"sysobjects"_L1, "sysdatabases"_L1,
                                                                    "sysprocesses"_L1};

TSqlEngine &SqliteEngine()
{
    static TSqlEngine engine;
    return engine;
}

} // namespace

ESqlRefused::ESqlRefused(const QString &construct)
    : ESqlError(u"内嵌数据库引擎不支持“%1”"_s.arg(construct)), Construct(construct)
{
}

void RefuseSql(const QString &construct) { throw ESqlRefused(construct); }

TSqlCursor::TSqlCursor(QStringView text, TSqlDialect dialect, TSqlEngine *engine)
    : Dialect(dialect), Engine(engine ? *engine : SqliteEngine()), Edits(text, dialect)
{
}

bool TSqlCursor::IsAnyOf(std::initializer_list<QLatin1StringView> words, int ahead) const
{
    const TSqlToken &token = Token(ahead);
    return token.Kind == TSqlTokenKind::Word &&
           std::any_of(words.begin(), words.end(), [&](auto word) { return token.Is(word); });
}

bool TSqlCursor::Accept(QLatin1StringView word)
{
    if (!Is(word))
        return false;
    Advance();
    return true;
}

bool TSqlCursor::AcceptOperator(QLatin1StringView sign)
{
    if (!IsOperator(sign))
        return false;
    Advance();
    return true;
}

void TSqlCursor::Expect(QLatin1StringView word)
{
    if (!Accept(word))
        Fail();
}

void TSqlCursor::ExpectOperator(QLatin1StringView sign)
{
    if (!AcceptOperator(sign))
        Fail();
}

void TSqlCursor::Fail() const
{
    // The tokens follow each other in the text that they were cut from.
    const QStringView text(Edits[0].Blanks.data(), Token().Text.data());
    const QString place = SqlPlace(text, text.size());
    if (AtEnd())
        throw ESqlError(u"语句不完整（%1）"_s.arg(place));
    throw ESqlError(u"语句有语法错误：“%1”（%2）"_s.arg(Token().Text.left(40).toString(), place));
}

bool TSqlCursor::AtStatementEnd() const
{
    const TSqlToken &token = Token();
    return token.Kind == TSqlTokenKind::End || token.IsOperator(";"_L1) || token.IsOperator(")"_L1) ||
           (token.IsReserved && IsAnyOf(StatementWords));
}

void TSqlCursor::Drop(int count)
{
    const int first = At;
    Advance(count);
    Edits.Remove(first, At - 1);
}

bool TSqlCursor::DropWord(QLatin1StringView word)
{
    if (!Is(word))
        return false;
    Drop();
    return true;
}

bool TSqlCursor::DropGroup()
{
    if (!IsOperator("("_L1))
        return false;
    Drop(Edits.Match(At) - At + 1);
    return true;
}

TSqlNameChain TSqlCursor::NameChain()
{
    TSqlNameChain chain;
    chain.First = At;
    const auto isPoint = [&] { return IsOperator("."_L1) || (IsAccess() && IsOperator("!"_L1)); };
    for (;;) {
        // Behind a point any word is a name.
        if (Token().IsName() || (!chain.Parts.isEmpty() && Token().Kind == TSqlTokenKind::Word)) {
            chain.Parts.append(At);
            chain.Last = At;
            Engine.WriteName(*this, At);
            Advance();
        } else if (isPoint() && !chain.Parts.isEmpty()) {
            chain.Parts.append(-1);
        } else if (IsOperator("*"_L1) && !chain.Parts.isEmpty()) {
            chain.EndsWithStar = true;
            chain.Last = At;
            Advance();
            return chain;
        } else {
            Fail();
        }
        if (!isPoint())
            return chain;
        if (IsOperator("!"_L1))
            Edits.ReplaceTight(At, u"."_s);
        Advance();
    }
}

TSqlNameChain TSqlCursor::TableName()
{
    TSqlNameChain chain = NameChain();
    if (chain.EndsWithStar)
        Fail();
    if (!IsAccess())
        DropTableQualifiers(chain);
    return chain;
}

bool TSqlCursor::IsCatalogTable(int name) const
{
    const QString lower = SqlName(Edits[name]).toLower();
    return std::find(CatalogTables.begin(), CatalogTables.end(), lower) != CatalogTables.end();
}

void TSqlCursor::DropTableQualifiers(TSqlNameChain &chain)
{
    const int count = int(chain.Parts.size());
    if (count > 3)
        RefuseSql(u"链接服务器"_s);
    const int last = chain.Parts.last();
    const auto nameOf = [&](int part) {
        return chain.Parts[part] < 0 ? QString() : SqlName(Edits[chain.Parts[part]]).toLower();
    };
    if (IsCatalogTable(last)) {
        Result.CatalogTables.insert(SqlName(Edits[last]).toLower());
    } else if (count == 3) {
        // The database stays, without the owner between the points: a.dbo.T, a..T become a.T.
        const int owner = chain.Parts[1];
        Edits.Remove(owner < 0 ? last - 1 : owner, last - 1);
        chain.Parts.removeAt(1);
        Engine.WriteDatabaseName(*this, chain.First);
        return;
    } else if (count != 2 || nameOf(0) != "dbo"_L1) {
        return;
    }
    if (chain.First < last) {
        // NOTE: the first part keeps its blanks, since they stand before the table's name now.
        Edits.Replace(chain.First, QString());
        Edits.Remove(chain.First + 1, last - 1);
    }
    chain.Parts = {last};
}

int TSqlCursor::Name()
{
    if (!Token().IsName())
        Fail();
    Engine.WriteName(*this, At);
    Advance();
    return At - 1;
}

void TSqlCursor::NameList()
{
    const int close = Edits.Match(At);
    while (At < close) {
        if (Token().IsName())
            Engine.WriteName(*this, At);
        Advance();
    }
    Advance();
}

void TSqlCursor::AddStep(const QString &sql) { Result.Steps.append({sql.toUtf8(), std::nullopt}); }

void TSqlCursor::AddChange(TTableChange::TKind kind, const QString &table, const QString &column,
                           const QString &text)
{
    Result.Steps.append({QByteArray(), TTableChange{kind, table, column, text.trimmed().toUtf8()}});
}

} // namespace Korvane
