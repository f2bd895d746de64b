// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <memory>

namespace Korvane {

// Places for a profiler of functions. They measure nothing and cost next to nothing, so that code may
// keep them: an application that wants figures puts a profiler of its own behind them.

/// A test that ends when the last reference to it goes.
class ITimeProfiler
{
public:
    virtual ~ITimeProfiler() = default;
};

class TTimeProfiler
{
public:
    /// Where figures would go; nothing is kept or written.
    explicit TTimeProfiler(const QString &fileName);
    virtual ~TTimeProfiler() = default;

    /// The test's index: always 0.
    virtual int BeginTest(const QString &name, const QString &detail);
    virtual void EndTest(int index);
};

/// Ends its test in the unit's profiler when it goes.
class TFunctionTimeProfiler : public ITimeProfiler
{
public:
    explicit TFunctionTimeProfiler(int index) : FIndex(index) {}
    ~TFunctionTimeProfiler() override;

    /// Always empty.
    static std::shared_ptr<ITimeProfiler> ExecuteTest(const QString &name, const QString &detail);

private:
    const int FIndex;
};

/// The unit's profiler. It is there from before the first use of this header to behind the last.
extern TTimeProfiler *TimeProfiler;

/// Makes the unit's profiler, unless there is one, and frees it, as the first and the last of its kind.
class TProfileUnit
{
public:
    TProfileUnit();
    ~TProfileUnit();
    TProfileUnit(const TProfileUnit &) = delete;
    TProfileUnit &operator=(const TProfileUnit &) = delete;
};
static const TProfileUnit ProfileUnit; // one in each file that includes this

} // namespace Korvane
