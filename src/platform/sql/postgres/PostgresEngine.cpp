// SPDX-License-Identifier: MIT
#include "platform/sql/postgres/PostgresEngine.h"

#include "platform/sql/postgres/PostgresCatalog.h"
#include "platform/sql/postgres/PostgresNames.h"
#include "platform/sql/postgres/PostgresRewriter.h"

using namespace Qt::StringLiterals;

namespace Korvane {

namespace {

QString NameOf(const TSqlToken &token)
{
    return token.Kind == TSqlTokenKind::Text ? SqlTextValue(token) : SqlName(token);
}

/// The name that a column of a result takes from its expression; empty if it takes none.
QString OwnName(const TSqlEdits &edits, const TSqlOperand &item)
{
    const bool isName = item.IsValid() && item.Form == TSqlForm::Name && edits[item.Last].IsName();
    return isName && !(item.Last > 0 && edits[item.Last - 1].Is("collate"_L1)) ? SqlName(edits[item.Last])
                                                                               : QString();
}

} // namespace

void CastToText(TSqlEdits &edits, const TSqlOperand &operand)
{
    if (!operand.IsValid() || operand.Kind == TSqlValueKind::Text)
        return;
    edits.Before(operand.First, u"cast("_s);
    edits.After(operand.Last, u" as text)"_s);
}

void TPostgresEngine::WriteName(TSqlCursor &cursor, int token)
{
    const TSqlToken &t = cursor.Edits[token];
    if (t.Text.front() != u'@') // a variable
        cursor.Edits.Replace(token, QuotedPostgresName(SqlName(t)));
}

/// NOTE: the names of databases keep their letters; any but the session's own is the engine's to refuse.
void TPostgresEngine::WriteDatabaseName(TSqlCursor &cursor, int token)
{
    cursor.Edits.Replace(token, QuotedSqlName(SqlName(cursor.Edits[token])) + u".public"_s);
}

void TPostgresEngine::WriteFunctionName(TSqlCursor &cursor, int token)
{
    cursor.Edits.Replace(token, cursor.Edits[token].Text.toString());
}

void TPostgresEngine::WriteCollation(TSqlCursor &cursor, int token)
{
    const QString name = SqlName(cursor.Edits[token]).toLower();
    const bool isExact = name == "binary"_L1 || name.contains("_cs"_L1) || name.contains("_bin"_L1);
    cursor.Edits.Replace(token, isExact ? u"\"C\""_s : u"nocase"_s);
}

void TPostgresEngine::WriteItem(TSqlCursor &cursor, const TSqlOperand &item, int alias)
{
    if (alias > item.Last)
        cursor.Edits.Replace(alias, QuotedPostgresName(NameOf(cursor.Edits[alias])));
    const QString written = alias >= 0 ? NameOf(cursor.Edits[alias]) : OwnName(cursor.Edits, item);
    if (written.isEmpty() || written.startsWith(u'@'))
        return;
    // The outermost select comes first: what it writes is what the result shows.
    const QString name = PostgresName(written);
    if (!WrittenNames.contains(name))
        WrittenNames.insert(name, written);
}

/// A literal has no length of its own: with one, the driver need not read the column as a long text.
void TPostgresEngine::WriteTextItems(TSqlCursor &cursor, const QList<int> &items)
{
    if (IsInserting)
        return;
    for (const int item : items) {
        const auto length = std::max<qsizetype>(SqlTextValue(cursor.Edits[item]).toUcs4().size(), 1);
        cursor.Edits.Before(item, u"cast("_s);
        cursor.Edits.After(item, u" as varchar(%1))"_s.arg(length));
    }
}

QString TPostgresEngine::AliasText(const TSqlCursor &cursor, int alias) const
{
    return QuotedPostgresName(NameOf(cursor.Edits[alias]));
}

/// NULL comes before all values, as in the dialect.
void TPostgresEngine::WriteOrderItem(TSqlCursor &cursor, bool isDown)
{
    cursor.Edits.After(cursor.At - 1, isDown ? u" nulls last"_s : u" nulls first"_s);
}

void TPostgresEngine::WriteCatalogTable(TSqlCursor &cursor, const TSqlSource &source)
{
    const int token = source.Name.Parts.last();
    const QString name = SqlName(cursor.Edits[token]);
    cursor.Edits.Replace(token, PostgresCatalogTable(name.toLower()));
    if (source.Alias < 0)
        cursor.Edits.After(token, u" as "_s + QuotedPostgresName(name));
}

TSqlValueKind TPostgresEngine::WriteClock(TSqlCursor &cursor, int token)
{
    cursor.Edits.Replace(token, u"cast(clock_timestamp() as timestamp(3))"_s);
    return TSqlValueKind::Unknown;
}

QString PostgresType(const TSqlType &type)
{
    switch (type.Class) {
    case TSqlTypeClass::Text: {
        static constexpr QLatin1StringView Prefix = "nvarchar("_L1;
        if (type.Length > 0)
            return u"varchar(%1)"_s.arg(type.Length);
        return type.EngineName.startsWith(Prefix) ? type.EngineName.mid(1) : u"text"_s;
    }
    case TSqlTypeClass::Flag:
        return u"varchar(1)"_s;
    case TSqlTypeClass::Float:
        return u"float"_s;
    case TSqlTypeClass::Decimal:
        return type.EngineName == "decimal"_L1 ? u"decimal(18, 0)"_s : type.EngineName;
    case TSqlTypeClass::Moment:
        if (type.EngineName == "date text"_L1)
            return u"date"_s;
        return type.EngineName == "time text"_L1 ? u"time(3)"_s : u"timestamp(3)"_s;
    case TSqlTypeClass::Binary:
        return u"bytea"_s;
    default:
        return type.EngineName;
    }
}

TSqlConversion TPostgresEngine::ConversionTo(const TSqlType &type, const QString &style) const
{
    using enum TSqlValueKind;
    const QString asType = u" as "_s + PostgresType(type);
    switch (type.Class) {
    case TSqlTypeClass::Text:
    case TSqlTypeClass::Flag:
    case TSqlTypeClass::Binary: {
        TSqlConversion conversion = TSqlEngine::ConversionTo(type, style);
        return conversion;
    }
    case TSqlTypeClass::Whole:
        // Digits behind the point are cut, not rounded.
        return {u"cast(korvane_truncated"_s, {}, Whole, asType + u')'};
    case TSqlTypeClass::Decimal:
    case TSqlTypeClass::Float:
        return {u"cast"_s, asType, Number, {}};
    case TSqlTypeClass::Moment:
        if (type.EngineName == "date text"_L1)
            return {u"cast(korvane_moment"_s, {}, Unknown, u" as date)"_s};
        return {u"korvane_moment"_s, {}, Unknown, {}};
    case TSqlTypeClass::Other:
        break;
    }
    RefuseSql(u"CONVERT "_s + type.EngineName.toUpper());
}

} // namespace Korvane
