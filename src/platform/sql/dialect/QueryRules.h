// SPDX-License-Identifier: MIT
#pragma once

#include "platform/sql/dialect/SqlCursor.h"

namespace Korvane {

/// What an expression evidently is, as far as its tokens show.
enum class TSqlValueKind : quint8 { Unknown, Text, Number, Whole, Logic };

/// How an expression is built.
enum class TSqlForm : quint8 { Other, Name, Single, Bitwise, Join };

/// An expression in the statement. A call that is still open collects further operands, so that
/// a + b + c is one call of three arguments.
struct TSqlOperand
{
    int First = -1;
    int Last = -1;
    TSqlValueKind Kind = TSqlValueKind::Unknown;
    TSqlForm Form = TSqlForm::Other;
    QLatin1StringView OpenCall;
    int CallArguments = 0;

    bool IsValid() const { return First >= 0; }
    bool IsNumber() const { return Kind == TSqlValueKind::Number || Kind == TSqlValueKind::Whole; }
};

/// A table of a from clause.
struct TSqlSource
{
    TSqlNameChain Name; ///< without parts for a subquery
    int First = -1;
    int Last = -1;
    int Alias = -1;
    bool HasAs = false;
    bool IsCatalog = false;

    /// The token by which columns name the table.
    int Reference() const { return Alias >= 0 ? Alias : Name.Parts.last(); }
};

/// A condition of a join, without its word.
struct TSqlCondition
{
    int First = -1;
    int Last = -1;
};

struct TSqlSourceList
{
    int First = -1;
    int Last = -1;
    QList<TSqlSource> Tables;
    QList<TSqlCondition> Conditions; ///< behind "on"
    bool AreInner = true;            ///< joined by commas and inner joins alone

    bool IsOneTable() const { return Tables.size() == 1 && !Tables[0].Name.Parts.isEmpty() && !HasBrackets; }
    bool HasBrackets = false;
};

/// Rules for queries and expressions. Every function begins at the cursor and leaves it behind what
/// it understood.
class TQueryRules
{
public:
    explicit TQueryRules(TSqlCursor &cursor) : C(cursor) {}

    /// A whole select, with its unions and order.
    void Query();
    /// True where a select begins, also in brackets or behind "with".
    bool AtQuery() const;
    /// The tables behind "from", joins and their conditions.
    TSqlSourceList Sources();
    /// An expression; invalid, with the cursor left alone, where none begins.
    TSqlOperand Expression();
    /// Expressions between commas.
    void ExpressionList();
    /// The contents of a bracket: a query, or expressions.
    TSqlOperand Group();
    /// What no rule knows, up to the end of the statement or the token: passes unchanged, expressions
    /// in it excepted.
    void PassRest(int until);
    void PassRest() { PassRest(C.Edits.Size() - 1); }

    /// The table that the query writes into ("select … into"); its tokens are gone from the query.
    const QString &IntoTable() const { return FIntoTable; }

private:
    enum class TOperator : quint8;
    struct TPending
    {
        TOperator Kind;
        int Priority;
        int Token;
    };
    struct TStack;
    struct TBranch
    {
        int First = -1;
        int Last = -1;
        QString Limit;
        QList<int> TextItems; ///< literals that are columns
    };

    bool BeginsQuery(int token) const;
    bool HoldsQuery(int open) const;
    void CommonTables();
    TBranch Branch();
    TBranch Select();
    QString Top();
    void SelectItems(TBranch &branch);
    void IntoClause();
    void LimitBranch(const TBranch &branch);
    void QueryTail();
    void OrderItems();
    bool AtClause() const;

    void Source(TSqlSourceList &list);
    void JoinedSources(TSqlSourceList &list);
    void DropHints();
    bool AcceptJoin();

    bool AcceptPrefix(TStack &stack);
    /// True when a further operand must follow.
    bool AcceptOperator(TStack &stack);
    bool AcceptWordOperator(TStack &stack);
    void AcceptIn(TStack &stack);
    bool AcceptBetweenAnd(TStack &stack);
    void Push(TStack &stack, TOperator kind, int priority, int tokens = 1);
    void ReduceTo(TStack &stack, int priority);
    void Reduce(TStack &stack);
    TSqlOperand Combine(const TPending &pending, TSqlOperand &left, TSqlOperand &right);
    TSqlOperand Add(const TPending &pending, TSqlOperand &left, TSqlOperand &right);
    TSqlOperand Call(QLatin1StringView function, const TPending &pending, TSqlOperand &left,
                     TSqlOperand &right, TSqlValueKind kind, bool collects);
    void Compare(TSqlOperand &left, const TSqlOperand *right);
    void Finish(TSqlOperand &operand);
    void Wrap(const TSqlOperand &operand);

    TSqlOperand Primary();
    TSqlOperand SpecialWord();
    TSqlOperand CaseExpression();
    TSqlOperand NameOrCall();
    TSqlOperand FunctionCall(int first, int name);
    TSqlValueKind Conversion(int name, int close, bool isCast);
    TSqlValueKind PlainCall(int name, int close);
    int Window();
    TSqlOperand QueryArgument(int close);
    void DropColumnQualifiers(const TSqlNameChain &chain);

    TSqlCursor &C;
    QString FIntoTable;
    int FDepth = 0;
};

} // namespace Korvane
