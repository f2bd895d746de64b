// SPDX-License-Identifier: MIT
#include "platform/core/Exceptions.h"
#include "platform/core/Numbers.h"

#include <gtest/gtest.h>

#include <optional>

using namespace Korvane;

TEST(Numbers, ReadsIntegers)
{
    using Result = std::optional<qint64>;
    const struct
    {
        const char *Text;
        Result Small, Big;
    } rows[] = {
        {"0", 0, 0},
        {"  42", 42, 42},
        {"+7", 7, 7},
        {"-007", -7, -7},
        {"2147483647", 2147483647, 2147483647},
        {"2147483648", {}, 2147483648},
        {"-2147483648", -2147483647 - 1, -2147483648LL},
        {"-2147483649", {}, -2147483649LL},
        {"9223372036854775807", {}, 9223372036854775807LL},
        {"9223372036854775808", {}, {}},
        {"-9223372036854775808", {}, Result(-9223372036854775807LL - 1)},
        {"99999999999999999999999", {}, {}},
        {"$ff", 255, 255},
        {"0xFF", 255, 255},
        {"xFF", 255, 255},
        {"-$10", -16, -16},
        {"$FFFFFFFF", -1, 4294967295LL},
        {"$1FFFFFFFF", {}, 8589934591LL},
        {"$FFFFFFFFFFFFFFFF", {}, -1},
        {"$0000000000000000000001", 1, 1},
        {"", {}, {}},
        {" ", {}, {}},
        {"-", {}, {}},
        {"$", {}, {}},
        {"0x", {}, {}},
        {"$g", {}, {}},
        {"1 ", {}, {}},
        {"1.0", {}, {}},
        {"- 1", {}, {}},
        {"--1", {}, {}},
        {"\t1", {}, {}},
        {"1a", {}, {}},
        {"１", {}, {}},
    };
    for (const auto &row : rows) {
        const QString text = QString::fromUtf8(row.Text);
        int small = 77;
        qint64 big = 77;
        EXPECT_EQ(TryStrToInt(text, small), row.Small.has_value()) << row.Text;
        EXPECT_EQ(small, row.Small.value_or(77)) << row.Text;
        EXPECT_EQ(TryStrToInt64(text, big), row.Big.has_value()) << row.Text;
        EXPECT_EQ(big, row.Big.value_or(77)) << row.Text;
        EXPECT_EQ(StrToIntDef(text, -3), row.Small.value_or(-3)) << row.Text;
        if (!row.Small) {
            EXPECT_THROW(StrToInt(text), EConvertError) << row.Text;
        }
        if (!row.Big) {
            EXPECT_THROW(StrToInt64(text), EConvertError) << row.Text;
        }
    }
}

TEST(Numbers, ReadsFloats)
{
    const struct
    {
        const char *Text;
        std::optional<double> Value;
    } rows[] = {
        {"1.5", 1.5},
        {" -2 ", -2},
        {"+.5", 0.5},
        {"5.", 5},
        {"1e3", 1000},
        {"1E-3", 0.001},
        {"1e+2", 100},
        {"1e-400", 0},
        {"0.1", 0.1},
        {"1e400", {}},
        {"", {}},
        {".", {}},
        {"-", {}},
        {"1e", {}},
        {"e5", {}},
        {"1,5", {}},
        {"1 2", {}},
        {"INF", {}},
        {"nan", {}},
        {"0x10", {}},
        {"1.2.3", {}},
        {"\t1", {}},
        {"1e5.0", {}},
        {"1e99999999999", {}},
        {"1e-99999999999", 0},
        {"-1e400", {}},
    };
    for (const auto &row : rows) {
        const QString text = QString::fromUtf8(row.Text);
        double value = 77;
        EXPECT_EQ(TryStrToFloat(text, value), row.Value.has_value()) << row.Text;
        EXPECT_EQ(value, row.Value.value_or(77)) << row.Text;
        EXPECT_EQ(StrToFloatDef(text, -3), row.Value.value_or(-3)) << row.Text;
        if (!row.Value) {
            EXPECT_THROW(StrToFloat(text), EConvertError) << row.Text;
        }
    }
    // The size counts, not the look of the exponent.
    EXPECT_EQ(StrToFloatDef(QString(400, u'1') + QStringLiteral("e-399"), -3), 1.1111111111111112);
    EXPECT_EQ(StrToFloatDef(QString(400, u'1') + QStringLiteral("e-5"), -3), -3);
    EXPECT_EQ(StrToFloatDef(QStringLiteral("0.") + QString(400, u'0') + u'1', -3), 0);
}

TEST(Numbers, SayWhatIsWrong)
{
    try {
        StrToInt(QStringLiteral("abc"));
        FAIL();
    } catch (const EConvertError &error) {
        EXPECT_STREQ(error.what(), "'abc' 不是有效的整数值");
    }
    try {
        StrToFloat(QStringLiteral("abc"));
        FAIL();
    } catch (const EConvertError &error) {
        EXPECT_STREQ(error.what(), "'abc' 不是有效的浮点数值");
    }
}

TEST(Numbers, WritesHexadecimal)
{
    EXPECT_EQ(IntToHex(255, 4), QStringLiteral("00FF"));
    EXPECT_EQ(IntToHex(-1, 0), QStringLiteral("FFFFFFFF"));
    EXPECT_EQ(IntToHex(qint64(-1), 0), QStringLiteral("FFFFFFFFFFFFFFFF"));
    EXPECT_EQ(IntToHex(0x12345, 2), QStringLiteral("12345"));
}
