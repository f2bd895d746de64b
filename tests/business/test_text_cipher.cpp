// SPDX-License-Identifier: MIT
#include "business/TextCipher.h"
#include "platform/core/Exceptions.h"

#include <gtest/gtest.h>

using namespace Korvane;
using namespace Qt::StringLiterals;

TEST(TextCipher, hides_under_the_fixed_key)
{
    const struct
    {
        QString Text, Cipher;
    } rows[] = {
        {{}, {}},
        {u"A"_s, u"1D"_s},                         // 41 xor 5C
        {u"\\"_s, u"00"_s},                        // a byte that comes out as 0
        {u"AAAAAAAAA"_s, u"1DA066F17BD7955E1D"_s}, // the key begins anew behind eight bytes
        {u"编码"_s, u"ED01E55B"_s},                // B1 E0 C2 EB
    };
    for (const auto &row : rows) {
        EXPECT_EQ(EncryptString(row.Text), row.Cipher) << qPrintable(row.Text);
        EXPECT_EQ(DecryptString(row.Cipher), row.Text) << qPrintable(row.Cipher);
    }
    EXPECT_EQ(DecryptString(u"1d"_s), u"A"_s);
    EXPECT_EQ(DecryptString(u"1DA"_s), u"A"_s) << "an odd last digit is ignored";
    for (const QString &text : {u"1G"_s, u"码码"_s, u"- 1"_s, u"x1"_s})
        EXPECT_THROW(DecryptString(text), EConvertError) << qPrintable(text);
}

TEST(TextCipher, hides_under_a_key)
{
    EXPECT_EQ(EncryptString(u"AB"_s, u"k"_s), u"2A29"_s);
    EXPECT_EQ(EncryptString(u"AB"_s, u"key"_s), EncryptString(u"AB"_s, u"yek"_s))
        << "the order has no effect";
    EXPECT_EQ(EncryptString(u"AB"_s, u"kk"_s), u"4142"_s);
    for (const QString &key : {u"k"_s, u"钥匙"_s, u"a long key"_s})
        EXPECT_EQ(DecryptString(EncryptString(u"订单A1"_s, key), key), u"订单A1"_s) << qPrintable(key);
    EXPECT_EQ(EncryptString(u"AB"_s, {}), QString());
    EXPECT_EQ(DecryptString(u"4142"_s, {}), u"AB"_s) << "not the reverse of that";
    EXPECT_EQ(DecryptString(u"41 42"_s, {}), u"AB"_s);
    EXPECT_NE(DecryptString(u"4a"_s, {}), u"J"_s) << "digits in small letters read as something else";
}
