// SPDX-License-Identifier: MIT
#include "general/TextRoutines.h"

#include <gtest/gtest.h>

using namespace Korvane;
using namespace Qt::StringLiterals;

TEST(TextRoutines, AddSpaces_fills_to_bytes_of_the_chinese_code_page)
{
    const struct
    {
        QString Text;
        int Count;
        QString Pad;
        bool AtLeft;
        QString Result;
    } rows[] = {
        {u"ab"_s, 5, u" "_s, false, u"ab   "_s},    {u"ab"_s, 5, u" "_s, true, u"   ab"_s},
        {u"abcde"_s, 5, u" "_s, false, u"abcde"_s}, {u"abcdef"_s, 5, u" "_s, false, u"abcdef"_s},
        {u"7"_s, 3, u"0"_s, true, u"007"_s},        {u"编码"_s, 6, u" "_s, false, u"编码  "_s},
        {u"编码"_s, 4, u" "_s, false, u"编码"_s},   {u"编a"_s, 4, u"."_s, true, u".编a"_s},
        {u"ab"_s, 4, u"xy"_s, false, u"abxyxy"_s}, // added whole, so it overshoots
        {u"ab"_s, 4, u"码"_s, true, u"码码ab"_s},   {u""_s, 2, u" "_s, false, u"  "_s},
        {u"ab"_s, 5, u""_s, false, u"ab"_s},        {u"ab"_s, -1, u" "_s, false, u"ab"_s},
        {u"😀"_s, 3, u"."_s, false, u"😀.."_s}, // outside of the code page: one byte
    };
    for (const auto &row : rows)
        EXPECT_EQ(AddSpaces(row.Text, row.Count, row.Pad, row.AtLeft), row.Result) << qPrintable(row.Result);
}

TEST(TextRoutines, repeated_text_is_empty_for_no_count)
{
    EXPECT_EQ(CopyStr(u"甲b"_s, 3), u"甲b甲b甲b"_s);
    EXPECT_EQ(CopyStr(u"ab"_s, 0), u""_s);
    EXPECT_EQ(CopyStr(u"ab"_s, -2), u""_s);
    EXPECT_EQ(GetSpaces(3), u"   "_s);
    EXPECT_EQ(GetSpaces(0), u""_s);
    EXPECT_EQ(GetSpaces(-1), u""_s);
}

TEST(TextRoutines, Split_keeps_its_rules)
{
    const struct
    {
        QString Text;
        QString Delimiter;
        QStringList Pieces;
    } rows[] = {
        {u",a1,b2,"_s, u","_s, {u"a1"_s, u"b2"_s}},
        {u"ab,cd"_s, u","_s, {u"ab"_s, u"cd"_s}},
        {u"a,,bc"_s, u","_s, {u"a"_s, u"bc"_s}},
        {u"a,b,cd"_s, u","_s, {u"a"_s, u"b"_s, u"cd"_s}},
        // A last piece of one character is lost, a Chinese one too.
        {u"ab,c"_s, u","_s, {u"ab"_s}},
        {u"c"_s, u","_s, {}},
        {u"c,"_s, u","_s, {}},
        {u"ab,编"_s, u","_s, {u"ab"_s}},
        {u"编,名称"_s, u","_s, {u"编"_s, u"名称"_s}},
        {u"ab"_s, u","_s, {u"ab"_s}},
        // At each end one delimiter is taken off; of two, one is left to end an empty piece.
        {u",,ab,,"_s, u","_s, {u"ab"_s}},
        {u"ab,c,,"_s, u","_s, {u"ab"_s, u"c"_s}},
        {u","_s, u","_s, {}},
        {u",,"_s, u","_s, {}},
        {u""_s, u","_s, {}},
        {u"  "_s, u","_s, {}},
        {u"ab,cd"_s, u""_s, {}},
        {u"ab,cd"_s, u" "_s, {}},
        // Ends are trimmed, pieces and blanks within are not.
        {u"\t ab , cd \r\n"_s, u" , "_s, {u"ab "_s, u" cd"_s}},
        {u"　ab,cd"_s, u","_s, {u"　ab"_s, u"cd"_s}},
        // A longer delimiter never matches.
        {u"ab::cd"_s, u"::"_s, {u"ab::cd"_s}},
        {u"::ab::"_s, u"::"_s, {u"::ab::"_s}},
        {u"x"_s, u"::"_s, {}},
    };
    for (const auto &row : rows)
        EXPECT_EQ(Split(row.Text, row.Delimiter), row.Pieces) << qPrintable(row.Text);
}

TEST(TextRoutines, the_last_occurrence_is_found_and_replaced_exactly)
{
    const struct
    {
        QString Text;
        QString Part;
        int Position;
        QString ReplacedByDash;
    } rows[] = {
        {u"abcabc"_s, u"bc"_s, 5, u"abca-"_s},
        {u"a.b.c"_s, u"."_s, 4, u"a.b-c"_s},
        {u"abc"_s, u"x"_s, -1, u"abc"_s},
        {u"abc"_s, u"B"_s, -1, u"abc"_s},
        {u"abc"_s, u""_s, -1, u"abc"_s},
        {u""_s, u"a"_s, -1, u""_s},
        {u""_s, u""_s, -1, u""_s},
        {u"aaa"_s, u"aa"_s, 2, u"a-"_s},
        {u"abc"_s, u"abc"_s, 1, u"-"_s},
        {u"ab"_s, u"abc"_s, -1, u"ab"_s},
        {u"编码,名称,"_s, u","_s, 6, u"编码,名称-"_s},
        {u"e\u0301"_s, u"\u00E9"_s, -1, u"e\u0301"_s}, // looks equal and is not
    };
    for (const auto &row : rows) {
        EXPECT_EQ(RightPosEx(row.Text, row.Part), row.Position) << qPrintable(row.Text);
        EXPECT_EQ(ReplaceRight(row.Text, row.Part, u"-"_s), row.ReplacedByDash) << qPrintable(row.Text);
    }
    EXPECT_EQ(ReplaceRight(u"a,b,\n"_s, u","_s, u""_s), u"a,b\n"_s);
}

TEST(TextRoutines, chinese_is_converted_both_ways_and_keeps_its_length)
{
    EXPECT_EQ(GBCht2Chs(u"訂單編號ABC, 數量12"_s), u"订单编号ABC, 数量12"_s);
    EXPECT_EQ(GBChs2Cht(u"订单编号ABC, 数量12"_s), u"訂單編號ABC, 數量12"_s);
    EXPECT_EQ(GBCht2Chs(u""_s), u""_s);
}
