// SPDX-License-Identifier: MIT
#include "general/ExTimer.h"

#include "platform/core/Exceptions.h"

#include <chrono>

#ifdef __x86_64__
#include <x86intrin.h>
#endif

namespace Korvane {

namespace {

qint64 Nanoseconds()
{
    return std::chrono::nanoseconds(std::chrono::steady_clock::now().time_since_epoch()).count();
}

} // namespace

qint64 GetCPUTimestamp()
{
#ifdef __x86_64__
    return qint64(__rdtsc());
#else
    return Nanoseconds();
#endif
}

qint64 GetCPUSpeed()
{
    constexpr qint64 span = 10'000'000;
    // Begins where the clock ticks.
    const qint64 before = Nanoseconds();
    qint64 start = before;
    while (start == before)
        start = Nanoseconds();
    const qint64 first = GetCPUTimestamp();
    qint64 end = start;
    while (end - start < span)
        end = Nanoseconds();
    const qint64 cycles = GetCPUTimestamp() - first;
    return cycles * 1'000'000 / ((end - start) / 1000);
}

TExTimer::TExTimer(QObject *owner) : TComponent(owner) {}

void TExTimer::TimeStart(bool recalibrate)
{
    if (recalibrate || !FIsCalibrated) {
        FElapsed = 0;
        FSpeed = GetCPUSpeed();
        FIsCalibrated = true;
    }
    // NOTE: last, so that nothing lies between it and what is measured.
    FStart = GetCPUTimestamp();
}

void TExTimer::TimeStop()
{
    const qint64 now = GetCPUTimestamp();
    if (FIsCalibrated)
        FElapsed = now - FStart;
}

void TExTimer::CheckSpeed() const
{
    if (FSpeed == 0)
        throw Exception(QStringLiteral("计时器还没有开始，不能读取时间"));
}

float TExTimer::sSecond() const
{
    CheckSpeed();
    return float(double(FElapsed) / double(FSpeed));
}

float TExTimer::mSecond() const
{
    CheckSpeed();
    return float(double(FElapsed) * 1000 / double(FSpeed));
}

/// Seconds and the rest apart, since the product of all has no room in 64 bits.
qint64 TExTimer::Scaled(qint64 unitsPerSecond) const
{
    CheckSpeed();
    return FElapsed / FSpeed * unitsPerSecond + FElapsed % FSpeed * unitsPerSecond / FSpeed;
}

} // namespace Korvane
