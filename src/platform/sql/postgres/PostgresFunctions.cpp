// SPDX-License-Identifier: MIT
// The dialect's functions in the engine's language. What has no equivalent there is a function of
// PostgresSetup.cpp.
#include "platform/sql/dialect/FunctionRules.h"
#include "platform/sql/postgres/PostgresEngine.h"
#include "platform/sql/postgres/PostgresNames.h"

#include <QHash>

using namespace Qt::StringLiterals;

namespace Korvane {

namespace {

enum class TCallCase : quint8 {
    Plain,
    Choice,  ///< iif: the target is not used
    Whole,   ///< the target stands for the call with its brackets
    DatePart ///< a function of one argument that is a part of a date, which the target names
};

constexpr auto Unknown = TSqlValueKind::Unknown;
constexpr auto Text = TSqlValueKind::Text;
constexpr auto Number = TSqlValueKind::Number;
constexpr auto Whole = TSqlValueKind::Whole;

/// The masks tell by bits which arguments are made texts, moments or numbers first.
struct TRule : TFunctionRule
{
    TCallCase Case = TCallCase::Plain;
    quint8 Texts = 0;
    quint8 Moments = 0;
    quint8 Numbers = 0;
};

constexpr quint8 Mssql = 2;

constexpr TRule Plain(QLatin1StringView name, qint8 least, qint8 most, QLatin1StringView target,
                      TSqlValueKind kind, quint8 texts = 0, quint8 numbers = 0)
{
    return {
        {name, Mssql, least, most, target, kind, TFunctionCase::Plain}, TCallCase::Plain, texts, 0, numbers};
}

constexpr TRule Special(TCallCase special, QLatin1StringView name, qint8 count, QLatin1StringView target,
                        TSqlValueKind kind, quint8 moments = 0)
{
    return {{name, Mssql, count, count, target, kind, TFunctionCase::Plain}, special, 0, moments, 0};
}

constexpr TRule WithPart(QLatin1StringView name, qint8 count, QLatin1StringView target, TSqlValueKind kind,
                         quint8 moments)
{
    return {{name, Mssql, count, count, target, kind, TFunctionCase::Part}, TCallCase::Plain, 0, moments, 0};
}

constexpr TRule Rules[] = {
    Plain("left"_L1, 2, 2, "korvane_left"_L1, Text, 1),
    Plain("right"_L1, 2, 2, "korvane_right"_L1, Text, 1),
    Plain("len"_L1, 1, 1, "korvane_len"_L1, Whole, 1),
    Plain("substring"_L1, 3, 3, "korvane_mid"_L1, Text, 1),
    Plain("charindex"_L1, 2, 3, "korvane_charindex"_L1, Whole, 3),
    Plain("upper"_L1, 1, 1, "upper"_L1, Text, 1),
    Plain("lower"_L1, 1, 1, "lower"_L1, Text, 1),
    Plain("trim"_L1, 1, 1, "btrim"_L1, Text, 1),
    Plain("ltrim"_L1, 1, 1, "ltrim"_L1, Text, 1),
    Plain("rtrim"_L1, 1, 1, "rtrim"_L1, Text, 1),
    Plain("replace"_L1, 3, 3, "korvane_replace"_L1, Text, 7),
    Plain("space"_L1, 1, 1, "korvane_space"_L1, Text),
    Plain("replicate"_L1, 2, 2, "korvane_replicate"_L1, Text, 1),
    Plain("char"_L1, 1, 1, "chr"_L1, Text),
    Plain("nchar"_L1, 1, 1, "chr"_L1, Text),
    Plain("ascii"_L1, 1, 1, "ascii"_L1, Whole, 1),
    Plain("unicode"_L1, 1, 1, "ascii"_L1, Whole, 1),

    Plain("isnull"_L1, 2, 2, "coalesce"_L1, Unknown),
    Special(TCallCase::Choice, "iif"_L1, 3, {}, Unknown),

    Plain("str"_L1, 1, 3, "korvane_str"_L1, Text, 0, 1),
    Plain("abs"_L1, 1, 1, "abs"_L1, Number),
    Plain("round"_L1, 1, 3, "korvane_round"_L1, Number, 0, 1),
    Plain("power"_L1, 2, 2, "power"_L1, Number),
    Plain("isnumeric"_L1, 1, 1, "korvane_isnumeric"_L1, Whole, 1),

    Special(TCallCase::Whole, "getdate"_L1, 0, "cast(clock_timestamp() as timestamp(3))"_L1, Unknown),
    Special(TCallCase::Whole, "getutcdate"_L1, 0,
            "cast(clock_timestamp() at time zone 'UTC' as timestamp(3))"_L1, Unknown),
    Special(TCallCase::Whole, "newid"_L1, 0, "upper(cast(gen_random_uuid() as text))"_L1, Text),
    Special(TCallCase::Whole, "scope_identity"_L1, 0, "korvane_identity()"_L1, Whole),
    Special(TCallCase::DatePart, "year"_L1, 1, "year"_L1, Whole, 1),
    Special(TCallCase::DatePart, "month"_L1, 1, "month"_L1, Whole, 1),
    Special(TCallCase::DatePart, "day"_L1, 1, "day"_L1, Whole, 1),
    WithPart("datepart"_L1, 2, "korvane_datepart"_L1, Whole, 2),
    WithPart("dateadd"_L1, 3, "korvane_dateadd"_L1, Unknown, 0),
    WithPart("datediff"_L1, 3, "korvane_datediff"_L1, Whole, 6),

    Plain("count"_L1, 1, 1, {}, Whole),
    Plain("sum"_L1, 1, 1, {}, Number),
    Plain("avg"_L1, 1, 1, {}, Number),
};

/// iif(a, b, c) becomes case when a then b else c end.
TSqlValueKind WriteChoice(TSqlEdits &edits, int name, int close, const QList<TSqlOperand> &arguments)
{
    if (!arguments[1].IsValid() || !arguments[2].IsValid())
        throw ESqlError(u"函数“IIF”的参数个数不正确"_s);
    edits.Replace(name, u"case when "_s);
    edits.ReplaceTight(name + 1, QString());
    edits.ReplaceTight(arguments[1].First - 1, u" then "_s);
    edits.ReplaceTight(arguments[2].First - 1, u" else "_s);
    edits.ReplaceTight(close, u" end"_s);
    for (const TSqlOperand &argument : arguments)
        edits.TightenBefore(argument.First);
    return arguments[1].Kind == arguments[2].Kind ? arguments[1].Kind : Unknown;
}

void WriteArgument(TSqlEdits &edits, const TSqlOperand &argument, const TRule &rule, quint8 bit)
{
    if (!argument.IsValid())
        return;
    if (rule.Texts & bit)
        CastToText(edits, argument);
    if (rule.Moments & bit) {
        edits.Before(argument.First, u"korvane_moment("_s);
        edits.After(argument.Last, u")"_s);
    }
    if ((rule.Numbers & bit) && argument.Kind != Whole) {
        edits.Before(argument.First, u"cast("_s);
        edits.After(argument.Last, u" as numeric)"_s);
    }
}

} // namespace

const TFunctionRule *TPostgresEngine::FindFunction(QStringView name, TSqlDialect) const
{
    static const QHash<QString, const TRule *> rules = [] {
        QHash<QString, const TRule *> result;
        for (const TRule &rule : Rules)
            result.insert(rule.Name, &rule);
        return result;
    }();
    return rules.value(name.toString().toLower());
}

TSqlValueKind TPostgresEngine::WriteCall(TSqlCursor &cursor, const TFunctionRule &found, int name, int close,
                                         const QList<TSqlOperand> &arguments)
{
    const auto &rule = static_cast<const TRule &>(found);
    TSqlEdits &edits = cursor.Edits;
    if (rule.Case == TCallCase::Choice)
        return WriteChoice(edits, name, close, arguments);
    if (rule.Case == TCallCase::Whole) {
        edits.Replace(name, rule.Target);
        edits.Remove(name + 1, close);
        return rule.Kind;
    }
    for (qsizetype i = 0; i < arguments.size(); ++i)
        WriteArgument(edits, arguments[i], rule, quint8(1 << i));
    if (rule.Case == TCallCase::DatePart) {
        edits.Replace(name, u"korvane_datepart"_s);
        edits.After(name + 1, u'\'' + rule.Target + u"', "_s);
    } else if (!rule.Target.isEmpty()) {
        edits.Replace(name, rule.Target);
    }
    const bool hasPart = rule.TFunctionRule::Case == TFunctionCase::Part && arguments[0].IsValid();
    if (hasPart && edits[arguments[0].First].Kind == TSqlTokenKind::Word)
        edits.Replace(arguments[0].First, PostgresText(edits[arguments[0].First].Text.toString()));
    return rule.Kind;
}

} // namespace Korvane
