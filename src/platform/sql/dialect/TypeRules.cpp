// SPDX-License-Identifier: MIT
#include "platform/sql/dialect/TypeRules.h"

#include <QHash>

using namespace Qt::StringLiterals;

namespace Korvane {

namespace {

struct TTypeRule
{
    QLatin1StringView Name;
    TSqlTypeClass Class;
    QLatin1StringView Engine; ///< empty: as written, with its size
    bool IsCounter = false;
};

/// NOTE: SQLite takes a column's affinity from the words of its type: "datetime" alone would be
/// numeric and turn '20240131' into a number.
constexpr TTypeRule Rules[] = {
    {"char"_L1, TSqlTypeClass::Text, {}},
    {"character"_L1, TSqlTypeClass::Text, {}},
    {"varchar"_L1, TSqlTypeClass::Text, {}},
    {"nchar"_L1, TSqlTypeClass::Text, {}},
    {"nvarchar"_L1, TSqlTypeClass::Text, {}},
    {"text"_L1, TSqlTypeClass::Text, {}},
    {"ntext"_L1, TSqlTypeClass::Text, {}},
    {"longtext"_L1, TSqlTypeClass::Text, {}},
    {"longchar"_L1, TSqlTypeClass::Text, {}},
    {"memo"_L1, TSqlTypeClass::Text, "memo text"_L1},
    {"note"_L1, TSqlTypeClass::Text, "memo text"_L1},
    {"xml"_L1, TSqlTypeClass::Text, "text"_L1},
    {"sysname"_L1, TSqlTypeClass::Text, "nvarchar(128)"_L1},
    {"string"_L1, TSqlTypeClass::Text, "text"_L1},
    {"alphanumeric"_L1, TSqlTypeClass::Text, "text"_L1},
    {"guid"_L1, TSqlTypeClass::Text, "char(38)"_L1},
    {"uniqueidentifier"_L1, TSqlTypeClass::Text, "char(36)"_L1},
    {"int"_L1, TSqlTypeClass::Whole, "int"_L1},
    {"integer"_L1, TSqlTypeClass::Whole, "int"_L1},
    {"long"_L1, TSqlTypeClass::Whole, "int"_L1},
    {"integer4"_L1, TSqlTypeClass::Whole, "int"_L1},
    {"smallint"_L1, TSqlTypeClass::Whole, "smallint"_L1},
    {"short"_L1, TSqlTypeClass::Whole, "smallint"_L1},
    {"integer2"_L1, TSqlTypeClass::Whole, "smallint"_L1},
    {"tinyint"_L1, TSqlTypeClass::Whole, "smallint"_L1},
    {"byte"_L1, TSqlTypeClass::Whole, "smallint"_L1},
    {"integer1"_L1, TSqlTypeClass::Whole, "smallint"_L1},
    {"bigint"_L1, TSqlTypeClass::Whole, "bigint"_L1},
    {"counter"_L1, TSqlTypeClass::Whole, "int"_L1, true},
    {"autoincrement"_L1, TSqlTypeClass::Whole, "int"_L1, true},
    {"decimal"_L1, TSqlTypeClass::Decimal, {}},
    {"dec"_L1, TSqlTypeClass::Decimal, "decimal"_L1},
    {"numeric"_L1, TSqlTypeClass::Decimal, "decimal"_L1},
    {"number"_L1, TSqlTypeClass::Float, "float"_L1},
    {"money"_L1, TSqlTypeClass::Decimal, "decimal(19, 4)"_L1},
    {"smallmoney"_L1, TSqlTypeClass::Decimal, "decimal(10, 4)"_L1},
    {"currency"_L1, TSqlTypeClass::Decimal, "decimal(19, 4)"_L1},
    {"float"_L1, TSqlTypeClass::Float, "float"_L1},
    {"float4"_L1, TSqlTypeClass::Float, "float"_L1},
    {"float8"_L1, TSqlTypeClass::Float, "float"_L1},
    {"double"_L1, TSqlTypeClass::Float, "float"_L1},
    {"real"_L1, TSqlTypeClass::Float, "float"_L1},
    {"single"_L1, TSqlTypeClass::Float, "float"_L1},
    {"bit"_L1, TSqlTypeClass::Flag, "char(1)"_L1},
    {"yesno"_L1, TSqlTypeClass::Flag, "char(1)"_L1},
    {"logical"_L1, TSqlTypeClass::Flag, "char(1)"_L1},
    {"boolean"_L1, TSqlTypeClass::Flag, "char(1)"_L1},
    {"datetime"_L1, TSqlTypeClass::Moment, "datetime text"_L1},
    {"datetime2"_L1, TSqlTypeClass::Moment, "datetime text"_L1},
    {"smalldatetime"_L1, TSqlTypeClass::Moment, "datetime text"_L1},
    {"date"_L1, TSqlTypeClass::Moment, "date text"_L1},
    {"time"_L1, TSqlTypeClass::Moment, "time text"_L1},
    {"image"_L1, TSqlTypeClass::Binary, "blob"_L1},
    {"binary"_L1, TSqlTypeClass::Binary, "blob"_L1},
    {"varbinary"_L1, TSqlTypeClass::Binary, "blob"_L1},
    {"longbinary"_L1, TSqlTypeClass::Binary, "blob"_L1},
    {"oleobject"_L1, TSqlTypeClass::Binary, "blob"_L1},
    {"general"_L1, TSqlTypeClass::Binary, "blob"_L1},
    {"timestamp"_L1, TSqlTypeClass::Binary, "blob"_L1},
    {"rowversion"_L1, TSqlTypeClass::Binary, "blob"_L1},
};

const TTypeRule *FindRule(const QString &name)
{
    static const QHash<QString, const TTypeRule *> rules = [] {
        QHash<QString, const TTypeRule *> result;
        for (const TTypeRule &rule : Rules)
            result.insert(rule.Name, &rule);
        return result;
    }();
    return rules.value(name.toLower());
}

/// The numbers of "(12, 2)"; empty for "(max)".
QList<int> SizeNumbers(const TSqlCursor &cursor, int open)
{
    QList<int> numbers;
    for (int i = open + 1; i < cursor.Edits.Match(open); ++i) {
        if (cursor.Edits[i].Kind == TSqlTokenKind::Number)
            numbers.append(cursor.Edits[i].Text.toInt());
        else if (!cursor.Edits[i].IsOperator(","_L1))
            return {};
    }
    return numbers;
}

bool TakesSize(const TTypeRule &rule)
{
    return rule.Engine.isEmpty() || rule.Engine == "decimal"_L1 || rule.Name == "string"_L1 ||
           rule.Name == "alphanumeric"_L1;
}

} // namespace

TSqlType ReadSqlType(TSqlCursor &cursor)
{
    TSqlType type;
    type.First = cursor.At;
    if (!cursor.Token().IsName())
        cursor.Fail();
    const QString name = SqlName(cursor.Token());
    const TTypeRule *rule = FindRule(name);
    cursor.Advance();
    if (!cursor.Accept("precision"_L1))
        cursor.Accept("varying"_L1);
    if (!rule && name.compare("sql_variant"_L1, Qt::CaseInsensitive) == 0)
        RefuseSql(u"SQL_VARIANT"_s);
    type.EngineName = !rule || rule->Engine.isEmpty() ? name : QString(rule->Engine);
    type.Class = rule ? rule->Class : TSqlTypeClass::Other;
    type.IsCounter = rule && rule->IsCounter;
    if (type.IsCounter) {
        type.Seed = ReadCounterSeed(cursor);
    } else if (cursor.IsOperator("("_L1)) {
        const int open = cursor.At;
        const QList<int> size = SizeNumbers(cursor, open);
        cursor.Advance(cursor.Edits.Match(open) - open + 1);
        if (size.isEmpty() && type.Class == TSqlTypeClass::Text)
            type.EngineName = u"text"_s;
        else if (!rule || TakesSize(*rule))
            type.EngineName += cursor.Edits.Written(open, cursor.At - 1);
        if (type.Class == TSqlTypeClass::Text)
            type.Length = size.value(0, -1);
        if (type.Class == TSqlTypeClass::Decimal)
            type.Scale = size.value(1, 0);
    }
    if (type.EngineName == "decimal(19, 4)"_L1 || type.EngineName == "decimal(10, 4)"_L1)
        type.Scale = 4;
    type.Last = cursor.At - 1;
    return type;
}

QString ReadCounterSeed(TSqlCursor &cursor)
{
    if (!cursor.IsOperator("("_L1))
        return {};
    const QList<int> numbers = SizeNumbers(cursor, cursor.At);
    if (numbers.isEmpty() || numbers.size() > 2 || numbers.value(1, 1) != 1)
        RefuseSql(u"IDENTITY"_s + cursor.Edits.Written(cursor.At, cursor.Edits.Match(cursor.At)));
    cursor.Advance(cursor.Edits.Match(cursor.At) - cursor.At + 1);
    return numbers[0] == 1 ? QString() : QString::number(numbers[0]);
}

} // namespace Korvane
