// SPDX-License-Identifier: MIT
#include "examples/orders/window/script/BusyMeter.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>

TBusyMeter::TBusyMeter()
{
    FTimer.start();
    connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock, this, [this] {
        Count();
        FIsWaiting = true;
    });
    QCoreApplication::instance()->installEventFilter(this);
}

/// Sees each event before its receiver.
bool TBusyMeter::eventFilter(QObject *, QEvent *)
{
    if (FIsWaiting)
        Restart();
    return false;
}

void TBusyMeter::Restart()
{
    FIsWaiting = false;
    FTimer.restart();
}

void TBusyMeter::Count()
{
    const double ms = double(FTimer.nsecsElapsed()) / 1e6;
    if (FIsWaiting || ms <= FLongestMs)
        return;
    FLongestMs = ms;
    FLongestWork = FWork;
}
