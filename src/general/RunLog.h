// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>

namespace Korvane {

// The run log is a list of timed steps that a run fills as it goes and saves in one piece:
//
//     StartRunLogger();
//     Import();  SetRunLogger("import");
//     Check();   SetRunLogger("check");
//     SaveRunLogger("run.log");
//
// It belongs to the main thread.

/// The lines of the run log: a step's text filled with blanks to 50 bytes of code page 936,
/// and the step's seconds. The number follows a longer text without a gap.
inline QStringList ARunLogger;
/// The tick count at the last lap, in milliseconds.
inline double ARunTime = 0;

/// Begins a lap and an empty log.
void StartRunLogger();
/// Adds a line with the seconds since the last one, and begins a new lap.
void SetRunLogger(const QString &text);
/// Writes the log to a file in UTF-8, replacing it, and then empties the log. Raises
/// EFileError, and the log stays.
void SaveRunLogger(const QString &fileName);

/// Adds a text to the end of a file in UTF-8, which is made if there is none. The whole file
/// is read and written. Raises EFileError.
void SaveError(const QString &fileName, const QString &text);

/// Begins a lap.
void SetStartTime();
/// The seconds of the lap, and begins a new one. Negative when the tick count began again at
/// 0 during the lap.
double GetRunTime();

} // namespace Korvane
