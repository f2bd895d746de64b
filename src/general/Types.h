// SPDX-License-Identifier: MIT
#pragma once

#include "platform/data/FieldTypes.h"

#include <QMetaType>
#include <QString>

namespace Korvane {

Q_NAMESPACE

/// The SQL dialect that a statement is written in.
enum TDBType : int { dbtAccess, dbtMSSQL };
Q_ENUM_NS(TDBType)

/// The logical type of a column. The edit controls have an enumeration of the same name
/// for what may be typed into them; the two have nothing to do with each other.
enum TDataType : int {
    dtChar,
    dtVarchar,
    dtInt,
    dtSmallint,
    dtDecimal,
    dtFloat,
    dtDateTime,
    dtDate,
    dtBoolean,
    dtText,
    dtImage
};
Q_ENUM_NS(TDataType)

/// How several key conditions are compared ("=" or " like ") and joined (" and " or " or ").
enum TOpenOption : int { ooEqualAnd, ooEqualOr, ooLikeAnd, ooLikeOr };
Q_ENUM_NS(TOpenOption)

/// The names of the dialects, which are also the columns of a design file that hold text
/// for one dialect.
inline const QString DBTypeName[] = {QStringLiteral("Access"), QStringLiteral("MSSQL")};

/// The names of the logical types as a design file spells them.
inline const QString DataTypeName[] = {
    QStringLiteral("char"),     QStringLiteral("varchar"), QStringLiteral("int"),
    QStringLiteral("smallint"), QStringLiteral("decimal"), QStringLiteral("float"),
    QStringLiteral("datetime"), QStringLiteral("date"),    QStringLiteral("boolean"),
    QStringLiteral("text"),     QStringLiteral("image")};

/// What the columns of a dialect are called; that of dbtAccess for a value out of range.
QString GetDBTypeName(TDBType type);
/// The dialect of exactly that name, capitals included; dbtAccess for any other text.
TDBType GetDBType(const QString &name);

/// The name of a logical type; "char" for a value out of range.
QString GetDataTypeName(TDataType type);
/// The logical type of that name in any mixture of capitals; dtChar for any other text,
/// and blanks are not trimmed.
TDataType GetDataType(const QString &name);

/// The type of the dataset field of such a column. Dates and booleans are kept as text, so
/// that they are ftString; so is a value out of range.
TFieldType GetFieldType(TDataType type);
/// The column type as it stands in "create table", without length and precision. Dates are
/// text of 8 and date-times of 14 digits; boolAsChar makes a boolean "char(1)" instead of "bit".
QString GetDBFieldType(TDataType type, bool boolAsChar);
/// The type of the property in generated class text; "string" for a value out of range.
QString GetPropDataType(TDataType type);

} // namespace Korvane
