// SPDX-License-Identifier: MIT
#include "design/DBObject.h"

#include "platform/core/Reflection.h"

#include <typeinfo>

namespace Korvane {

namespace {

bool IsColumn(const TPropInfo &property)
{
    return property.Kind != tkSet && property.Kind != tkClass && property.Kind != tkMethod;
}

/// The properties of the object's own class; the base itself is not registered and has none.
const TPropList &PropertiesOf(const TDBObject &object)
{
    return typeid(object) == typeid(TDBObject) ? GetPropList(TDBObject::staticMetaObject)
                                               : GetPropList(object);
}

} // namespace

QStringList TDBObject::GetClassProperties() const
{
    QStringList names;
    for (const TPropInfo &property : PropertiesOf(*this).Properties())
        if (IsColumn(property))
            names.append(property.Name);
    return names;
}

void TDBObject::Clear()
{
    for (const TPropInfo &property : PropertiesOf(*this).Properties())
        if (IsColumn(property))
            property.SetValue(*this, QVariant());
}

} // namespace Korvane
