// SPDX-License-Identifier: MIT
#include "general/Profile.h"

#include <QFileInfo>

#include <utility>

namespace Korvane {

TTimeProfiler::TTimeProfiler(const QString &) {}

int TTimeProfiler::BeginTest(const QString &, const QString &) { return 0; }

void TTimeProfiler::EndTest(int) {}

TFunctionTimeProfiler::~TFunctionTimeProfiler()
{
    if (TimeProfiler)
        TimeProfiler->EndTest(FIndex);
}

std::shared_ptr<ITimeProfiler> TFunctionTimeProfiler::ExecuteTest(const QString &, const QString &)
{
    return {};
}

// NOTE: no constructor and no destructor of its own, which would come between those of other files.
constinit TTimeProfiler *TimeProfiler = nullptr;

namespace {

constinit int UnitCount = 0;

/// The program's file with ".Time.txt" for its ending.
QString FigureFile()
{
    const QFileInfo program(QStringLiteral("/proc/self/exe"));
    const QFileInfo file(program.symLinkTarget());
    return file.path() + u'/' + file.completeBaseName() + QStringLiteral(".Time.txt");
}

} // namespace

TProfileUnit::TProfileUnit()
{
    if (UnitCount++ == 0 && !TimeProfiler)
        TimeProfiler = new TTimeProfiler(FigureFile());
}

TProfileUnit::~TProfileUnit()
{
    if (--UnitCount == 0)
        delete std::exchange(TimeProfiler, nullptr);
}

} // namespace Korvane
