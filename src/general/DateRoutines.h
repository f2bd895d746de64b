// SPDX-License-Identifier: MIT
#pragma once

#include "platform/core/DateTime.h"

#include <QString>

namespace Korvane {

// Dates and times as columns hold them. The readers take the digits by their places and look
// at nothing behind them; a piece that is no number and a day or time that does not exist
// raise EConvertError.

/// Reads yyyymmdd.
TDateTime StrToDateA(const QString &text);
/// Reads yyyymmddhhnnss.
TDateTime StrToDateB(const QString &text);
/// Reads hhnnss into a time without a date.
TDateTime StrToDateC(const QString &text);

/// Writes yyyymmdd.
QString DateToStrA(TDateTime date);

} // namespace Korvane
