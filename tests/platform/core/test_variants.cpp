// SPDX-License-Identifier: MIT
#include "platform/core/Exceptions.h"
#include "platform/core/Variants.h"

#include <QStringList>

#include <gtest/gtest.h>

#include <limits>

using namespace Korvane;

namespace {

QString S(const char *text) { return QString::fromUtf8(text); }

QVariant V(TDateTime value) { return QVariant::fromValue(value); }

const QList<QVariant> Nulls{QVariant(), VarNull(), QDateTime(), QDate(), QTime()};

} // namespace

TEST(Variants, NullReadsAsNothing)
{
    for (const QVariant &null : Nulls) {
        EXPECT_TRUE(VarIsNull(null));
        EXPECT_EQ(VarToStr(null), S(""));
        EXPECT_EQ(VarToStrDef(null, S("x")), S("x"));
        EXPECT_EQ(VarToInt(null), 0);
        EXPECT_EQ(VarToDouble(null), 0);
        EXPECT_FALSE(VarToBool(null));
        EXPECT_TRUE(VarToDateTime(null).IsEmpty());
        EXPECT_TRUE(VarIsNull(VarAdd(null, 1)));
        EXPECT_TRUE(VarIsNull(VarAdd(S("a"), null)));
    }
    EXPECT_FALSE(VarIsNull(S("")));
    EXPECT_FALSE(VarIsNull(0));
    EXPECT_FALSE(VarIsEmpty(VarNull()));
    EXPECT_TRUE(VarIsEmpty(QVariant()));
}

TEST(Variants, ReadAsText)
{
    const struct
    {
        QVariant Value;
        const char *Text;
    } rows[] = {
        {S("中"), "中"},
        {true, "True"},
        {false, "False"},
        {-5, "-5"},
        {std::numeric_limits<quint64>::max(), "18446744073709551615"},
        {0.1, "0.1"},
        {1e16, "1E16"},
        {V(EncodeDateTime(2024, 3, 7, 15, 5, 9, 0)), "2024-03-07 15:05:09"},
        {QDateTime(QDate(2024, 3, 7), QTime(0, 0)), "2024-03-07"},
        {QDate(2024, 3, 7), "2024-03-07"},
        {QTime(15, 5, 9), "15:05:09"},
        {QByteArray("ab"), "ab"},
    };
    for (const auto &row : rows)
        EXPECT_EQ(VarToStr(row.Value).toStdString(), row.Text);
    EXPECT_THROW(VarToStr(QVariantList{1}), EVariantError);
    int number = 0;
    EXPECT_THROW(VarToStr(QVariant::fromValue<void *>(&number)), EVariantError);
}

TEST(Variants, ReadAsNumbers)
{
    const struct
    {
        QVariant Value;
        double Number;
        int Integer;
    } rows[] = {
        {7, 7, 7},          {2.5, 2.5, 2},      {3.5, 3.5, 4},
        {-2.5, -2.5, -2},   {true, 1, 1},       {S("12"), 12, 12},
        {S("3.5"), 3.5, 4}, {S(" -4"), -4, -4}, {V(TDateTime(2.25)), 2.25, 2},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(VarToDouble(row.Value), row.Number) << VarToStr(row.Value).toStdString();
        EXPECT_EQ(VarToInt(row.Value), row.Integer) << VarToStr(row.Value).toStdString();
    }
    const qint64 big = 9007199254740993; // no double holds it
    EXPECT_EQ(VarToInt64(big), big);
    EXPECT_EQ(VarToInt64(S("9007199254740993")), big);
    for (const QVariant &value : {QVariant(S("")), QVariant(S("abc")), QVariant(QVariantList{1})}) {
        EXPECT_THROW(VarToDouble(value), EVariantError);
        EXPECT_THROW(VarToInt(value), EVariantError);
        EXPECT_THROW(VarToBool(value), EVariantError);
    }
    for (const QVariant &value :
         {QVariant(2147483648.0), QVariant(qint64(1) << 31), QVariant(1e300), QVariant(NAN)})
        EXPECT_THROW(VarToInt(value), EVariantError);
    EXPECT_THROW(VarToInt64(9.3e18), EVariantError);
    EXPECT_THROW(VarToInt64(std::numeric_limits<quint64>::max()), EVariantError);
}

TEST(Variants, ReadAsBooleans)
{
    for (const QVariant &value :
         {QVariant(true), QVariant(-1), QVariant(0.5), QVariant(S("TRUE")), QVariant(S("1"))})
        EXPECT_TRUE(VarToBool(value));
    for (const QVariant &value : {QVariant(false), QVariant(0), QVariant(S("false")), QVariant(S("0"))})
        EXPECT_FALSE(VarToBool(value));
}

