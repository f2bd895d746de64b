// SPDX-License-Identifier: MIT
#include "platform/core/FormatFloat.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace Korvane;

TEST(FormatFloat, FillsPictures)
{
    const struct
    {
        const char *Format;
        double Value;
        const char *Text;
    } rows[] = {
        {"0", 0, "0"},
        {"0", 0.5, "1"},
        {"0", -0.5, "-1"},
        {"0", 2.5, "3"}, // not to the even neighbour
        {"0.00", 2.675, "2.68"},
        {"0.00", 1.005, "1.01"},
        {"0.00", -1.005, "-1.01"},
        {"0.00", 1.0049999999999, "1.00"},
        {"0.00", 9.995, "10.00"},
        {"0.00", 0.05, "0.05"},
        {"0.00", 0.004, "0.00"},
        {"0.00", -0.004, "0.00"}, // no sign on what rounds to zero
        {"#.##", 0.05, ".05"},
        {"#.##", 0, ""},
        {"#.##", 1, "1"},
        {"#.##", 1.5, "1.5"},
        {"0.##", 0, "0"},
        {"0.#0", 1.5, "1.50"},
        {"0.", 1, "1"},
        {".00", 12.3, "12.30"},
        {"000", 7, "007"},
        {"000", 12345, "12345"},
        {"#00#", 7, "007"}, // zeros from the leftmost 0 to the point
        {"#,##0", 1234567, "1,234,567"},
        {"#,##0.00", 1234.5, "1,234.50"},
        {"#,##0", 999.5, "1,000"},
        {",0", 123, "123"},
        {"0,000", 7, "0,007"},
        {"0-00-00", 12345, "1-23-45"},
        {"00/00", 12345, "123/45"},
        {"$0", -7, "-$7"},
        {"0'0'0", 12, "102"},
        {"0.00\"元\"", 3, "3.00元"},
        {"'#'0", 3, "#3"},
        {"0;(0)", -5, "(5)"},
        {"0;(0)", 5, "5"},
        {"0;(0)", 0, "0"},
        {"0;(0)", -0.3, "0"},
        {"0;;'零'", -5, "-5"},
        {"0;;'零'", 0, "零"},
        {"0;(0);'零'", 0.4, "零"},
        {"0;(0);'零'", -0.4, "零"},
        {"0.0;(0);-", 0.4, "0.4"},
        {"';'0;n0", -3, "n3"},
        {"", 1234.5, "1234.5"},
        {";(0)", 1.5, "1.5"},
        {";(0)", -1.5, "(2)"},
        {"0.00E+00", 12345, "1.23E+04"},
        {"0.00E-00", 12345, "1.23E04"},
        {"0.00e+000", 0.00012345, "1.23e-004"},
        {"00.0E+0", 12345, "12.3E+3"},
        {"0.0E+0", 0, "0.0E+0"},
        {"0.0E+0", 9.96, "1.0E+1"},
        {"0.##E+0", -1500, "-1.5E+3"},
        {"0Ex", 5, "5Ex"},
        {"0", 1e17, "100000000000000000"},
        {"0", 1e19, "1E19"},
        {"0.000", 123456789012345.678, "123456789012346.000"}, // 15 digits count
        {"0.00", INFINITY, "INF"},
        {"0.00", -INFINITY, "-INF"},
        {"0.00", NAN, "NAN"},
        {"text", -1, "-text"},
    };
    for (const auto &row : rows)
        EXPECT_EQ(FormatFloat(QString::fromUtf8(row.Format), row.Value).toStdString(), row.Text)
            << row.Format << " of " << row.Value;
}

TEST(FormatFloat, UsesTheSettingsSeparators)
{
    TFormatSettings settings;
    settings.DecimalSeparator = u',';
    settings.ThousandSeparator = u'.';
    EXPECT_EQ(FormatFloat(QStringLiteral("#,##0.00"), 1234.5, settings), QStringLiteral("1.234,50"));
    EXPECT_EQ(FloatToStr(1.5, settings), QStringLiteral("1,5"));
}

