// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

class QObject;

namespace Korvane {

/// The object among those that the owner owns directly whose name equals the argument, blind to the
/// case of letters; null if there is none or the name is empty.
QObject *FindComponent(const QObject &owner, const QString &name);

} // namespace Korvane
