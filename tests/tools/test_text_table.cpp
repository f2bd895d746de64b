// SPDX-License-Identifier: MIT
#include "tools/korvane/TextTable.h"

#include "platform/core/Exceptions.h"

#include <gtest/gtest.h>

using namespace Korvane;
using namespace Qt::StringLiterals;

namespace {

struct WidthRow
{
    QString Text;
    int Width;
};

} // namespace

TEST(TextTable, wide_characters_take_two_columns_and_combining_marks_none)
{
    const WidthRow rows[] = {
        {QString(), 0},
        {u"abc"_s, 3},
        {u"螺丝"_s, 4},
        {u"Ａ１，"_s, 6},             // full-width forms
        {u"ｱｲ"_s, 2},                 // half-width forms
        {u"　"_s, 2},                 // ideographic blank
        {u"e\u0301a\u20DD"_s, 2},     // accent, enclosing circle
        {u"a\u200Bb"_s, 2},           // blank of no width
        {u"\u00AD"_s, 1},             // soft hyphen
        {u"\u1112\u1161\u11AB"_s, 2}, // one Korean syllable of three letters
        {u"𠀀"_s, 2},                 // beyond the first plane
        {u"😀"_s, 2},
        {u"é€"_s, 2},
    };
    for (const WidthRow &row : rows)
        EXPECT_EQ(TTextTable::DisplayWidth(row.Text), row.Width) << qPrintable(row.Text);
}

TEST(TextTable, what_would_disturb_the_picture_is_escaped)
{
    const QString rows[][2] = {
        {u"plain \\n 文字"_s, u"plain \\n 文字"_s},
        {u"a\r\nb\tc"_s, u"a\\r\\nb\\tc"_s},
        {u"\x1b[31m"_s, u"\\x1b[31m"_s},
        {QString(QChar(0)), u"\\x00"_s},
        {u"\x7F\u0085"_s, u"\\x7f\\x85"_s},
        {u"\u2028\u2029"_s, u"\\u2028\\u2029"_s},
        {u"a\u202Eb\u2066"_s, u"a\\u202eb\\u2066"_s},
        {QString(QChar(0xD842)) + u'x', u"\\ud842x"_s},
        {u"𠀀"_s, u"𠀀"_s},
    };
    for (const auto &row : rows)
        EXPECT_EQ(TTextTable::Escaped(row[0]), row[1]);
}

TEST(TextTable, prints_aligned_rows)
{
    TTextTable table;
    table.AddColumn(u"CODE"_s);
    table.AddColumn(u"数量"_s, TTextTable::Alignment::Right);
    table.AddColumn(u"品名"_s);
    table.AddRow({u"P1"_s, u"12.5"_s, u"螺丝"_s});
    table.AddRow({u"螺母A"_s, u"1234567"_s, u"a\nb"_s});
    table.AddRow({u""_s, QString(), u""_s});
    EXPECT_EQ(table.RowCount(), 3);
    EXPECT_EQ(table.ToText(), u"CODE  |    数量 | 品名\n"
                              "------+---------+-----\n"
                              "P1    |    12.5 | 螺丝\n"
                              "螺母A | 1234567 | a\\nb\n"
                              "      |    NULL | \n"_s);
}

TEST(TextTable, headers_stand_alone_when_there_are_no_rows)
{
    TTextTable table;
    EXPECT_EQ(table.ToText(), QString());
    table.AddColumn(u"N"_s, TTextTable::Alignment::Right);
    EXPECT_EQ(table.ToText(), u"N\n-\n"_s);
    EXPECT_THROW(table.AddRow({}), Exception);
    EXPECT_THROW(table.AddRow({u"1"_s, u"2"_s}), Exception);
    EXPECT_EQ(table.RowCount(), 0);
}