TEST(FloatToStr, TakesTheShorterForm)
{
    const struct
    {
        double Value;
        const char *Text;
    } rows[] = {
        {0, "0"},
        {-0.0, "0"},
        {1, "1"},
        {-1.5, "-1.5"},
        {0.1 + 0.2, "0.3"},
        {1.0 / 3, "0.333333333333333"},
        {2.0 / 3, "0.666666666666667"},
        {100, "100"},
        {0.00001, "0.00001"},
        {0.000012345, "0.000012345"},
        {0.000009, "9E-6"},
        {1.5e-7, "1.5E-7"},
        {999999999999999, "999999999999999"},
        {1e15, "1E15"},
        {1e16, "1E16"},
        {-1.25e100, "-1.25E100"},
        {123456789012345678.0, "1.23456789012346E17"},
        {std::numeric_limits<double>::denorm_min(), "4.94065645841247E-324"},
        {std::numeric_limits<double>::max(), "1.79769313486232E308"},
        {9.9999999999999999, "10"},
        {INFINITY, "INF"},
    };
    for (const auto &row : rows)
        EXPECT_EQ(FloatToStr(row.Value).toStdString(), row.Text) << row.Value;
}

TEST(FloatToStrF, WritesEveryForm)
{
    const struct
    {
        double Value;
        TFloatFormat Format;
        int Precision, Digits;
        const char *Text;
    } rows[] = {
        {1234.5678, ffGeneral, 6, 0, "1234.57"},
        {123456, ffGeneral, 3, 2, "1.23E05"},
        {1234.5678, ffExponent, 4, 2, "1.235E+03"},
        {0, ffExponent, 3, 4, "0.00E+0000"},
        {5, ffExponent, 1, 0, "5E+0"},
        {1234.565, ffFixed, 15, 2, "1234.57"},
        {0.005, ffFixed, 15, 2, "0.01"},
        {0.0005, ffFixed, 15, 5, "0.00050"},
        {123456, ffFixed, 4, 2, "1.235E5"}, // more digits than the precision
        {-1234567, ffNumber, 15, 1, "-1,234,567.0"},
        {1234.5, ffCurrency, 15, 2, "￥1,234.50"},
        {-0.001, ffCurrency, 15, 2, "￥0.00"},
        {NAN, ffFixed, 15, 2, "NAN"},
    };
    for (const auto &row : rows)
        EXPECT_EQ(FloatToStrF(row.Value, row.Format, row.Precision, row.Digits).toStdString(), row.Text)
            << row.Value << " " << row.Format;
    EXPECT_EQ(CurrToStr(922337203685477.5807), QStringLiteral("922337203685477.625")); // what a double holds
    EXPECT_EQ(CurrToStr(1.00005), QStringLiteral("1.0001"));
}

TEST(FloatToStrF, PlacesTheCurrencyAsSet)
{
    const char *const positive[] = {"￥1.00", "1.00￥", "￥ 1.00", "1.00 ￥"};
    const char *const negative[] = {"(￥1.00)", "-￥1.00",  "￥-1.00",   "￥1.00-",  "(1.00￥)", "-1.00￥",
                                    "1.00-￥",  "1.00￥-",  "-1.00 ￥",  "-￥ 1.00", "1.00 ￥-", "￥ 1.00-",
                                    "￥ -1.00", "1.00- ￥", "(￥ 1.00)", "(1.00 ￥)"};
    TFormatSettings settings;
    for (int i = 0; i < 4; ++i) {
        settings.CurrencyFormat = i;
        EXPECT_EQ(FloatToStrF(1, ffCurrency, 15, 2, settings).toStdString(), positive[i]);
    }
    for (int i = 0; i < 16; ++i) {
        settings.NegCurrFormat = i;
        EXPECT_EQ(FloatToStrF(-1, ffCurrency, 15, 2, settings).toStdString(), negative[i]);
    }
}
