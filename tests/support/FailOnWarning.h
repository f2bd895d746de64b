// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>

#include <QString>
#include <QtGlobal>

#include <cstdio>
#include <ostream>

namespace Korvane::Testing {

/// A message handler that turns an unexpected warning of Qt into a failed test. What a display that does
/// not exist cannot do is expected.
inline void FailOnWarning(QtMsgType type, const QMessageLogContext &, const QString &text)
{
    if (text.startsWith(QLatin1String("This plugin does not support")))
        return;
    if (type == QtDebugMsg || type == QtInfoMsg)
        std::fprintf(stderr, "%s\n", qUtf8Printable(text));
    else
        ADD_FAILURE() << "Qt says: " << text.toStdString();
}

} // namespace Korvane::Testing
