// SPDX-License-Identifier: MIT
#include "design/DBObject.h"

#include "platform/core/Reflection.h"

namespace Korvane {

namespace {

bool IsColumn(const TPropInfo &property)
{
    return property.Kind != tkSet && property.Kind != tkClass && property.Kind != tkMethod;
}

} // namespace

QStringList TDBObject::GetClassProperties() const
{
    QStringList names;
    for (const TPropInfo &property : GetPropList(*this).Properties())
        if (IsColumn(property))
            names.append(property.Name);
    return names;
}

void TDBObject::Clear()
{
    for (const TPropInfo &property : GetPropList(*this).Properties())
        if (IsColumn(property))
            property.SetValue(*this, QVariant());
}

} // namespace Korvane
