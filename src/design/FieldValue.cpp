// SPDX-License-Identifier: MIT
#include "design/FieldValue.h"

#include "platform/core/Reflection.h"
#include "platform/core/Text.h"

namespace Korvane {

QString GetDBFieldValue(const TDBObject &object, const TFieldsObject &field)
{
    return GetDBFieldValue(object, field.FieldProp, field.FieldType);
}

QString GetDBFieldValue(const TDBObject &object, const QString &property, const QString &fieldType)
{
    const QString text = Trim(GetPropInfo(object, property).Text(object));
    switch (GetDataType(fieldType)) {
    case dtChar:
    case dtVarchar:
    case dtDateTime:
    case dtDate:
    case dtText:
        return QuotedStr(text);
    case dtBoolean:
        return SameText(text, u"TRUE") ? QStringLiteral("'Y'") : QStringLiteral("'N'");
    case dtInt:
    case dtSmallint:
    case dtDecimal:
    case dtFloat:
    case dtImage:
        break;
    }
    return text;
}

} // namespace Korvane
