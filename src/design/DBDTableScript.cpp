// SPDX-License-Identifier: MIT
// The scripts of TDBDTable: the table, its audit columns and its indexes.
#include "design/DBDTable.h"

#include "design/AuditColumns.h"
#include "general/TextRoutines.h"
#include "platform/core/Text.h"

#include <QStringBuilder>

namespace Korvane {

namespace {

constexpr int NameWidth = 25; // bytes that a column's name is filled to
constexpr int TypeWidth = 60;

QString Filled(const QString &text, int width) { return AddSpaces(text, width, QStringLiteral(" "), false); }

QString ColumnLine(const QString &name, const QString &text, const QString &comment)
{
    return u"  " % Filled(name, NameWidth) % Filled(text, TypeWidth) % comment;
}

/// Length and precision behind the name of the type.
QString SizeText(const TFieldsObject &field, TDataType type)
{
    if (type == dtChar || type == dtVarchar)
        return u'(' % QString::number(field.FieldSize) % u')';
    if (type == dtDecimal)
        return u'(' % QString::number(field.FieldSize) % u", " % QString::number(field.FieldPrecision) % u')';
    return {};
}

/// The default behind a column, empty if there is none. A Boolean's letter becomes 1 or 0 in
/// the definition itself, once: a second script of the same definition reads that 1 as "not Y".
QString DefaultText(TFieldsObject &field, TDBType type, bool boolAsChar)
{
    if (field.FieldDefault.isEmpty())
        return {};
    const bool bit = !boolAsChar && GetDataType(field.FieldType) == dtBoolean;
    if (bit)
        field.FieldDefault =
            field.FieldDefault == QLatin1String("Y") ? QStringLiteral("1") : QStringLiteral("0");
    const bool bare = type == dbtAccess || bit || field.FieldDefault == QLatin1String("''");
    return u" default " % (bare ? field.FieldDefault : QuotedStr(field.FieldDefault));
}

QString ColumnText(TFieldsObject &field, TDBType type, bool boolAsChar)
{
    const TDataType dataType = GetDataType(field.FieldType);
    return GetDBFieldType(dataType, boolAsChar) % SizeText(field, dataType) %
           QStringView(field.IsAuto ? u" identity" : u"") %
           QStringView(field.IsNotNull ? u" not null" : u" null") % DefaultText(field, type, boolAsChar) %
           u',';
}

QString CommentText(const TFieldsObject &field, bool property)
{
    return QStringLiteral("--") +
           (property ? QLatin1Char('[') + field.FieldProp + QLatin1Char(']') : QString()) + field.FieldName +
           (field.Remark.isEmpty() ? QString() : QLatin1Char('(') + field.Remark + QLatin1Char(')'));
}

} // namespace

QString TDBDTable::GetTableScript(TDBType type, bool comments, bool boolAsChar, bool property)
{
    switch (type) {
    case dbtAccess:
        return GetAccessTableScript(comments, boolAsChar, property);
    case dbtMSSQL:
        return GetMSSQLTableScript(comments, boolAsChar, property);
    }
    return {};
}

QString TDBDTable::GetAccessTableScript(bool comments, bool boolAsChar, bool property)
{
    return TableScript(dbtAccess, comments, boolAsChar, property);
}

QString TDBDTable::GetMSSQLTableScript(bool comments, bool boolAsChar, bool property)
{
    return TableScript(dbtMSSQL, comments, boolAsChar, property);
}

QString TDBDTable::TableScript(TDBType type, bool comments, bool boolAsChar, bool property)
{
    QStringList lines;
    if (comments)
        lines.append(QStringLiteral("--") + FTableObject->TableName);
    lines.append(QStringLiteral("create table ") + FTableObject->TableCode + QLatin1Char('('));
    for (const TAuditColumn &column : AuditColumns)
        lines.append(ColumnLine(column.Name, column.Type, comments ? column.Comment : QString()));
    QStringList keys;
    for (const auto &field : std::as_const(FTableFields)) {
        lines.append(ColumnLine(field->FieldCode, ColumnText(*field, type, boolAsChar),
                                comments ? CommentText(*field, property) : QString()));
        if (field->IsKey)
            keys.append(field->FieldCode);
    }
    if (keys.isEmpty())
        // The rightmost comma may stand in a comment; then that one goes.
        lines.last() = ReplaceRight(lines.last(), QStringLiteral(","), QStringLiteral(" "));
    else
        lines.append(QStringLiteral("  constraint PK_%1 primary key(%2)")
                         .arg(FTableObject->TableCode, keys.join(QLatin1Char(','))));
    lines.append(QStringLiteral(")"));
    return Trim(lines.join(QStringLiteral("\r\n")));
}

QString TDBDTable::GetIndexScript(TDBType type, const TIndexsObject &index) const
{
    switch (type) {
    case dbtAccess:
        return GetAccessIndexScript(index);
    case dbtMSSQL:
        return GetMSSQLIndexScript(index);
    }
    return {};
}

QString TDBDTable::GetAccessIndexScript(const TIndexsObject &index) const
{
    QString fields = index.IndexFields;
    fields.replace(QLatin1Char(';'), QLatin1Char(','));
    return QStringLiteral("create") + (index.IsUnique ? QStringLiteral(" unique") : QString()) +
           (index.IsCluster ? QStringLiteral(" clustered") : QString()) + QStringLiteral(" index ") +
           index.IndexCode + QStringLiteral(" on ") + index.TableCode + QLatin1Char('(') + fields +
           QLatin1Char(')');
}

QString TDBDTable::GetMSSQLIndexScript(const TIndexsObject &index) const
{
    return GetAccessIndexScript(index); // the dialects agree here
}

} // namespace Korvane