TEST(Variants, ReadAsDates)
{
    const TDateTime day = EncodeDate(2024, 3, 7), moment = EncodeDateTime(2024, 3, 7, 15, 5, 9, 0);
    const struct
    {
        QVariant Value;
        TDateTime Date;
    } rows[] = {
        {45358, day},
        {45358.5, day + 0.5},
        {QDate(2024, 3, 7), day},
        {QDateTime(QDate(2024, 3, 7), QTime(15, 5, 9)), moment},
        {QTime(12, 0), TDateTime(0.5)},
        {V(moment), moment},
        {S("2024-03-07"), day},
        {S(" 2024-03-07 15:05:09 "), moment},
        {S("2024-03-07T15:05:09"), moment},
        {S("2024-03-07 15:05:09.250"), TDateTime(QDate(2024, 3, 7), QTime(15, 5, 9, 250))},
        {S("2024-3-7 15:5:9"), moment}, // the settings' form
        {S("12:00"), TDateTime(0.5)},
    };
    for (const auto &row : rows)
        EXPECT_EQ(VarToDateTime(row.Value), row.Date) << row.Date.Days();
    for (const char *text : {"", "abc", "2024-02-30", "2024-03-07 25:00:00", "2024-03-07x"})
        EXPECT_THROW(VarToDateTime(S(text)), EVariantError) << text;
    EXPECT_THROW(VarToDateTime(true), EVariantError);
}

TEST(Variants, GiveArrayItems)
{
    const QVariant array = VarArrayOf({1, S("b")});
    EXPECT_TRUE(VarIsArray(array));
    EXPECT_FALSE(VarIsArray(S("b")));
    EXPECT_EQ(VarArrayGet(array, 1), QVariant(S("b")));
    EXPECT_THROW(VarArrayGet(array, 2), EVariantError);
    EXPECT_THROW(VarArrayGet(array, -1), EVariantError);
    EXPECT_THROW(VarArrayGet(5, 0), EVariantError);
    EXPECT_EQ(VarArrayGet(QStringList{S("a")}, 0), QVariant(S("a")));
}

TEST(Variants, Add)
{
    const int most = std::numeric_limits<int>::max();
    const struct
    {
        QVariant Left, Right, Sum;
    } rows[] = {
        {1, 2, 3},
        {most, 1, qint64(most) + 1},
        {qint64(1), 2, qint64(3)},
        {std::numeric_limits<qint64>::max(), qint64(1), 9223372036854775808.0},
        {1, 0.5, 1.5},
        {S("a"), 1, S("a1")},
        {0.5, S("x"), S("0.5x")},
        {S("1"), S("2"), S("12")},
        {V(TDateTime(1.5)), 1, V(TDateTime(2.5))},
    };
    for (const auto &row : rows) {
        const QVariant sum = VarAdd(row.Left, row.Right);
        EXPECT_EQ(sum.metaType(), row.Sum.metaType());
        EXPECT_EQ(sum, row.Sum) << VarToStr(row.Sum).toStdString();
    }
    EXPECT_THROW(VarAdd(QVariantList{1}, 1), EVariantError);
}

TEST(Variants, CompareByValue)
{
    const qint64 big = 9007199254740993;
    const struct
    {
        QVariant Left, Right;
        bool Same;
    } rows[] = {
        {1, 1.0, true},
        {1, qint64(1), true},
        {1, true, true},
        {big, big - 1, false},
        {S("a"), S("A"), false},
        {S("1"), 1, true},
        {S("1.50"), 1.5, true},
        {S("x"), 1, false},
        {S("True"), true, true},
        {S("2024-03-07"), QDate(2024, 3, 7), true},
        {QDate(2024, 3, 7), 45358, true},
        {QVariant(), VarNull(), true},
        {QVariant(), S(""), false},
        {VarNull(), 0, false},
        {QVariantList{1, S("a")}, QVariantList{1.0, S("a")}, true},
        {QVariantList{1}, QVariantList{1, 2}, false},
        {QVariantList{1}, 1, false},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(VarSame(row.Left, row.Right), row.Same)
            << row.Left.typeName() << " " << row.Right.typeName();
        EXPECT_EQ(VarSame(row.Right, row.Left), row.Same)
            << row.Right.typeName() << " " << row.Left.typeName();
    }
}
