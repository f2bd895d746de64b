// SPDX-License-Identifier: MIT
#include "general/DateRoutines.h"

#include "platform/core/Exceptions.h"

#include <gtest/gtest.h>

using namespace Korvane;
using namespace Qt::StringLiterals;

namespace {

using Reader = TDateTime (*)(const QString &);

void ExpectRefused(Reader read, const QStringList &texts)
{
    for (const QString &text : texts)
        EXPECT_THROW(read(text), EConvertError) << qPrintable(text);
}

} // namespace

TEST(DateRoutines, digits_are_read_by_their_places)
{
    EXPECT_EQ(StrToDateA(u"20240229"_s), EncodeDate(2024, 2, 29));
    EXPECT_EQ(StrToDateA(u"20240229 and more"_s), EncodeDate(2024, 2, 29));
    EXPECT_EQ(StrToDateA(u"2024 3 7"_s), EncodeDate(2024, 3, 7)); // blanks before a digit
    EXPECT_EQ(StrToDateB(u"20240229235958"_s), EncodeDateTime(2024, 2, 29, 23, 59, 58, 0));
    EXPECT_EQ(StrToDateB(u"18000101060000"_s), EncodeDateTime(1800, 1, 1, 6, 0, 0, 0));
    EXPECT_EQ(StrToDateC(u"063015"_s), EncodeTime(6, 30, 15, 0));
    EXPECT_EQ(StrToDateC(u"000000"_s), TDateTime());
}

TEST(DateRoutines, what_is_no_number_day_or_time_is_refused)
{
    ExpectRefused(StrToDateA, {u""_s, u"2024"_s, u"2024-2-9"_s, u"20230229"_s, u"20241301"_s, u"00000101"_s,
                               u"二〇二四0101"_s});
    ExpectRefused(StrToDateB, {u"20240101"_s, u"20240101236000"_s, u"20240101250000"_s, u"202401011200xx"_s,
                               u"20230229000000"_s});
    ExpectRefused(StrToDateC, {u""_s, u"0630"_s, u"063060"_s, u"06:30:15"_s});
}

TEST(DateRoutines, written_dates_read_back)
{
    const struct
    {
        int Year, Month, Day;
        QString Text;
    } rows[] = {
        {1000, 1, 1, u"10000101"_s},  {1899, 12, 29, u"18991229"_s}, {1899, 12, 30, u"18991230"_s},
        {2000, 2, 29, u"20000229"_s}, {2024, 12, 31, u"20241231"_s}, {9999, 12, 31, u"99991231"_s},
    };
    for (const auto &row : rows) {
        const TDateTime date = EncodeDate(row.Year, row.Month, row.Day);
        EXPECT_EQ(DateToStrA(date), row.Text);
        EXPECT_EQ(StrToDateA(row.Text), date);
    }
    EXPECT_EQ(DateToStrA(EncodeDateTime(2024, 2, 29, 23, 59, 59, 0)), u"20240229"_s);
}
