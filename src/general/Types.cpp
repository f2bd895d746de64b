// SPDX-License-Identifier: MIT
#include "general/Types.h"

#include <iterator>

namespace Korvane {

namespace {

struct TypeTraits
{
    TFieldType FieldType;
    const char *PropertyType;
};

// By ordinal of TDataType.
constexpr TypeTraits Traits[] = {
    {ftString, "string"},     // dtChar
    {ftString, "string"},     // dtVarchar
    {ftInteger, "Integer"},   // dtInt
    {ftSmallint, "SmallInt"}, // dtSmallint
    {ftFloat, "Double"},      // dtDecimal
    {ftFloat, "Double"},      // dtFloat
    {ftString, "string"},     // dtDateTime
    {ftString, "string"},     // dtDate
    {ftString, "Boolean"},    // dtBoolean
    {ftMemo, "string"},       // dtText
    {ftBlob, "string"},       // dtImage
};
static_assert(std::size(Traits) == dtImage + 1);

/// The index into a table by ordinal; the first entry serves for a value out of range.
template <class Entry, std::size_t Count> const Entry &EntryOf(const Entry (&table)[Count], int ordinal)
{
    return table[ordinal >= 0 && ordinal < int(Count) ? ordinal : 0];
}

} // namespace

QString GetDBTypeName(TDBType type) { return EntryOf(DBTypeName, type); }

TDBType GetDBType(const QString &name) { return name == DBTypeName[dbtMSSQL] ? dbtMSSQL : dbtAccess; }

QString GetDataTypeName(TDataType type) { return EntryOf(DataTypeName, type); }

TDataType GetDataType(const QString &name)
{
    for (int type = dtChar; type <= dtImage; ++type)
        if (name.compare(DataTypeName[type], Qt::CaseInsensitive) == 0)
            return TDataType(type);
    return dtChar;
}

TFieldType GetFieldType(TDataType type) { return EntryOf(Traits, type).FieldType; }

QString GetDBFieldType(TDataType type, bool boolAsChar)
{
    switch (type) {
    case dtDateTime:
        return QStringLiteral("char(14)");
    case dtDate:
        return QStringLiteral("char(8)");
    case dtBoolean:
        return boolAsChar ? QStringLiteral("char(1)") : QStringLiteral("bit");
    default:
        return GetDataTypeName(type);
    }
}

QString GetPropDataType(TDataType type) { return QString::fromLatin1(EntryOf(Traits, type).PropertyType); }

} // namespace Korvane
