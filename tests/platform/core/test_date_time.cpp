// SPDX-License-Identifier: MIT
#include "platform/core/DateTime.h"
#include "platform/core/Exceptions.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace Korvane;

namespace {

QString Iso(TDateTime value)
{
    return value.ToQDate().toString(Qt::ISODate) + u' ' + value.ToQTime().toString(Qt::ISODateWithMs);
}

} // namespace

TEST(DateTime, CountsDaysFrom18991230AndTimeAwayFromZero)
{
    const struct
    {
        double Days;
        const char *Text;
    } rows[] = {
        {1, "1899-12-31 00:00:00.000"},
        {2.5, "1900-01-01 12:00:00.000"},
        {0.25, "1899-12-30 06:00:00.000"},
        {-0.25, "1899-12-30 06:00:00.000"},
        {-1.25, "1899-12-29 06:00:00.000"},
        {45358.999999999, "2024-03-08 00:00:00.000"}, // rounds into the next day
        {36585, "2000-02-29 00:00:00.000"},
        {-693593, "0001-01-01 00:00:00.000"},
        {2958465.5, "9999-12-31 12:00:00.000"},
    };
    for (const auto &row : rows)
        EXPECT_EQ(Iso(TDateTime(row.Days)).toStdString(), row.Text) << row.Days;
}

TEST(DateTime, GoesToQtAndBack)
{
    for (const QDate date : {QDate(2024, 3, 7), QDate(1899, 12, 1), QDate(1, 1, 2), QDate(1700, 2, 28)}) {
        const QDateTime value(date, QTime(23, 59, 59, 999));
        EXPECT_EQ(TDateTime(value).ToQDateTime(), value) << date.toString().toStdString();
    }
    EXPECT_FALSE(TDateTime().ToQDateTime().isValid());
    EXPECT_FALSE(TDateTime().ToQDate().isValid());
    EXPECT_EQ(TDateTime().ToQTime(), QTime(0, 0));
    EXPECT_TRUE(TDateTime(QDateTime()).IsEmpty());
    // The wall clock counts, not the moment.
    EXPECT_EQ(TDateTime(QDateTime(QDate(2024, 3, 7), QTime(8, 0), Qt::UTC)),
              EncodeDateTime(2024, 3, 7, 8, 0, 0, 0));
}

TEST(DateTime, RefusesWhatIsOutOfRange)
{
    for (const double days : {2958466.0, 2958465.9999999999, -693594.0, 1e300, -1e300,
                              std::numeric_limits<double>::infinity(), std::nan("")}) {
        int part = 0;
        EXPECT_THROW(DecodeDate(TDateTime(days), part, part, part), EConvertError) << days;
        EXPECT_THROW(DecodeTime(TDateTime(days), part, part, part, part), EConvertError) << days;
        EXPECT_THROW(TDateTime(days).ToQDate(), EConvertError) << days;
    }
}

TEST(DateTime, EncodesOnlyDaysThatExist)
{
    const struct
    {
        int Year, Month, Day;
        double Days; ///< NaN: refused
    } rows[] = {{1899, 12, 30, 0},        {2024, 3, 7, 45358}, {2000, 2, 29, 36585}, {1, 1, 1, -693593},
                {1900, 2, 29, NAN},       {2023, 2, 29, NAN},  {2024, 4, 31, NAN},   {2024, 13, 1, NAN},
                {2024, 0, 1, NAN},        {2024, 1, 0, NAN},   {0, 1, 1, NAN},       {10000, 1, 1, NAN},
                {9999, 12, 31, 2958465.0}};
    for (const auto &row : rows) {
        TDateTime value(77);
        const bool exists = !std::isnan(row.Days);
        EXPECT_EQ(TryEncodeDate(row.Year, row.Month, row.Day, value), exists)
            << row.Year << row.Month << row.Day;
        EXPECT_EQ(value.Days(), exists ? row.Days : 77);
        if (!exists) {
            EXPECT_THROW(EncodeDate(row.Year, row.Month, row.Day), EConvertError);
        }
    }
}

TEST(DateTime, EncodesOnlyTimesThatExist)
{
    EXPECT_EQ(EncodeTime(6, 0, 0, 0).Days(), 0.25);
    EXPECT_EQ(EncodeTime(24, 0, 0, 0).Days(), 1);
    EXPECT_THROW(EncodeTime(24, 0, 0, 1), EConvertError);
    EXPECT_THROW(EncodeTime(0, 60, 0, 0), EConvertError);
    EXPECT_THROW(EncodeTime(0, 0, 60, 0), EConvertError);
    EXPECT_THROW(EncodeTime(0, 0, 0, 1000), EConvertError);
    EXPECT_THROW(EncodeTime(-1, 0, 0, 0), EConvertError);
    for (const int msec : {1, 999, 86399999, 12345678}) { // every millisecond survives
        int hour, minute, second, rest;
        DecodeTime(EncodeDate(2024, 3, 7) + double(msec) / MSecsPerDay, hour, minute, second, rest);
        EXPECT_EQ(((hour * 60 + minute) * 60 + second) * 1000 + rest, msec);
    }
}

TEST(DateTime, PartsAndComposesOnBothSidesOfZero)
{
    for (const double days : {45358.75, -3.75, 0.75}) {
        const TDateTime value(days);
        EXPECT_EQ(TimeOf(value).Days(), 0.75);
        EXPECT_EQ(ComposeDateTime(DateOf(value), TimeOf(value)), value);
    }
    EXPECT_EQ(TDateTime(5) - TDateTime(3.5), 1.5);
    EXPECT_LT(TDateTime(1), TDateTime(1) + 0.5);
}

TEST(DateTime, CountsWeekdaysFromSunday)
{
    EXPECT_EQ(DayOfWeek(EncodeDate(2024, 3, 3)), 1);
    EXPECT_EQ(DayOfWeek(EncodeDate(2024, 3, 9)), 7);
    EXPECT_EQ(DayOfWeek(TDateTime(0.5)), 7);
    EXPECT_EQ(DayOfWeek(EncodeDate(1899, 12, 25)), 2);
}

TEST(DateTime, MovesByMonthsAndKeepsTheTime)
{
    const struct
    {
        QDate From;
        int Months;
        QDate To;
    } rows[] = {{{2024, 1, 31}, 1, {2024, 2, 29}},   {{2023, 1, 31}, 1, {2023, 2, 28}},
                {{2024, 3, 31}, -1, {2024, 2, 29}},  {{2024, 12, 15}, 1, {2025, 1, 15}},
                {{2024, 1, 15}, -1, {2023, 12, 15}}, {{2024, 2, 29}, 12, {2025, 2, 28}},
                {{1900, 1, 31}, -2, {1899, 11, 30}}};
    for (const auto &row : rows)
        EXPECT_EQ(IncMonth(TDateTime(row.From, QTime(6, 30)), row.Months), TDateTime(row.To, QTime(6, 30)))
            << row.From.toString(Qt::ISODate).toStdString() << " " << row.Months;
    EXPECT_THROW(IncMonth(EncodeDate(1, 1, 1), -1), EConvertError);
    EXPECT_THROW(IncMonth(EncodeDate(9999, 12, 1), 1), EConvertError);
    EXPECT_EQ(DaysInMonth(1900, 2), 28);
    EXPECT_EQ(DaysInMonth(2024, 13), 0);
}
