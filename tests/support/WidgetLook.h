// SPDX-License-Identifier: MIT
#pragma once

#include <QApplication>
#include <QFont>
#include <QStyleFactory>

namespace Korvane::Testing {

/// The style and the font of tests with windows, which do not depend on the machine.
inline void SetLook()
{
    QCoreApplication::setApplicationName(QStringLiteral("korvane-test"));
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    QFont font(QStringLiteral("Noto Sans CJK SC"));
    font.setPixelSize(14);
    QApplication::setFont(font);
}

} // namespace Korvane::Testing
