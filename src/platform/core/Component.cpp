// SPDX-License-Identifier: MIT
#include "platform/core/Component.h"

namespace Korvane {

TComponent::TComponent(QObject *owner) : QObject(owner) {}

TComponent *TComponent::FindComponent(const QString &name) const
{
    for (TComponent *component : Components())
        if (component->Name().compare(name, Qt::CaseInsensitive) == 0)
            return component;
    return nullptr;
}

QList<TComponent *> TComponent::Components() const
{
    return findChildren<TComponent *>(QString(), Qt::FindDirectChildrenOnly);
}

} // namespace Korvane
