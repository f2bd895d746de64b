// SPDX-License-Identifier: MIT
#pragma once

#include "platform/core/Component.h"

namespace Korvane {

/// The processor's cycle counter, a single instruction on x86-64; elsewhere nanoseconds of a clock that
/// never goes back. It is not synchronised between processors.
qint64 GetCPUTimestamp();

/// What that counter counts in a second, by a measurement of 10 milliseconds.
qint64 GetCPUSpeed();

/// Measures an interval in processor cycles. Not for sharing between threads.
///
///     TExTimer timer;
///     timer.TimeStart();
///     …
///     timer.TimeStop();
///     qInfo() << timer.mSecond();
class TExTimer : public TComponent
{
    Q_OBJECT
    Q_PROPERTY(float sSecond READ sSecond STORED false)
    Q_PROPERTY(float mSecond READ mSecond STORED false)
    Q_PROPERTY(qint64 uSecond READ uSecond STORED false)
    Q_PROPERTY(qint64 nSecond READ nSecond STORED false)

public:
    explicit TExTimer(QObject *owner = nullptr);

    /// Begins the interval. The first start measures the counter's speed, which takes 10 milliseconds, and
    /// forgets the interval before; recalibrate measures it again.
    void TimeStart(bool recalibrate = false);
    /// Ends the interval, and moves its end on when called again. Nothing before the first start.
    void TimeStop();

    // The interval in seconds, milliseconds, microseconds and nanoseconds; 0 from the first start to the
    // first stop. Raise Exception before the first start.
    float sSecond() const;
    float mSecond() const;
    qint64 uSecond() const { return Scaled(1'000'000); }
    qint64 nSecond() const { return Scaled(1'000'000'000); }

private:
    void CheckSpeed() const;
    qint64 Scaled(qint64 unitsPerSecond) const;

    qint64 FSpeed = 0; // cycles per second
    qint64 FStart = 0;
    qint64 FElapsed = 0;
    bool FIsCalibrated = false;
};

} // namespace Korvane
