// SPDX-License-Identifier: MIT
#include "design/FieldValue.h"

#include "design/StatementText.h"
#include "platform/core/Reflection.h"
#include "platform/core/Text.h"

namespace Korvane {

namespace {

bool IsWholeNumber(TPropStorage storage)
{
    return storage == TPropStorage::Int || storage == TPropStorage::Int64;
}

void AppendQuotedValue(QString &statement, const TDBObject &object, const TPropInfo &property)
{
    if (!IsWholeNumber(property.Storage)) {
        AppendQuoted(statement, Trimmed(property.Text(object)));
        return;
    }
    statement += u'\'';
    property.AppendText(object, statement);
    statement += u'\'';
}

void AppendBareValue(QString &statement, const TDBObject &object, const TPropInfo &property)
{
    if (IsWholeNumber(property.Storage) || property.Storage == TPropStorage::Double)
        property.AppendText(object, statement);
    else
        statement += Trimmed(property.Text(object));
}

} // namespace

QString GetDBFieldValue(const TDBObject &object, const TFieldsObject &field)
{
    return GetDBFieldValue(object, field.FieldProp, field.FieldType);
}

QString GetDBFieldValue(const TDBObject &object, const QString &property, const QString &fieldType)
{
    QString literal;
    AppendDBFieldValue(literal, object, GetPropInfo(object, property), GetDataType(fieldType));
    return literal;
}

void AppendDBFieldValue(QString &statement, const TDBObject &object, const TPropInfo &property,
                        TDataType type)
{
    switch (type) {
    case dtChar:
    case dtVarchar:
    case dtDateTime:
    case dtDate:
    case dtText:
        AppendQuotedValue(statement, object, property);
        break;
    case dtBoolean:
        statement += SameText(Trimmed(property.Text(object)), u"TRUE") ? QLatin1StringView("'Y'")
                                                                       : QLatin1StringView("'N'");
        break;
    case dtInt:
    case dtSmallint:
    case dtDecimal:
    case dtFloat:
    case dtImage:
        AppendBareValue(statement, object, property);
        break;
    }
}

} // namespace Korvane
