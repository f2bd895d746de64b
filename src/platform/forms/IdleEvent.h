// SPDX-License-Identifier: MIT
#pragma once

#include <QEvent>

namespace Korvane {

/// The event that the application sends itself when all others are handled.
inline QEvent::Type IdleEvent()
{
    static const auto type = QEvent::Type(QEvent::registerEventType());
    return type;
}

} // namespace Korvane
