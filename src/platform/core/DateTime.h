// SPDX-License-Identifier: MIT
#pragma once

#include <QDate>
#include <QDateTime>
#include <QTime>

#include <compare>

namespace Korvane {

/// A date-time number: days since 1899-12-30, the fraction is the time of day. 0 is "empty".
/// Before that day the fraction still counts away from zero: -1.25 is 1899-12-29 06:00. The
/// time is exact to the millisecond.
class TDateTime
{
public:
    constexpr TDateTime() = default;
    constexpr explicit TDateTime(double days) : FDays(days) {}
    /// The wall-clock reading of the value, whatever its time zone. An invalid value is empty.
    explicit TDateTime(const QDateTime &value);
    explicit TDateTime(QDate date);
    explicit TDateTime(QTime time);
    TDateTime(QDate date, QTime time);

    constexpr explicit operator double() const { return FDays; }
    constexpr double Days() const { return FDays; }
    constexpr bool IsEmpty() const { return FDays == 0; }

    /// Local time; invalid for the empty value. These three raise EConvertError for a number
    /// outside of the years 1 to 9999.
    QDateTime ToQDateTime() const;
    QDate ToQDate() const; ///< invalid for the empty value
    QTime ToQTime() const; ///< midnight for the empty value

    constexpr TDateTime &operator+=(double days) { return FDays += days, *this; }
    constexpr TDateTime &operator-=(double days) { return FDays -= days, *this; }
    friend constexpr TDateTime operator+(TDateTime value, double days)
    {
        return TDateTime(value.FDays + days);
    }
    friend constexpr TDateTime operator-(TDateTime value, double days)
    {
        return TDateTime(value.FDays - days);
    }
    /// The distance in days.
    friend constexpr double operator-(TDateTime left, TDateTime right) { return left.FDays - right.FDays; }
    friend constexpr bool operator==(TDateTime left, TDateTime right) { return left.FDays == right.FDays; }
    friend constexpr auto operator<=>(TDateTime left, TDateTime right) { return left.FDays <=> right.FDays; }

private:
    double FDays = 0;
};

inline constexpr int MSecsPerDay = 24 * 60 * 60 * 1000;

/// Raises EConvertError for a day that does not exist in the years 1 to 9999.
TDateTime EncodeDate(int year, int month, int day);
/// Hours 0 to 23; 24:00:00.000 is the end of the day. Raises EConvertError otherwise.
TDateTime EncodeTime(int hour, int minute, int second, int millisecond);
TDateTime EncodeDateTime(int year, int month, int day, int hour, int minute, int second, int millisecond);
/// False, with the value left alone, where EncodeDate and EncodeTime raise.
bool TryEncodeDate(int year, int month, int day, TDateTime &value);
bool TryEncodeTime(int hour, int minute, int second, int millisecond, TDateTime &value);

/// The empty value is 1899-12-30. Both raise EConvertError outside of the years 1 to 9999.
void DecodeDate(TDateTime value, int &year, int &month, int &day);
void DecodeTime(TDateTime value, int &hour, int &minute, int &second, int &millisecond);

/// A day and a time of day in one value, also before 1899-12-30.
TDateTime ComposeDateTime(TDateTime date, TDateTime time);
TDateTime DateOf(TDateTime value); ///< the day at midnight
TDateTime TimeOf(TDateTime value); ///< the time of day, from 0 up to below 1

TDateTime Now();
TDateTime Date();
TDateTime Time();

/// 1 Sunday to 7 Saturday.
int DayOfWeek(TDateTime value);
bool IsLeapYear(int year);
/// The number of days; 0 for a month outside of 1 to 12.
int DaysInMonth(int year, int month);
/// Some months on, or back for a negative number; a day past the new month's end becomes its last.
TDateTime IncMonth(TDateTime value, int months = 1);

} // namespace Korvane
