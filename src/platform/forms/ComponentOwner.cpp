// SPDX-License-Identifier: MIT
#include "platform/forms/ComponentOwner.h"

#include <QObject>

namespace Korvane {

QObject *FindComponent(const QObject &owner, const QString &name)
{
    if (name.isEmpty())
        return nullptr;
    for (QObject *object : owner.children())
        if (object->objectName().compare(name, Qt::CaseInsensitive) == 0)
            return object;
    return nullptr;
}

} // namespace Korvane
