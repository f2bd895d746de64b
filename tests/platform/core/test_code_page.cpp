// SPDX-License-Identifier: MIT
#include "platform/core/Chinese.h"
#include "platform/core/Cp936.h"

#include <gtest/gtest.h>

#include <thread>

using namespace Korvane;

namespace {

QString S(const char *text) { return QString::fromUtf8(text); }

} // namespace

TEST(Cp936, EncodesAndCounts)
{
    const struct
    {
        const char *Text;
        QByteArray Bytes;
    } rows[] = {
        {"", ""},
        {"abc\t~", "abc\t~"},
        {"中文a", "\xD6\xD0\xCE\xC4\x61"},
        {"漢", "\x9D\x68"}, // traditional ones are in the page too
        {"€", "\x80"},
        {"—·，￥", "\xA1\xAA\xA1\xA4\xA3\xAC\xA3\xA4"},
        {"한", "?"},
        {"a😀中", "a?\xD6\xD0"}, // one character in two units
        {"𠀀", "?"},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(Cp936::Encode(S(row.Text)), row.Bytes) << row.Text;
        EXPECT_EQ(Cp936::Length(S(row.Text)), row.Bytes.size()) << row.Text;
        if (!row.Bytes.contains('?')) {
            EXPECT_EQ(Cp936::Decode(row.Bytes), S(row.Text));
        }
    }
}

TEST(Cp936, CountsEveryCharacterAsItEncodesIt)
{
    for (char32_t c = 1; c < 0x11000; c += c < 0x3000 ? 1 : 7) {
        const QString text = QChar::isSurrogate(c) ? QString(QChar(char16_t(c))) : QString::fromUcs4(&c, 1);
        ASSERT_EQ(Cp936::Length(text), Cp936::Encode(text).size()) << std::hex << uint(c);
    }
}

TEST(Cp936, CutsBetweenCharacters)
{
    const struct
    {
        const char *Text;
        int Bytes;
        const char *Left;
    } rows[] = {
        {"abc", 2, "ab"},  {"abc", 9, "abc"}, {"abc", 0, ""},    {"abc", -1, ""},   {"中文", 4, "中文"},
        {"中文", 3, "中"}, {"中文", 1, ""},   {"a中文", 2, "a"}, {"a😀中", 2, "a😀"}, {"a😀中", 3, "a😀"},
    };
    for (const auto &row : rows)
        EXPECT_EQ(Cp936::Left(S(row.Text), row.Bytes).toStdString(), row.Left) << row.Text << row.Bytes;
}

TEST(Cp936, DecodesBrokenBytes)
{
    const QChar broken(QChar::ReplacementCharacter);
    EXPECT_EQ(Cp936::Decode(QByteArray("a\xD6")), u'a' + QString(broken)); // half a character at the end
    EXPECT_EQ(Cp936::Decode(QByteArray("\xFFz")).right(1), S("z"));
    EXPECT_EQ(Cp936::Decode(QByteArray("a\0b", 3)), QString::fromLatin1("a\0b", 3));
    EXPECT_EQ(Cp936::Decode(QByteArray("\xD6\xD0")), S("中")); // nothing is left over from the call before
}

TEST(Cp936, ServesSeveralThreads)
{
    const auto work = [] {
        for (int i = 0; i < 2000; ++i)
            if (Cp936::Decode(Cp936::Encode(S("中文abc"))) != S("中文abc") || Cp936::Length(S("中€")) != 3)
                return false;
        return true;
    };
    bool results[2] = {false, false};
    {
        std::jthread first([&] { results[0] = work(); });
        std::jthread second([&] { results[1] = work(); });
    }
    EXPECT_TRUE(results[0] && results[1]);
}

TEST(Chinese, ConvertsCharacterByCharacter)
{
    EXPECT_EQ(Simplified(S("漢語，國學與門 abc😀")), S("汉语，国学与门 abc😀"));
    EXPECT_EQ(Traditional(S("汉语，国学与门 abc😀")), S("漢語，國學與門 abc😀"));
    EXPECT_EQ(Simplified(S("中文")), S("中文"));
    // The same counterpart alone and inside of a word.
    EXPECT_EQ(Traditional(S("头发")), Traditional(S("头")) + Traditional(S("发")));
    EXPECT_EQ(Simplified(S("")), S(""));
}
