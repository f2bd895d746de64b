// SPDX-License-Identifier: MIT
#pragma once

#include "platform/core/DateTime.h"
#include "platform/core/FormatSettings.h"

namespace Korvane {

/// Writes a date-time by a format; the letters' case does not matter:
///
/// | letters | text |
/// |---|---|
/// | y yy, yyy yyyy | the year in two, in four digits |
/// | m mm, mmm, mmmm | month: number, short name, name; m and mm after an hour are minutes |
/// | d dd, ddd, dddd | day: number, short weekday, weekday |
/// | ddddd, dddddd | the settings' short, long date |
/// | h hh, n nn, s ss, z zzz | hour, minute, second, millisecond |
/// | am/pm, a/p, ampm | the half of the day; the hours before it count to 12 |
/// | aaa, aaaa | short weekday, weekday |
/// | t, tt | the settings' short, long time |
/// | c | short date, and the long time unless it is midnight |
/// | / : | the settings' separators |
/// | 'text' "text" | the text itself |
///
/// An empty format is "c". Raises EConvertError for a number outside of the years 1 to 9999.
QString FormatDateTime(const QString &format, TDateTime value,
                       const TFormatSettings &settings = DefaultFormatSettings());

QString DateToStr(TDateTime value, const TFormatSettings &settings = DefaultFormatSettings());
QString TimeToStr(TDateTime value, const TFormatSettings &settings = DefaultFormatSettings());
QString DateTimeToStr(TDateTime value, const TFormatSettings &settings = DefaultFormatSettings());

/// The readers follow the order of year, month and day in the settings' short date format and
/// its separators; without a year it is the current one. They raise EConvertError, the Try…
/// forms give false and leave the value alone.
TDateTime StrToDate(const QString &text, const TFormatSettings &settings = DefaultFormatSettings());
/// Hour[:minute[:second[.millisecond]]], before or behind it the half of the day.
TDateTime StrToTime(const QString &text, const TFormatSettings &settings = DefaultFormatSettings());
/// A date, a date and a time, or a time alone.
TDateTime StrToDateTime(const QString &text, const TFormatSettings &settings = DefaultFormatSettings());
bool TryStrToDate(const QString &text, TDateTime &value,
                  const TFormatSettings &settings = DefaultFormatSettings());
bool TryStrToTime(const QString &text, TDateTime &value,
                  const TFormatSettings &settings = DefaultFormatSettings());
bool TryStrToDateTime(const QString &text, TDateTime &value,
                      const TFormatSettings &settings = DefaultFormatSettings());

} // namespace Korvane
