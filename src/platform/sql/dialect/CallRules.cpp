// SPDX-License-Identifier: MIT
#include "platform/sql/dialect/FunctionRules.h"
#include "platform/sql/dialect/SqlEngine.h"

using namespace Qt::StringLiterals;

namespace Korvane {

TSqlOperand TQueryRules::FunctionCall(int first, int name)
{
    C.At = name + 1;
    const int open = C.At;
    const int close = C.Edits.Match(open);
    const TSqlToken &word = C.Edits[name];
    TSqlOperand call{first, close, TSqlValueKind::Unknown, TSqlForm::Single, {}, 0};
    C.Engine.WriteFunctionName(C, name);
    C.Advance();
    if (word.Is("cast"_L1) || (word.Is("convert"_L1) && !C.IsAccess()))
        call.Kind = Conversion(name, close, word.Is("cast"_L1));
    else
        call.Kind = PlainCall(name, close);
    C.At = close + 1;
    // Windowed functions are the engine's own.
    if (C.Is("over"_L1) && C.IsOperator("("_L1, 1)) {
        C.Advance();
        call.Last = Window();
    }
    return call;
}

/// (partition by A order by B …); gives the token of its end.
int TQueryRules::Window()
{
    const int close = C.Edits.Match(C.At);
    C.Advance();
    if (C.Is("partition"_L1) && C.Is("by"_L1, 1)) {
        C.Advance(2);
        ExpressionList();
    }
    if (C.Is("order"_L1) && C.Is("by"_L1, 1)) {
        C.Advance(2);
        OrderItems();
    }
    C.At = close + 1;
    return close;
}

/// cast(x as type) or convert(type, x, style).
TSqlValueKind TQueryRules::Conversion(int name, int close, bool isCast)
{
    TSqlOperand value;
    TSqlType type;
    QString style;
    if (isCast) {
        value = Expression();
        const int as = C.At;
        C.Expect("as"_L1);
        type = ReadSqlType(C);
        C.Edits.Remove(as, C.At - 1);
    } else {
        type = ReadSqlType(C);
        C.ExpectOperator(","_L1);
        C.Edits.Remove(type.First, C.At - 1);
        value = Expression();
        if (C.IsOperator(","_L1)) {
            const int comma = C.At;
            C.Advance();
            const TSqlOperand number = Expression();
            if (number.IsValid())
                style = C.Edits.Trimmed(number.First, number.Last);
            C.Edits.Remove(comma, C.At - 1);
        }
    }
    if (!value.IsValid() || C.At != close)
        C.Fail();
    const TSqlConversion conversion = C.Engine.ConversionTo(type, style);
    C.Edits.Replace(name, conversion.Function);
    C.Edits.After(value.Last, conversion.Arguments);
    if (!conversion.Suffix.isEmpty())
        C.Edits.After(close, conversion.Suffix);
    if (!isCast && !C.Edits[value.First].Blanks.isEmpty())
        C.Edits.TightenBefore(value.First);
    return conversion.Kind;
}

TSqlValueKind TQueryRules::PlainCall(int name, int close)
{
    const TSqlToken &word = C.Edits[name];
    const int open = name + 1;
    const TFunctionRule *rule = C.Engine.FindFunction(word.Text, C.Dialect);
    if (rule && rule->Case == TFunctionCase::Part && !C.IsAccess() && C.Token().Kind == TSqlTokenKind::Word)
        C.Edits.Replace(C.At, u'\'' + C.Token().Text.toString() + u'\'');
    int count = 0;
    QList<TSqlOperand> arguments;
    while (C.At < close) {
        const int before = C.At;
        C.Accept("distinct"_L1);
        C.AcceptOperator("*"_L1);
        arguments.append(HoldsQuery(open) && count == 0 ? QueryArgument(close) : Expression());
        ++count;
        while (C.At < close && !C.IsOperator(","_L1)) {
            // An order or a clause of the engine's own: passes.
            const int at = C.At;
            Expression();
            if (C.At == at)
                C.Advance();
        }
        C.AcceptOperator(","_L1);
        if (C.At == before)
            C.Advance();
    }
    if (!rule || (rule->Case == TFunctionCase::Clock && count > 0))
        return TSqlValueKind::Unknown;
    if (count < rule->MinArguments || count > rule->MaxArguments)
        throw ESqlError(u"函数“%1”的参数个数不正确"_s.arg(word.Text.toString().toUpper()));
    return C.Engine.WriteCall(C, *rule, name, close, arguments);
}

/// A query as a function's argument stands without brackets of its own: in(select …) is read
/// elsewhere, so only unknown functions come here.
TSqlOperand TQueryRules::QueryArgument(int close)
{
    const int first = C.At;
    Query();
    PassRest(close);
    return {first, std::max(first, C.At - 1), TSqlValueKind::Unknown, TSqlForm::Other, {}, 0};
}

} // namespace Korvane
