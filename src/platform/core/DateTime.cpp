// SPDX-License-Identifier: MIT
#include "platform/core/DateTime.h"

#include "platform/core/Exceptions.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace Korvane {

namespace {

constexpr QDate DayZero = QDate::fromJulianDay(2415019); // 1899-12-30
constexpr qint64 FirstDay = -693593;                     // 0001-01-01
constexpr qint64 LastDay = 2958465;                      // 9999-12-31

struct TDayAndTime
{
    qint64 Day;
    int MSec;
};

TDayAndTime Split(TDateTime value)
{
    const double days = value.Days();
    if (days > double(FirstDay - 1) && days < double(LastDay + 1)) {
        const qint64 total = std::llround(days * MSecsPerDay);
        const qint64 day = total / MSecsPerDay;
        if (day >= FirstDay && day <= LastDay)
            return {day, int(std::llabs(total % MSecsPerDay))};
    }
    throw EConvertError(QStringLiteral("日期时间数值 %1 超出范围").arg(days));
}

double DaysOf(QDate date) { return date.isValid() ? double(DayZero.daysTo(date)) : 0; }

double DaysOf(QTime time) { return time.isValid() ? double(time.msecsSinceStartOfDay()) / MSecsPerDay : 0; }

} // namespace

TDateTime::TDateTime(const QDateTime &value) : TDateTime(value.date(), value.time()) {}

TDateTime::TDateTime(QDate date) : FDays(DaysOf(date)) {}

TDateTime::TDateTime(QTime time) : FDays(DaysOf(time)) {}

TDateTime::TDateTime(QDate date, QTime time) : TDateTime(ComposeDateTime(TDateTime(date), TDateTime(time))) {}

QDateTime TDateTime::ToQDateTime() const { return IsEmpty() ? QDateTime() : QDateTime(ToQDate(), ToQTime()); }

QDate TDateTime::ToQDate() const { return IsEmpty() ? QDate() : DayZero.addDays(Split(*this).Day); }

QTime TDateTime::ToQTime() const { return QTime::fromMSecsSinceStartOfDay(Split(*this).MSec); }

bool TryEncodeDate(int year, int month, int day, TDateTime &value)
{
    if (year < 1 || year > 9999 || !QDate::isValid(year, month, day))
        return false;
    value = TDateTime(QDate(year, month, day));
    return true;
}

bool TryEncodeTime(int hour, int minute, int second, int millisecond, TDateTime &value)
{
    const bool isEndOfDay = hour == 24 && minute == 0 && second == 0 && millisecond == 0;
    if (!isEndOfDay && !QTime::isValid(hour, minute, second, millisecond))
        return false;
    value = TDateTime(double(((hour * 60 + minute) * 60 + second) * 1000 + millisecond) / MSecsPerDay);
    return true;
}

TDateTime EncodeDate(int year, int month, int day)
{
    TDateTime result;
    if (!TryEncodeDate(year, month, day, result))
        throw EConvertError(QStringLiteral("无效的日期：%1-%2-%3").arg(year).arg(month).arg(day));
    return result;
}

TDateTime EncodeTime(int hour, int minute, int second, int millisecond)
{
    TDateTime result;
    if (!TryEncodeTime(hour, minute, second, millisecond, result))
        throw EConvertError(
            QStringLiteral("无效的时间：%1:%2:%3.%4").arg(hour).arg(minute).arg(second).arg(millisecond));
    return result;
}

TDateTime EncodeDateTime(int year, int month, int day, int hour, int minute, int second, int millisecond)
{
    return ComposeDateTime(EncodeDate(year, month, day), EncodeTime(hour, minute, second, millisecond));
}

void DecodeDate(TDateTime value, int &year, int &month, int &day)
{
    DayZero.addDays(Split(value).Day).getDate(&year, &month, &day);
}

void DecodeTime(TDateTime value, int &hour, int &minute, int &second, int &millisecond)
{
    const int total = Split(value).MSec;
    millisecond = total % 1000;
    second = total / 1000 % 60;
    minute = total / 60000 % 60;
    hour = total / 3600000;
}

TDateTime ComposeDateTime(TDateTime date, TDateTime time)
{
    const double day = std::trunc(date.Days());
    const double fraction = TimeOf(time).Days() + std::trunc(std::fabs(time.Days()));
    return TDateTime(day < 0 ? day - fraction : day + fraction);
}

TDateTime DateOf(TDateTime value) { return TDateTime(std::trunc(value.Days())); }

TDateTime TimeOf(TDateTime value)
{
    const double days = std::fabs(value.Days());
    return TDateTime(days - std::trunc(days));
}

TDateTime Now() { return TDateTime(QDateTime::currentDateTime()); }

TDateTime Date() { return TDateTime(QDate::currentDate()); }

TDateTime Time() { return TDateTime(QTime::currentTime()); }

int DayOfWeek(TDateTime value) { return DayZero.addDays(Split(value).Day).dayOfWeek() % 7 + 1; }

bool IsLeapYear(int year) { return QDate::isLeapYear(year); }

int DaysInMonth(int year, int month) { return QDate(year, month, 1).daysInMonth(); }

TDateTime IncMonth(TDateTime value, int months)
{
    const TDayAndTime parts = Split(value);
    const QDate date = DayZero.addDays(parts.Day);
    const qint64 total = qint64(date.year()) * 12 + date.month() - 1 + months;
    const int year = int(total / 12);
    const int month = int(total % 12) + 1;
    // NOTE: a total below one year is refused by EncodeDate, which names the date.
    const int day = total < 12 ? date.day() : std::min(date.day(), DaysInMonth(year, month));
    return ComposeDateTime(EncodeDate(year, month, day), TDateTime(double(parts.MSec) / MSecsPerDay));
}

} // namespace Korvane
