// SPDX-License-Identifier: MIT
#include "platform/sql/dialect/SqlEngine.h"

using namespace Qt::StringLiterals;

namespace Korvane {

namespace {

constexpr std::initializer_list<QLatin1StringView> SetOperators = {"union"_L1, "except"_L1, "intersect"_L1};
/// What may stand in brackets behind a table in the MSSQL dialect: hints about locks.
constexpr std::initializer_list<QLatin1StringView> TableHints = {
    "nolock"_L1,   "readuncommitted"_L1, "readcommitted"_L1, "repeatableread"_L1, "serializable"_L1,
    "holdlock"_L1, "rowlock"_L1,         "paglock"_L1,       "tablock"_L1,        "tablockx"_L1,
    "updlock"_L1,  "xlock"_L1,           "readpast"_L1,      "index"_L1,          "noexpand"_L1};

} // namespace

bool TQueryRules::AtQuery() const { return BeginsQuery(C.At); }

bool TQueryRules::BeginsQuery(int token) const
{
    const TSqlEdits &edits = C.Edits;
    if (edits[token].IsOperator("("_L1))
        return HoldsQuery(token);
    return edits[token].Is("select"_L1) || (edits[token].Is("with"_L1) && edits[token + 1].IsName());
}

bool TQueryRules::HoldsQuery(int open) const
{
    const TSqlEdits &edits = C.Edits;
    // A bracket inside belongs to a query only if a union or the end follows it: otherwise it is a
    // joined table or an operand.
    while (edits[open + 1].IsOperator("("_L1)) {
        const TSqlToken &behind = edits[edits.Match(open + 1) + 1];
        if (!behind.IsOperator(")"_L1) && std::none_of(SetOperators.begin(), SetOperators.end(),
                                                       [&](auto word) { return behind.Is(word); }))
            return false;
        ++open;
    }
    return BeginsQuery(open + 1);
}

void TQueryRules::Query()
{
    CommonTables();
    TBranch branch = Branch();
    const bool isUnion = C.IsAnyOf(SetOperators);
    while (C.IsAnyOf(SetOperators)) {
        LimitBranch(branch);
        C.Advance();
        if (!C.Accept("all"_L1))
            C.DropWord("distinct"_L1);
        if (!AtQuery())
            C.Fail();
        branch = Branch();
    }
    if (isUnion)
        LimitBranch(branch);
    else
        C.Engine.WriteTextItems(C, branch.TextItems);
    QueryTail();
    if (!isUnion && !branch.Limit.isEmpty())
        C.Edits.After(C.At - 1, branch.Limit);
}

/// with A(X) as (select …), B as (…)
void TQueryRules::CommonTables()
{
    if (!C.Accept("with"_L1))
        return;
    do {
        C.Name();
        if (C.IsOperator("("_L1))
            C.NameList();
        C.Expect("as"_L1);
        if (!C.IsOperator("("_L1))
            C.Fail();
        Group();
    } while (C.AcceptOperator(","_L1));
}

TQueryRules::TBranch TQueryRules::Branch()
{
    if (!C.IsOperator("("_L1))
        return Select();
    // SQLite knows no select in brackets as the branch of a union.
    const int first = C.At;
    if (!C.Engine.TakesBracketBranches())
        C.Edits.Before(first, u"select * from "_s);
    Group();
    return {first, C.At - 1, {}, {}};
}

void TQueryRules::LimitBranch(const TBranch &branch)
{
    if (branch.Limit.isEmpty())
        return;
    C.Edits.Before(branch.First, C.Engine.TakesBracketBranches() ? u"("_s : u"select * from ("_s);
    C.Edits.After(branch.Last, branch.Limit + u')');
}

TQueryRules::TBranch TQueryRules::Select()
{
    TBranch branch;
    branch.First = C.At;
    C.Expect("select"_L1);
    if (!C.Accept("distinct"_L1) && !C.Accept("all"_L1))
        C.DropWord("distinctrow"_L1);
    branch.Limit = Top();
    SelectItems(branch);
    IntoClause();
    if (C.Accept("from"_L1))
        Sources();
    if (C.Accept("where"_L1))
        Expression();
    if (C.Is("group"_L1)) {
        C.Advance();
        C.Expect("by"_L1);
        ExpressionList();
        if (C.Is("with"_L1) && C.IsAnyOf({"rollup"_L1, "cube"_L1}, 1))
            RefuseSql(u"WITH "_s + C.Token(1).Text.toString().toUpper());
    }
    if (C.Accept("having"_L1))
        Expression();
    branch.Last = C.At - 1;
    return branch;
}

/// " limit n" for "top n", whose words are dropped.
QString TQueryRules::Top()
{
    if (!C.Is("top"_L1))
        return {};
    const int first = C.At;
    C.Advance();
    const int number = C.At;
    if (C.IsOperator("("_L1))
        Group();
    else if (C.Token().Kind == TSqlTokenKind::Number || C.Token().Kind == TSqlTokenKind::Parameter)
        C.Advance();
    else
        C.Fail();
    const QString limit = u" limit "_s + C.Edits.Trimmed(number, C.At - 1);
    if (C.Is("percent"_L1))
        RefuseSql(u"TOP n PERCENT"_s);
    if (C.Is("with"_L1) && C.Is("ties"_L1, 1))
        RefuseSql(u"TOP n WITH TIES"_s);
    C.Edits.Remove(first, C.At - 1);
    return limit;
}

bool TQueryRules::AtClause() const
{
    return C.AtStatementEnd() || C.IsAnyOf(SetOperators) ||
           C.IsAnyOf({"into"_L1, "from"_L1, "where"_L1, "group"_L1, "having"_L1, "order"_L1, "for"_L1,
                      "option"_L1});
}

void TQueryRules::SelectItems(TBranch &branch)
{
    do {
        int alias = -1;
        // MSSQL also writes the alias before the column: ALIAS=A+B.
        if (!C.IsAccess() && C.Token().IsName() && C.IsOperator("="_L1, 1)) {
            alias = C.At;
            C.Edits.Replace(alias, QString());
            C.Advance();
            C.Drop();
            C.Edits.TightenBefore(C.At);
        }
        const int start = C.At;
        TSqlOperand item;
        if (!C.AcceptOperator("*"_L1))
            item = Expression();
        if (alias >= 0 && item.IsValid())
            C.Edits.After(item.Last, u" as "_s + C.Engine.AliasText(C, alias));
        const bool hasAs = C.Accept("as"_L1);
        if (hasAs || (C.At > start && (C.Token().IsName() || C.Token().Kind == TSqlTokenKind::Text))) {
            alias = C.At;
            C.Advance();
        }
        C.Engine.WriteItem(C, item, alias);
        if (item.IsValid() && item.First == item.Last && C.Edits[item.First].Kind == TSqlTokenKind::Text)
            branch.TextItems.append(item.First);
        while (!AtClause() && !C.IsOperator(","_L1)) {
            const int before = C.At;
            Expression();
            if (C.At == before)
                C.Advance();
        }
    } while (C.AcceptOperator(","_L1));
}

void TQueryRules::IntoClause()
{
    if (!C.Is("into"_L1))
        return;
    const int first = C.At;
    C.Advance();
    const TSqlNameChain table = C.TableName();
    if (C.Is("in"_L1))
        RefuseSql(u"INTO … IN"_s);
    if (!FIntoTable.isEmpty())
        C.Fail();
    FIntoTable = C.Edits.Trimmed(table.First, table.Last);
    C.Edits.Remove(first, C.At - 1);
}

void TQueryRules::QueryTail()
{
    if (C.Is("order"_L1)) {
        C.Advance();
        C.Expect("by"_L1);
        OrderItems();
    }
    if (C.Is("for"_L1))
        RefuseSql(u"FOR "_s + C.Token(1).Text.toString().toUpper());
    if (C.Is("compute"_L1))
        RefuseSql(u"COMPUTE"_s);
    if (C.Is("fetch"_L1) || (C.Is("offset"_L1) && C.IsAnyOf({"rows"_L1, "row"_L1}, 2)))
        RefuseSql(u"OFFSET … FETCH"_s);
    if (C.Is("option"_L1) && C.IsOperator("("_L1, 1)) {
        C.Drop();
        C.DropGroup();
    }
    if (C.IsAccess() && C.Is("with"_L1) && C.Is("owneraccess"_L1, 1)) {
        C.Drop(2);
        C.DropWord("option"_L1);
    }
}

void TQueryRules::OrderItems()
{
    do {
        const bool isValid = Expression().IsValid();
        const bool isDown = !C.Accept("asc"_L1) && C.Accept("desc"_L1);
        if (isValid)
            C.Engine.WriteOrderItem(C, isDown);
    } while (C.AcceptOperator(","_L1));
}

TSqlSourceList TQueryRules::Sources()
{
    TSqlSourceList list;
    list.First = C.At;
    JoinedSources(list);
    list.Last = C.At - 1;
    return list;
}

void TQueryRules::JoinedSources(TSqlSourceList &list)
{
    Source(list);
    for (;;) {
        const bool isInner =
            C.IsOperator(","_L1) || C.IsAnyOf({"join"_L1, "inner"_L1, "cross"_L1, "loop"_L1, "hash"_L1});
        if (C.Accept("on"_L1)) {
            const int first = C.At;
            Expression();
            list.Conditions.append({first, C.At - 1});
        } else if (C.AcceptOperator(","_L1) || AcceptJoin()) {
            list.AreInner = list.AreInner && isInner;
            Source(list);
        } else {
            break;
        }
    }
    if (C.IsAnyOf({"pivot"_L1, "unpivot"_L1}))
        RefuseSql(C.Token().Text.toString().toUpper());
    if (C.Is("in"_L1))
        RefuseSql(u"FROM … IN"_s);
}

bool TQueryRules::AcceptJoin()
{
    int words = 0;
    while (C.IsAnyOf({"inner"_L1, "left"_L1, "right"_L1, "full"_L1, "cross"_L1, "outer"_L1}, words))
        ++words;
    if (C.Is("apply"_L1, words) && words > 0)
        RefuseSql(C.Edits.Written(C.At, C.At + words).toUpper());
    if (!C.IsAccess() && C.IsAnyOf({"loop"_L1, "hash"_L1, "merge"_L1}, words) && C.Is("join"_L1, words + 1)) {
        C.Edits.Remove(C.At + words, C.At + words);
        ++words;
    }
    if (!C.Is("join"_L1, words))
        return false;
    C.Advance(words + 1);
    return true;
}

void TQueryRules::Source(TSqlSourceList &list)
{
    TSqlSource source;
    source.First = C.At;
    if (C.IsOperator("("_L1)) {
        if (AtQuery()) {
            Group();
        } else {
            list.HasBrackets = true;
            const int close = C.Edits.Match(C.At);
            C.Advance();
            JoinedSources(list);
            PassRest(close);
            C.Advance();
            return;
        }
    } else {
        source.Name = C.TableName();
        source.IsCatalog = !C.IsAccess() && C.IsCatalogTable(source.Name.Parts.last());
    }
    DropHints();
    source.HasAs = C.Accept("as"_L1);
    if (source.HasAs || C.Token().IsName())
        source.Alias = C.Name();
    source.Last = C.At - 1;
    DropHints();
    if (source.IsCatalog)
        C.Engine.WriteCatalogTable(C, source);
    list.Tables.append(source);
}

void TQueryRules::DropHints()
{
    if (C.IsAccess())
        return;
    if (C.Is("with"_L1) && C.IsOperator("("_L1, 1)) {
        C.Drop();
        C.DropGroup();
    } else if (C.IsOperator("("_L1) && C.IsAnyOf(TableHints, 1)) {
        C.DropGroup();
    }
}

TSqlOperand TQueryRules::Group()
{
    const int open = C.At;
    const int close = C.Edits.Match(open);
    const bool isQuery = HoldsQuery(open);
    C.Advance();
    TSqlOperand inner;
    if (isQuery) {
        Query();
    } else {
        inner = Expression();
        if (C.At < close) {
            inner = {};
            if (C.AcceptOperator(","_L1))
                ExpressionList();
        }
    }
    PassRest(close);
    C.At = close + 1;
    return {open, close, inner.Kind, TSqlForm::Single, {}, 0};
}

void TQueryRules::ExpressionList()
{
    do
        Expression();
    while (C.AcceptOperator(","_L1));
}

void TQueryRules::PassRest(int until)
{
    while (C.At < until) {
        if (until == C.Edits.Size() - 1 && C.AtStatementEnd())
            return;
        const int before = C.At;
        Expression();
        if (C.At == before)
            C.Advance();
    }
}

} // namespace Korvane
