// SPDX-License-Identifier: MIT
#include "platform/sql/dialect/SqlEngine.h"

#include "platform/sql/dialect/FunctionRules.h"

using namespace Qt::StringLiterals;

namespace Korvane {

TSqlEngine::~TSqlEngine() = default;

QString TSqlEngine::AliasText(const TSqlCursor &cursor, int alias) const
{
    return cursor.Edits[alias].Text.toString();
}

TSqlValueKind TSqlEngine::WriteClock(TSqlCursor &cursor, int token)
{
    cursor.Edits.Replace(token, u"korvane_now()"_s);
    return TSqlValueKind::Text;
}

TSqlValueKind TSqlEngine::WriteCall(TSqlCursor &cursor, const TFunctionRule &rule, int name, int close,
                                    const QList<TSqlOperand> &arguments)
{
    TSqlEdits &edits = cursor.Edits;
    if (rule.Case == TFunctionCase::NullTest) {
        edits.Replace(name, u"("_s);
        edits.After(close, u" is null)"_s);
    } else if (!rule.Target.isEmpty()) {
        edits.Replace(name, rule.Target);
    }
    if (rule.Case == TFunctionCase::Default && arguments.size() == 1 && arguments[0].IsValid())
        edits.After(arguments[0].Last, u", ''"_s);
    if (edits[name].Is("iif"_L1) && arguments[1].Kind == arguments[2].Kind)
        return arguments[1].Kind;
    return rule.Kind;
}

const TFunctionRule *TSqlEngine::FindFunction(QStringView name, TSqlDialect dialect) const
{
    return FindFunctionRule(name, dialect);
}

TSqlConversion TSqlEngine::ConversionTo(const TSqlType &type, const QString &style) const
{
    const bool isDay = type.EngineName == "date text"_L1;
    switch (type.Class) {
    case TSqlTypeClass::Text: {
        QString arguments =
            type.Length >= 0 || !style.isEmpty() ? u", "_s + QString::number(type.Length) : QString();
        if (!style.isEmpty())
            arguments += u", "_s + style;
        return {u"korvane_text"_s, arguments, TSqlValueKind::Text, {}};
    }
    case TSqlTypeClass::Whole:
        return {u"korvane_truncated"_s, {}, TSqlValueKind::Whole, {}};
    case TSqlTypeClass::Decimal:
        return {u"korvane_decimal"_s,
                u", "_s + QString::number(std::max(type.Scale, 0)),
                TSqlValueKind::Number,
                {}};
    case TSqlTypeClass::Float:
        return {u"korvane_number"_s, {}, TSqlValueKind::Number, {}};
    case TSqlTypeClass::Flag:
        return {u"korvane_flag"_s, {}, TSqlValueKind::Text, {}};
    case TSqlTypeClass::Moment:
        return {isDay ? u"korvane_day"_s : u"korvane_moment"_s, {}, TSqlValueKind::Text, {}};
    case TSqlTypeClass::Binary:
        return {u"korvane_blob"_s, {}, TSqlValueKind::Unknown, {}};
    case TSqlTypeClass::Other:
        break;
    }
    RefuseSql(u"CONVERT "_s + type.EngineName.toUpper());
}

} // namespace Korvane
