// SPDX-License-Identifier: MIT
#include "platform/core/ApplicationTitle.h"

#include <QCoreApplication>

namespace Korvane {

namespace {

QString &Title()
{
    static QString title;
    return title;
}

} // namespace

QString ApplicationTitle() { return Title().isEmpty() ? QCoreApplication::applicationName() : Title(); }

void SetApplicationTitle(const QString &title) { Title() = title; }

} // namespace Korvane
