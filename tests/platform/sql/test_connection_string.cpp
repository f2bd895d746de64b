// SPDX-License-Identifier: MIT
#include "platform/sql/ConnectionString.h"

#include <gtest/gtest.h>

using namespace Korvane;
using namespace Qt::StringLiterals;

TEST(ConnectionString, parts_are_read)
{
    static const struct
    {
        QString Text;
        QString Name;
        QString Value;
    } rows[] = {
        {u"A=1;B=2"_s, u"B"_s, u"2"_s},
        {u"Data Source=x"_s, u"DATA source"_s, u"x"_s},
        {u"  A  =  1 2  ; B=3"_s, u"A"_s, u"1 2"_s},
        {u"A=1;a=2"_s, u"A"_s, u"2"_s},
        {u"A=;B=2"_s, u"A"_s, u""_s},
        {u"A=1"_s, u"C"_s, u""_s},
        {u""_s, u"A"_s, u""_s},
        // A value may hold "=", and quotes that do not begin it.
        {u"A=b=c;D=1"_s, u"A"_s, u"b=c"_s},
        {u"A=b\"c;D=1"_s, u"A"_s, u"b\"c"_s},
        {u"A=it's;D=1"_s, u"D"_s, u"1"_s},
        // Quoted values: the other sign, the separator, blanks, the own sign doubled.
        {u"A=\"x;y='z' \";B=2"_s, u"A"_s, u"x;y='z' "_s},
        {u"A=\"x;y\";B=2"_s, u"B"_s, u"2"_s},
        {u"A= 'x;\"y'; B=2"_s, u"A"_s, u"x;\"y"_s},
        {u"A=\"x\"\"y\";B=2"_s, u"A"_s, u"x\"y"_s},
        {u"A='it''s';B=2"_s, u"A"_s, u"it's"_s},
        {u"A=\"\";B=2"_s, u"A"_s, u""_s},
        {u"A=\"open;B=2"_s, u"A"_s, u"open;B=2"_s},
        {u"A=\"x\" rest;B=2"_s, u"B"_s, u"2"_s},
        // What is no part is passed over.
        {u"nothing;A=1"_s, u"A"_s, u"1"_s},
        {u";;A=1;;"_s, u"A"_s, u"1"_s},
        {u"A=1;nothing"_s, u"nothing"_s, u""_s},
    };
    for (const auto &row : rows)
        EXPECT_EQ(TConnectionString(row.Text).Value(row.Name), row.Value) << row.Text.toStdString();
}

TEST(ConnectionString, an_empty_part_is_there_and_a_missing_one_is_not)
{
    const TConnectionString connection(u"A=;nothing"_s);
    EXPECT_TRUE(connection.Contains(u"a"));
    EXPECT_FALSE(connection.Contains(u"nothing"));
}

TEST(ConnectionString, any_value_survives_the_text)
{
    for (const QString &value : {u""_s, u"C:\\数据\\订单.mdb"_s, u"a;b"_s, u" blanks "_s, u"\"quoted\""_s,
                                 u"'"_s, u"it's"_s, u"x\"y;z"_s, u"=a"_s, u"\t"_s}) {
        TConnectionString connection;
        connection.SetValue(u"First"_s, u"1"_s);
        connection.SetValue(u"Value"_s, value);
        connection.SetValue(u"Last"_s, u"2"_s);
        const TConnectionString again(connection.ToString());
        EXPECT_EQ(again.Value(u"Value"), value) << connection.ToString().toStdString();
        EXPECT_EQ(again.Value(u"First") + again.Value(u"Last"), u"12"_s);
    }
    TConnectionString connection(u"A=1;B=2"_s);
    connection.SetValue(u"a"_s, u"3;4"_s);
    EXPECT_EQ(connection.ToString(), u"A=\"3;4\";B=2"_s);
}

TEST(ConnectionString, the_password_stands_under_either_name)
{
    EXPECT_EQ(TConnectionString(u"Password=p"_s).Password(), u"p"_s);
    EXPECT_EQ(TConnectionString(u"Jet OLEDB:Database Password=d"_s).Password(), u"d"_s);
    EXPECT_EQ(TConnectionString(u"Jet OLEDB:Database Password=d;Password=p"_s).Password(), u"d"_s);
    EXPECT_EQ(TConnectionString(u"Jet OLEDB:Database Password=;Password=p"_s).Password(), u"p"_s);
}
