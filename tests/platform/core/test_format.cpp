// SPDX-License-Identifier: MIT
#include "platform/core/Exceptions.h"
#include "platform/core/Format.h"

#include <gtest/gtest.h>

#include <limits>

using namespace Korvane;

namespace {

QString S(const char *text) { return QString::fromUtf8(text); }

QString FailureOf(const QString &format, const QVariantList &args)
{
    try {
        return Format(format, args);
    } catch (const EConvertError &error) {
        return error.Message();
    }
}

} // namespace

TEST(Format, WritesEveryKind)
{
    const qint64 big = std::numeric_limits<qint64>::min();
    const struct
    {
        const char *Format;
        QVariantList Args;
        const char *Text;
    } rows[] = {
        {"", {}, ""},
        {"100%%", {}, "100%"},
        {"%s-%S", {S("中文"), QChar(u'x')}, "中文-x"},
        {"[%5s][%-5s][%2s]", {S("ab"), S("ab"), S("abc")}, "[   ab][ab   ][abc]"},
        {"[%.2s][%5.1s][%.9s]", {S("abc"), S("abc"), S("abc")}, "[ab][    a][abc]"},
        {"[%s][%3s]", {QVariant(), QVariant::fromValue(nullptr)}, "[][   ]"},
        {"%d %D", {42, -7}, "42 -7"},
        {"[%5d][%-5d]", {42, 42}, "[   42][42   ]"},
        {"%.4d %.4d %.d %.0d", {42, -42, 42, 0}, "0042 -0042 42 0"},
        {"%.2d", {123}, "123"},
        {"%8.4d", {-42}, "   -0042"},
        {"%d", {big}, "-9223372036854775808"},
        {"%d", {std::numeric_limits<quint64>::max()}, "18446744073709551615"},
        {"%u %u", {-1, qint64(-1)}, "4294967295 18446744073709551615"},
        {"%x %x %.4x", {255, -1, 255}, "FF FFFFFFFF 00FF"},
        {"%x", {qint64(-1)}, "FFFFFFFFFFFFFFFF"},
        {"%f %f %.0f %.3f", {1.005, 2, 2.5, -1.0005}, "1.01 2.00 3 -1.001"},
        {"%.1f %.1f", {-0.04, 0.05}, "0.0 0.1"},
        {"%.2f", {12345678901234.57}, "12345678901234.57"},
        {"%n %.1n %.0n", {1234567.891, 999.96, 999.0}, "1,234,567.89 1,000.0 999"},
        {"%m %m %.0m", {1234.5, -1234.5, 7.0}, "￥1,234.50 ￥-1,234.50 ￥7"},
        {"%e", {1234.5}, "1.23450000000000E+003"},
        {"%.3e", {-0.00012345}, "-1.23E-004"},
        {"%g %g %.3g", {0.1, 1e20, 1234.5}, "0.1 1E020 1.23E003"},
        {"%10.2f|%-10.2f|", {3.14159, 3.14159}, "      3.14|3.14      |"},
        {"%*d|%-*d|%.*f", {5, 42, 4, 42, 1, 2.25}, "   42|42  |2.3"},
        {"%1:s %0:s %s", {S("a"), S("b")}, "b a b"},
        {"%1:s %s", {S("a"), S("b"), S("c")}, "b c"},
        {"%0:-4d|", {7}, "7   |"},
        {"select max(%0:s) from %1:s where left(%0:s, %2:d)='%3:s'",
         {S("Code"), S("Orders"), 6, S("202403")},
         "select max(Code) from Orders where left(Code, 6)='202403'"},
        {"%s", {S("a"), S("unused")}, "a"},
    };
    for (const auto &row : rows)
        EXPECT_EQ(FailureOf(S(row.Format), row.Args).toStdString(), row.Text) << row.Format;
}

TEST(Format, NamesTheFormatWhenItFails)
{
    const struct
    {
        const char *Format;
        QVariantList Args;
        const char *Message;
    } rows[] = {
        {"%", {1}, "格式 '%' 无效"},
        {"a%y", {1}, "格式 'a%y' 无效"},
        {"%:s", {S("a")}, "格式 '%:s' 无效"},
        {"%5", {1}, "格式 '%5' 无效"},
        {"%d %中", {1, 2}, "格式 '%d %中' 无效"},
        {"%99999999999d", {1}, "格式 '%99999999999d' 无效"},
        {"%*d", {1000000, 1}, "格式 '%*d' 无效"},
        {"%s", {}, "格式 '%s' 缺少参数"},
        {"%d %d", {1}, "格式 '%d %d' 缺少参数"},
        {"%3:s", {S("a")}, "格式 '%3:s' 缺少参数"},
        {"%*d", {5}, "格式 '%*d' 缺少参数"},
        {"%d", {S("1")}, "格式 '%d' 与参数的类型不符"},
        {"%d", {1.0}, "格式 '%d' 与参数的类型不符"},
        {"%d", {true}, "格式 '%d' 与参数的类型不符"},
        {"%d", {QVariant()}, "格式 '%d' 与参数的类型不符"},
        {"%x", {1.0}, "格式 '%x' 与参数的类型不符"},
        {"%s", {1}, "格式 '%s' 与参数的类型不符"},
        {"%s", {true}, "格式 '%s' 与参数的类型不符"},
        {"%f", {S("1")}, "格式 '%f' 与参数的类型不符"},
        {"%p", {1}, "格式 '%p' 与参数的类型不符"},
        {"%*s", {S("5"), S("a")}, "格式 '%*s' 与参数的类型不符"},
    };
    for (const auto &row : rows)
        EXPECT_EQ(FailureOf(S(row.Format), row.Args).toStdString(), row.Message) << row.Format;
}

TEST(Format, TakesBracedLists)
{
    EXPECT_EQ(Format(S("%s=%d"), {S("n"), 1}), S("n=1"));
    EXPECT_EQ(Format(S("x"), {}), S("x"));
    EXPECT_THROW(Format(S("%s"), {QVariantList{1}}), EConvertError);
}
