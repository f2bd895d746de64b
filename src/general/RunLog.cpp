// SPDX-License-Identifier: MIT
#include "general/RunLog.h"

#include "general/SystemRoutines.h"
#include "general/TextRoutines.h"
#include "platform/core/FormatFloat.h"
#include "platform/core/StringList.h"

#include <QFile>

namespace Korvane {

namespace {
constexpr int TextBytes = 50;
}

void StartRunLogger()
{
    SetStartTime();
    ARunLogger.clear();
}

void SetRunLogger(const QString &text)
{
    ARunLogger.append(AddSpaces(text, TextBytes, QStringLiteral(" "), false) + FloatToStr(GetRunTime()));
}

void SaveRunLogger(const QString &fileName)
{
    SaveLines(fileName, ARunLogger);
    ARunLogger.clear();
}

void SaveError(const QString &fileName, const QString &text)
{
    QStringList lines;
    if (QFile::exists(fileName))
        lines = LoadLines(fileName);
    lines.append(text);
    SaveLines(fileName, lines);
}

void SetStartTime() { ARunTime = TickCount(); }

double GetRunTime()
{
    const double seconds = (TickCount() - ARunTime) / 1000;
    // The clock is read again, so that the time in between belongs to no lap.
    ARunTime = TickCount();
    return seconds;
}

} // namespace Korvane
