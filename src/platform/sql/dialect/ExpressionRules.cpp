// SPDX-License-Identifier: MIT
#include "platform/sql/dialect/SqlEngine.h"

#include <QVarLengthArray>

#include <span>

using namespace Qt::StringLiterals;

namespace Korvane {

enum class TQueryRules::TOperator : quint8 {
    Or,
    And,
    Not,
    Comparison,
    Is,
    Like,
    Escape,
    Between,
    BetweenAnd,
    Join,
    Add,
    Subtract,
    Bitwise,
    BitwiseXor,
    Modulo,
    WholeDivide,
    Multiply,
    Divide,
    Remainder,
    Sign,
    Power,
    Concat,
    Collate
};

/// Operands and operators that wait for their turn: operators are combined by priority without
/// recursion, so that a long expression takes linear time.
struct TQueryRules::TStack
{
    QVarLengthArray<TSqlOperand, 6> Operands;
    QVarLengthArray<TPending, 6> Operators;
};

namespace {

constexpr int MaxExpressionDepth = 1200;
/// SQLite takes at most 127 arguments.
constexpr int MaxCallArguments = 100;

/// How tightly an operator binds in its dialect; a larger number binds first.
enum TPriority {
    prOr = 1,
    prAnd,
    prNot,
    prCompare,
    prEscape,
    prJoin,
    prAdd,
    prModulo,
    prWholeDivide,
    prMultiply,
    prSign,
    prPower,
    prConcat,
    prCollate
};

bool IsFlagWord(const TSqlToken &token)
{
    return token.Is("true"_L1) || token.Is("false"_L1) || token.Is("yes"_L1) || token.Is("no"_L1);
}

bool IsTrueWord(const TSqlToken &token) { return token.Is("true"_L1) || token.Is("yes"_L1); }

} // namespace

TSqlOperand TQueryRules::Expression()
{
    if (++FDepth > MaxExpressionDepth)
        throw ESqlError(u"表达式嵌套过深"_s);
    TStack stack;
    bool isWhole = false;
    do {
        while (AcceptPrefix(stack))
            ;
        const TSqlOperand operand = Primary();
        isWhole = operand.IsValid();
        if (isWhole)
            stack.Operands.append(operand);
    } while (isWhole && AcceptOperator(stack));
    --FDepth;
    // An operator without its operand is left for the engine to report.
    while (!isWhole && !stack.Operators.isEmpty() &&
           (stack.Operands.isEmpty() || stack.Operators.back().Token > stack.Operands.back().Last))
        stack.Operators.removeLast();
    ReduceTo(stack, 0);
    if (stack.Operands.isEmpty())
        return {};
    TSqlOperand result = stack.Operands.back();
    Finish(result);
    return result;
}

void TQueryRules::Push(TStack &stack, TOperator kind, int priority, int tokens)
{
    stack.Operators.append({kind, priority, C.At});
    C.Advance(tokens);
}

bool TQueryRules::AcceptPrefix(TStack &stack)
{
    if (C.IsOperator("-"_L1) || C.IsOperator("+"_L1) || C.IsOperator("~"_L1)) {
        Push(stack, TOperator::Sign, prSign);
        return true;
    }
    if (C.Is("not"_L1)) {
        Push(stack, TOperator::Not, prNot);
        return true;
    }
    return false;
}

bool TQueryRules::AcceptOperator(TStack &stack)
{
    struct TSign
    {
        QLatin1StringView Text;
        TOperator Kind;
        int Priority;
    };
    static constexpr TSign Common[] = {{"="_L1, TOperator::Comparison, prCompare},
                                       {"<>"_L1, TOperator::Comparison, prCompare},
                                       {"!="_L1, TOperator::Comparison, prCompare},
                                       {"<"_L1, TOperator::Comparison, prCompare},
                                       {">"_L1, TOperator::Comparison, prCompare},
                                       {"<="_L1, TOperator::Comparison, prCompare},
                                       {">="_L1, TOperator::Comparison, prCompare},
                                       {"=="_L1, TOperator::Comparison, prCompare},
                                       {"+"_L1, TOperator::Add, prAdd},
                                       {"-"_L1, TOperator::Subtract, prAdd},
                                       {"*"_L1, TOperator::Multiply, prMultiply},
                                       {"/"_L1, TOperator::Divide, prMultiply},
                                       {"||"_L1, TOperator::Concat, prConcat},
                                       {"!<"_L1, TOperator::Comparison, prCompare},
                                       {"!>"_L1, TOperator::Comparison, prCompare}};
    static constexpr TSign Access[] = {{"&"_L1, TOperator::Join, prJoin},
                                       {"\\"_L1, TOperator::WholeDivide, prWholeDivide},
                                       {"^"_L1, TOperator::Power, prPower}};
    static constexpr TSign Mssql[] = {{"&"_L1, TOperator::Bitwise, prAdd},
                                      {"|"_L1, TOperator::Bitwise, prAdd},
                                      {"^"_L1, TOperator::BitwiseXor, prAdd},
                                      {"%"_L1, TOperator::Remainder, prMultiply}};
    while (C.Token().Kind == TSqlTokenKind::Word && C.Is("in"_L1, C.Is("not"_L1) ? 1 : 0) &&
           C.IsOperator("("_L1, C.Is("not"_L1) ? 2 : 1))
        AcceptIn(stack);
    if (C.Token().Kind == TSqlTokenKind::Word)
        return AcceptWordOperator(stack);
    if (C.Token().Kind != TSqlTokenKind::Operator)
        return false;
    const auto push = [&](std::span<const TSign> signs) {
        for (const TSign &sign : signs) {
            if (C.Token().Text == sign.Text) {
                ReduceTo(stack, sign.Priority);
                Push(stack, sign.Kind, sign.Priority);
                return true;
            }
        }
        return false;
    };
    if (C.IsOperator("*="_L1) || C.IsOperator("=*"_L1))
        RefuseSql(C.Token().Text.toString());
    if (C.IsOperator("!<"_L1) || C.IsOperator("!>"_L1))
        C.Edits.Replace(C.At, C.IsOperator("!<"_L1) ? u">="_s : u"<="_s);
    return push(Common) || (C.IsAccess() ? push(Access) : push(Mssql));
}

bool TQueryRules::AcceptWordOperator(TStack &stack)
{
    const int negated = C.Is("not"_L1) ? 1 : 0;
    const auto push = [&](TOperator kind, int priority, int tokens) {
        ReduceTo(stack, priority);
        Push(stack, kind, priority, tokens);
        return true;
    };
    if (C.Is("like"_L1, negated))
        return push(TOperator::Like, prCompare, 1 + negated);
    if (C.Is("between"_L1, negated))
        return push(TOperator::Between, prCompare, 1 + negated);
    if (negated)
        return false;
    if (C.Is("and"_L1))
        return AcceptBetweenAnd(stack) || push(TOperator::And, prAnd, 1);
    if (C.Is("or"_L1))
        return push(TOperator::Or, prOr, 1);
    if (C.Is("is"_L1))
        return push(TOperator::Is, prCompare, C.Is("not"_L1, 1) ? 2 : 1);
    if (C.Is("escape"_L1))
        return push(TOperator::Escape, prEscape, 1);
    if (C.Is("collate"_L1) && C.Token(1).IsName()) {
        const QString name = SqlName(C.Token(1)).toLower();
        if (name != "nocase"_L1 && name != "binary"_L1 && name != "rtrim"_L1) {
            const bool isExact = name.contains("_cs"_L1) || name.contains("_bin"_L1);
            C.Edits.Replace(C.At + 1, isExact ? u"binary"_s : u"nocase"_s);
        }
        return push(TOperator::Collate, prCollate, 1);
    }
    if (!C.IsAccess())
        return false;
    if (C.Is("mod"_L1))
        return push(TOperator::Modulo, prModulo, 1);
    if (C.IsAnyOf({"xor"_L1, "eqv"_L1, "imp"_L1}))
        RefuseSql(C.Token().Text.toString().toUpper());
    return false;
}

void TQueryRules::AcceptIn(TStack &stack)
{
    ReduceTo(stack, prCompare);
    C.Advance(C.Is("not"_L1) ? 2 : 1);
    TSqlOperand &left = stack.Operands.back();
    Finish(left);
    Compare(left, nullptr);
    const TSqlOperand group = Group();
    left = {left.First, group.Last, TSqlValueKind::Logic, TSqlForm::Other, {}, 0};
}

/// The "and" of "between a and b" is no operator of its own.
bool TQueryRules::AcceptBetweenAnd(TStack &stack)
{
    ReduceTo(stack, prCompare + 1);
    if (stack.Operators.isEmpty() || stack.Operators.back().Kind != TOperator::Between)
        return false;
    stack.Operators.back().Kind = TOperator::BetweenAnd;
    C.Advance();
    return true;
}

void TQueryRules::ReduceTo(TStack &stack, int priority)
{
    while (!stack.Operators.isEmpty() && stack.Operators.back().Priority >= priority)
        Reduce(stack);
}

void TQueryRules::Reduce(TStack &stack)
{
    const TPending pending = stack.Operators.back();
    stack.Operators.removeLast();
    const bool isPrefix = pending.Kind == TOperator::Sign || pending.Kind == TOperator::Not;
    const int needed = isPrefix ? 1 : pending.Kind == TOperator::BetweenAnd ? 3 : 2;
    if (stack.Operands.size() < needed)
        return;
    TSqlOperand right = stack.Operands.back();
    stack.Operands.removeLast();
    if (isPrefix) {
        Finish(right);
        const bool isNot = pending.Kind == TOperator::Not;
        // NOTE: a sign does not change a number's kind; a whole number stays whole.
        right.Kind = isNot ? TSqlValueKind::Logic : right.IsNumber() ? right.Kind : TSqlValueKind::Number;
        right.Form = TSqlForm::Other;
        right.First = pending.Token;
        stack.Operands.append(right);
        return;
    }
    TSqlOperand left = stack.Operands.back();
    stack.Operands.removeLast();
    if (pending.Kind == TOperator::BetweenAnd) {
        Finish(left);
        Finish(right);
        TSqlOperand &value = stack.Operands.back();
        Finish(value);
        Compare(value, &left);
        value = {value.First, right.Last, TSqlValueKind::Logic, TSqlForm::Other, {}, 0};
        return;
    }
    stack.Operands.append(Combine(pending, left, right));
}

TSqlOperand TQueryRules::Combine(const TPending &pending, TSqlOperand &left, TSqlOperand &right)
{
    using enum TSqlValueKind;
    if (pending.Kind == TOperator::Add)
        return Add(pending, left, right);
    if (pending.Kind == TOperator::Join)
        return Call("korvane_join"_L1, pending, left, right, Text, true);
    Finish(left);
    Finish(right);
    TSqlOperand result{left.First, right.Last, Number, TSqlForm::Other, {}, 0};
    const bool isWhole = left.Kind == Whole && right.Kind == Whole;
    switch (pending.Kind) {
    case TOperator::Comparison:
        Compare(left, &right);
        result.Kind = Logic;
        break;
    case TOperator::Like:
        C.Engine.WriteLike(C, pending.Token, left, right);
        [[fallthrough]];
    case TOperator::Or:
    case TOperator::And:
    case TOperator::Is:
    case TOperator::Between:
        result.Kind = Logic;
        break;
    case TOperator::Escape:
        result.Kind = Text;
        break;
    case TOperator::Concat:
        result.Kind = Text;
        result.Form = TSqlForm::Join;
        break;
    case TOperator::Collate:
        C.Engine.WriteCollation(C, right.First);
        result.Kind = left.Kind;
        // A name with its own order needs no other one.
        result.Form = TSqlForm::Name;
        break;
    case TOperator::Power:
        return Call("korvane_power"_L1, pending, left, right, Number, false);
    case TOperator::Modulo:
        return Call("korvane_mod"_L1, pending, left, right, Whole, false);
    case TOperator::WholeDivide:
        return Call("korvane_div"_L1, pending, left, right, Whole, false);
    case TOperator::BitwiseXor:
        return Call("korvane_xor"_L1, pending, left, right, Whole, false);
    case TOperator::Bitwise:
        result.Kind = Whole;
        result.Form = TSqlForm::Bitwise;
        break;
    case TOperator::Divide:
        // Decimals that happen to be whole are kept as whole numbers: only where both sides are
        // evidently whole is the quotient of the MSSQL dialect whole, too.
        if (isWhole && !C.IsAccess())
            result.Kind = Whole;
        else if (!C.Engine.KnowsTypes())
            C.Edits.After(left.Last, u" * 1.0"_s);
        break;
    case TOperator::Subtract:
        if (left.Form == TSqlForm::Bitwise)
            Wrap(left);
        [[fallthrough]];
    default:
        result.Kind = isWhole ? Whole : Number;
    }
    return result;
}

/// a + b joins texts and adds numbers; where the tokens do not show which, the engine decides by
/// the values.
TSqlOperand TQueryRules::Add(const TPending &pending, TSqlOperand &left, TSqlOperand &right)
{
    using enum TSqlValueKind;
    const auto isJoinable = [](const TSqlOperand &operand) {
        return operand.OpenCall.isEmpty() && !operand.IsNumber() && operand.Kind != Logic &&
               (operand.Form == TSqlForm::Single || operand.Form == TSqlForm::Name ||
                operand.Form == TSqlForm::Join);
    };
    Finish(right);
    if ((left.Kind == Text || right.Kind == Text) && isJoinable(left) && isJoinable(right)) {
        C.Edits.Replace(pending.Token, u"||"_s);
        return {left.First, right.Last, Text, TSqlForm::Join, {}, 0};
    }
    if (left.Kind != Text && right.Kind != Text && (left.IsNumber() || right.IsNumber())) {
        Finish(left);
        if (left.Form == TSqlForm::Bitwise)
            Wrap(left);
        return {left.First,      right.Last, left.Kind == Whole && right.Kind == Whole ? Whole : Number,
                TSqlForm::Other, {},         0};
    }
    if (C.Engine.KnowsTypes()) {
        Finish(left);
        if (left.Form == TSqlForm::Bitwise)
            Wrap(left);
        return {left.First, right.Last, Unknown, TSqlForm::Other, {}, 0};
    }
    return Call("korvane_add"_L1, pending, left, right, Unknown, true);
}

TSqlOperand TQueryRules::Call(QLatin1StringView function, const TPending &pending, TSqlOperand &left,
                              TSqlOperand &right, TSqlValueKind kind, bool collects)
{
    if (left.OpenCall != function || !collects || left.CallArguments >= MaxCallArguments) {
        Finish(left);
        left.CallArguments = 1;
    }
    Finish(right);
    C.Edits.ReplaceTight(pending.Token, u","_s);
    TSqlOperand result{left.First, right.Last, kind, TSqlForm::Single, function, left.CallArguments + 1};
    if (!collects)
        Finish(result);
    return result;
}

void TQueryRules::Finish(TSqlOperand &operand)
{
    if (operand.OpenCall.isEmpty())
        return;
    C.Edits.Before(operand.First, operand.OpenCall + u'(');
    C.Edits.After(operand.Last, u")"_s);
    operand.OpenCall = {};
}

void TQueryRules::Wrap(const TSqlOperand &operand)
{
    C.Edits.Before(operand.First, u"("_s);
    C.Edits.After(operand.Last, u")"_s);
}

/// Columns bring their own order, which is blind to the case of letters. Texts that are compared
/// with each other get it here.
void TQueryRules::Compare(TSqlOperand &left, const TSqlOperand *right)
{
    const auto isName = [](const TSqlOperand *operand) { return operand && operand->Form == TSqlForm::Name; };
    if (right && left.Kind == TSqlValueKind::Logic && IsFlagWord(C.Edits[right->Last]))
        return C.Edits.Replace(right->Last, IsTrueWord(C.Edits[right->Last]) ? u"1"_s : u"0"_s);
    const bool isText = left.Kind == TSqlValueKind::Text || (right && right->Kind == TSqlValueKind::Text);
    if (!isText || isName(&left) || isName(right))
        return;
    // Where values have types, what the text is compared with may be another thing than a text, unless
    // the tokens show it.
    const bool isLiteral = left.First == left.Last && C.Edits[left.First].Kind == TSqlTokenKind::Text;
    const bool isEvident =
        left.Kind == TSqlValueKind::Text && (!isLiteral || !right || right->Kind == TSqlValueKind::Text);
    if (C.Engine.KnowsTypes() && !isEvident)
        return;
    if (left.Form != TSqlForm::Single)
        Wrap(left);
    C.Edits.After(left.Last, u" collate nocase"_s);
}

TSqlOperand TQueryRules::Primary()
{
    using enum TSqlTokenKind;
    const int at = C.At;
    const auto single = [&](TSqlValueKind kind) {
        C.Advance();
        return TSqlOperand{at, at, kind, TSqlForm::Single, {}, 0};
    };
    switch (C.Token().Kind) {
    case Text:
    case Date:
        return single(TSqlValueKind::Text);
    case Parameter:
        return single(TSqlValueKind::Unknown);
    case Number: {
        const QStringView text = C.Token().Text;
        const bool isWhole =
            std::all_of(text.begin(), text.end(), [](QChar c) { return c >= u'0' && c <= u'9'; });
        return single(isWhole ? TSqlValueKind::Whole : TSqlValueKind::Number);
    }
    case Operator:
        return C.IsOperator("("_L1) ? Group() : TSqlOperand();
    case Word: {
        const TSqlOperand special = SpecialWord();
        if (special.IsValid() || C.Token().IsReserved)
            return special;
        return NameOrCall();
    }
    case BracketName:
    case QuotedName:
        return NameOrCall();
    case End:
        break;
    }
    return {};
}

TSqlOperand TQueryRules::SpecialWord()
{
    using enum TSqlValueKind;
    const int at = C.At;
    const auto single = [&](TSqlValueKind kind) {
        C.Advance();
        return TSqlOperand{at, at, kind, TSqlForm::Single, {}, 0};
    };
    if (C.IsOperator("."_L1, 1))
        return {};
    if (C.IsOperator("("_L1, 1)) {
        if (C.Is("exists"_L1)) {
            C.Advance();
            return {at, Group().Last, Logic, TSqlForm::Single, {}, 0};
        }
        if (C.IsAnyOf({"any"_L1, "some"_L1, "all"_L1}) && HoldsQuery(at + 1))
            RefuseSql(C.Token().Text.toString().toUpper());
        return C.IsAnyOf({"left"_L1, "right"_L1, "asc"_L1}) ? FunctionCall(at, at) : TSqlOperand();
    }
    if (C.Is("null"_L1))
        return single(Unknown);
    if (C.Is("case"_L1))
        return CaseExpression();
    if (!C.IsAccess()) {
        if (!C.Is("current_timestamp"_L1))
            return {};
        return single(C.Engine.WriteClock(C, at));
    }
    // Yes and No are also good names for columns: they are flags only behind a comparison.
    const bool isFlag = C.IsAnyOf({"true"_L1, "false"_L1}) ||
                        (IsFlagWord(C.Token()) && at > 0 &&
                         (C.Edits[at - 1].IsOperator("="_L1) || C.Edits[at - 1].IsOperator("<>"_L1)));
    if (!isFlag)
        return {};
    C.Edits.Replace(at, IsTrueWord(C.Token()) ? u"'Y'"_s : u"'N'"_s);
    return single(Text);
}

TSqlOperand TQueryRules::CaseExpression()
{
    const int first = C.At;
    C.Expect("case"_L1);
    if (!C.Is("when"_L1))
        Expression();
    TSqlValueKind kind = TSqlValueKind::Unknown;
    for (bool isFirst = true; C.Accept("when"_L1); isFirst = false) {
        Expression();
        C.Expect("then"_L1);
        const TSqlOperand result = Expression();
        kind = isFirst || kind == result.Kind ? result.Kind : TSqlValueKind::Unknown;
    }
    if (C.Accept("else"_L1))
        Expression();
    C.Expect("end"_L1);
    return {first, C.At - 1, kind, TSqlForm::Single, {}, 0};
}

TSqlOperand TQueryRules::NameOrCall()
{
    const TSqlNameChain chain = C.NameChain();
    if (C.IsOperator("("_L1) && !chain.EndsWithStar && C.Edits[chain.Last].Kind == TSqlTokenKind::Word) {
        if (chain.First < chain.Last) {
            C.Edits.Replace(chain.First, QString());
            C.Edits.Remove(chain.First + 1, chain.Last - 1);
        }
        return FunctionCall(chain.First, chain.Last);
    }
    if (!C.IsAccess())
        DropColumnQualifiers(chain);
    return {chain.First, chain.Last, TSqlValueKind::Unknown, TSqlForm::Name, {}, 0};
}

/// dbo.T.COLUMN, a.dbo.T.COLUMN and a..T.COLUMN become T.COLUMN.
void TQueryRules::DropColumnQualifiers(const TSqlNameChain &chain)
{
    const int keep = chain.EndsWithStar ? 1 : 2;
    if (chain.Parts.size() <= keep)
        return;
    const int table = chain.Parts[chain.Parts.size() - keep];
    if (table < 0)
        return;
    C.Edits.Replace(chain.First, QString());
    C.Edits.Remove(chain.First + 1, table - 1);
}

} // namespace Korvane
