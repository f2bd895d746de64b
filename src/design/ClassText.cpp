// SPDX-License-Identifier: MIT
#include "design/ClassText.h"

#include "general/Types.h"
#include "platform/core/StringList.h"

namespace Korvane {

QString RecordClassText(const QString &className, const TObjectList<TFieldsObject> &fields)
{
    QStringList privates, properties;
    for (const auto &field : fields) {
        const QString type = GetPropDataType(GetDataType(field->FieldType));
        privates.append(QStringLiteral("    F%1: %2;").arg(field->FieldProp, type));
        properties.append(
            QStringLiteral("    property %1: %2 read F%1 write F%1;").arg(field->FieldProp, type));
    }
    return TextOf(
        QStringList{QStringLiteral("  %1 = class(TDBObject)").arg(className), QStringLiteral("  private")} +
        privates + QStringList{QStringLiteral("  published")} + properties +
        QStringList{QStringLiteral("  end;")});
}

} // namespace Korvane
