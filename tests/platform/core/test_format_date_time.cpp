// SPDX-License-Identifier: MIT
#include "platform/core/Exceptions.h"
#include "platform/core/FormatDateTime.h"

#include <gtest/gtest.h>

using namespace Korvane;

TEST(FormatDateTime, WritesEverySpecifier)
{
    // A Thursday, five past three in the afternoon.
    const TDateTime value = EncodeDateTime(2024, 3, 7, 15, 5, 9, 42);
    const struct
    {
        const char *Format;
        const char *Text;
    } rows[] = {
        {"y", "24"},
        {"yy", "24"},
        {"yyy", "2024"},
        {"yyyy", "2024"},
        {"yyyymmdd", "20240307"},
        {"yyyymmddhhmmss", "20240307150509"},
        {"yyyymmddhhnnss", "20240307150509"},
        {"YYYY-MM-DD", "2024-03-07"},
        {"m/d", "3-7"},
        {"mmm mmmm", "三月 三月"},
        {"ddd dddd aaa aaaa", "四 星期四 四 星期四"},
        {"ddddd", "2024-03-07"},
        {"dddddd", "2024年3月7日"},
        {"h:m:s.z", "15:5:9.42"},
        {"hh:mm:ss.zzz", "15:05:09.042"},
        {"hhhh nnnn ssss zzzz", "15 05 09 042"},
        {"mm hh mm yy mm", "03 15 05 24 03"}, // minutes only right after an hour
        {"hh'mm'mm", "15mm05"},
        {"hh点mm分", "15点05分"},
        {"ss mm", "09 03"},
        {"h:nn am/pm", "3:05 pm"},
        {"h:nn AM/PM", "3:05 PM"},
        {"ha/p", "3p"},
        {"ampm h", "下午 3"},
        {"h 'a/p'", "15 a/p"},
        {"h\"o'clock\"", "15o'clock"},
        {"t", "15:05"},
        {"tt", "15:05:09"},
        {"c", "2024-03-07 15:05:09"},
        {"", "2024-03-07 15:05:09"},
        {"yyyy'年'm'月'", "2024年3月"},
        {"'unclosed yyyy", "unclosed yyyy"},
        {"qx!@ a", "qx!@ a"},
    };
    for (const auto &row : rows)
        EXPECT_EQ(FormatDateTime(QString::fromUtf8(row.Format), value).toStdString(), row.Text) << row.Format;
}

TEST(FormatDateTime, CountsHoursToTwelveOnRequest)
{
    const struct
    {
        int Hour;
        const char *Text;
    } rows[] = {{0, "12 AM"}, {1, "1 AM"}, {11, "11 AM"}, {12, "12 PM"}, {13, "1 PM"}, {23, "11 PM"}};
    for (const auto &row : rows)
        EXPECT_EQ(FormatDateTime(QStringLiteral("h AM/PM"), EncodeTime(row.Hour, 0, 0, 0)).toStdString(),
                  row.Text);
}

TEST(FormatDateTime, DefaultTextLeavesMidnightOut)
{
    EXPECT_EQ(DateTimeToStr(EncodeDate(2024, 3, 7)), QStringLiteral("2024-03-07"));
    EXPECT_EQ(DateTimeToStr(TDateTime()), QStringLiteral("1899-12-30"));
    EXPECT_EQ(FormatDateTime(QStringLiteral("yyyymmdd"), TDateTime()), QStringLiteral("18991230"));
    EXPECT_EQ(TimeToStr(TDateTime(0.5)), QStringLiteral("12:00:00"));
}

TEST(FormatDateTime, SettingsThatNameThemselvesComeToAnEnd)
{
    TFormatSettings settings;
    settings.ShortDateFormat = QStringLiteral("yyyy c");
    settings.DateSeparator = QChar();
    EXPECT_EQ(FormatDateTime(QStringLiteral("c/d"), EncodeDate(2024, 3, 7), settings),
              QStringLiteral("2024 7"));
}

TEST(FormatDateTime, RefusesNumbersOutOfRangeOnlyWhereTheyShow)
{
    EXPECT_THROW(FormatDateTime(QStringLiteral("yy"), TDateTime(1e10)), EConvertError);
    EXPECT_THROW(FormatDateTime(QStringLiteral("hh"), TDateTime(1e10)), EConvertError);
    EXPECT_EQ(FormatDateTime(QStringLiteral("'x'"), TDateTime(1e10)), QStringLiteral("x"));
}

