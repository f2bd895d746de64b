// SPDX-License-Identifier: MIT
#include "general/ExTimer.h"
#include "general/Profile.h"
#include "platform/core/Exceptions.h"

#include <gtest/gtest.h>

#include <chrono>

using namespace Korvane;

TEST(ExTimer, measures_what_the_clock_measures)
{
    using Clock = std::chrono::steady_clock;
    TExTimer timer;
    timer.TimeStop(); // nothing yet
    EXPECT_THROW(timer.uSecond(), Exception);
    EXPECT_THROW(timer.sSecond(), Exception);

    timer.TimeStart();
    EXPECT_EQ(timer.nSecond(), 0);
    const auto start = Clock::now();
    while (Clock::now() - start < std::chrono::milliseconds(20)) {
    }
    timer.TimeStop();
    EXPECT_GE(timer.mSecond(), 19.5F); // the calibration is that exact at the least
    EXPECT_FLOAT_EQ(timer.sSecond(), timer.mSecond() / 1000);
    EXPECT_NEAR(double(timer.uSecond()), double(timer.mSecond()) * 1000, 1);
    EXPECT_EQ(timer.nSecond() / 1000, timer.uSecond());

    const qint64 first = timer.nSecond();
    timer.TimeStop();
    EXPECT_GT(timer.nSecond(), first) << "measured from the same start";
    const qint64 second = timer.nSecond();
    timer.TimeStart();
    EXPECT_EQ(timer.nSecond(), second) << "kept until the next stop";
    timer.TimeStart(true);
    EXPECT_EQ(timer.nSecond(), 0);
}

TEST(Profile, hooks_do_nothing)
{
    ASSERT_TRUE(TimeProfiler);
    EXPECT_EQ(TimeProfiler->BeginTest(QStringLiteral("a"), {}), 0);
    TimeProfiler->EndTest(0);
    EXPECT_FALSE(TFunctionTimeProfiler::ExecuteTest(QStringLiteral("a"), {}));
    const TFunctionTimeProfiler ends(0);
}