TEST(StrToDateTime, ReadsWhatItWrites)
{
    for (const double days : {45358.0, 45358.5, 1.0, -1.25, 2958465.0}) {
        const TDateTime value(days);
        EXPECT_EQ(StrToDateTime(DateTimeToStr(value)), value) << days;
    }
}

TEST(StrToDateTime, TakesTheOrderFromTheSettings)
{
    const int year = QDate::currentDate().year();
    const struct
    {
        const char *Format;
        const char *Text;
        QDate Date;
    } rows[] = {
        {"yyyy-MM-dd", "2024-3-7", {2024, 3, 7}},
        {"yyyy-MM-dd", " 2024 - 03 - 07 ", {2024, 3, 7}},
        {"dd-MM-yyyy", "7-3-2024", {2024, 3, 7}},
        {"M-d-yy", "3-7-2024", {2024, 3, 7}},
        {"yyyy-MM-dd", "3-7", {year, 3, 7}},
        {"dd-MM-yyyy", "7-3", {year, 3, 7}},
        {"yyyy-MM-dd", "0024-3-7", {24, 3, 7}},
        {"yyyy-MM-dd", "2024-2-30", {}},
        {"yyyy-MM-dd", "2024/3/7", {}},
        {"yyyy-MM-dd", "2024-3-7x", {}},
        {"yyyy-MM-dd", "2024-3-7 10:00", {}},
        {"yyyy-MM-dd", "2024-", {}},
        {"yyyy-MM-dd", "", {}},
        {"yyyy-MM-dd", "99999999999-1-1", {}},
    };
    for (const auto &row : rows) {
        TFormatSettings settings;
        settings.ShortDateFormat = QString::fromLatin1(row.Format);
        TDateTime value(77);
        const QString text = QString::fromLatin1(row.Text);
        EXPECT_EQ(TryStrToDate(text, value, settings), row.Date.isValid()) << row.Text;
        EXPECT_EQ(value, row.Date.isValid() ? TDateTime(row.Date) : TDateTime(77)) << row.Text;
        if (!row.Date.isValid()) {
            EXPECT_THROW(StrToDate(text, settings), EConvertError) << row.Text;
        }
    }
}

TEST(StrToDateTime, PutsShortYearsIntoTheCenturyWindow)
{
    TFormatSettings settings;
    const int base = QDate::currentDate().year() - settings.TwoDigitYearCenturyWindow;
    for (const int year : {base, base + 1, base + 99}) {
        const QString text = QStringLiteral("%1-1-1").arg(year % 100, 2, 10, QChar(u'0'));
        EXPECT_EQ(StrToDate(text, settings), EncodeDate(year, 1, 1)) << year;
    }
}

TEST(StrToDateTime, ReadsTimes)
{
    const struct
    {
        const char *Text;
        int Seconds; ///< -1: refused
    } rows[] = {
        {"10", 36000},
        {"10:30", 37800},
        {"10:30:05", 37805},
        {" 10 : 30 ", 37800},
        {"下午 3:05", 54300},
        {"3:05 下午", 54300},
        {"3:05pm", 54300},
        {"12:00 am", 0},
        {"12 PM", 43200},
        {"24:00", 86400},
        {"13:00 pm", -1},
        {"0:30 am", -1},
        {"10:60", -1},
        {"25", -1},
        {"10:", -1},
        {"10:30:05:1", -1},
        {"", -1},
        {"abc", -1},
    };
    for (const auto &row : rows) {
        TDateTime value(77);
        EXPECT_EQ(TryStrToTime(QString::fromUtf8(row.Text), value), row.Seconds >= 0) << row.Text;
        EXPECT_DOUBLE_EQ(value.Days(), row.Seconds < 0 ? 77 : row.Seconds / 86400.0) << row.Text;
    }
    EXPECT_EQ(StrToTime(QStringLiteral("1:02:03.004")), EncodeTime(1, 2, 3, 4));
    EXPECT_EQ(StrToDateTime(QStringLiteral("10:30")), EncodeTime(10, 30, 0, 0));
    EXPECT_THROW(StrToDateTime(QStringLiteral("2024-03-07 25:00")), EConvertError);
    EXPECT_THROW(StrToDateTime(QStringLiteral("2024-03-07 10:00 x")), EConvertError);
}
