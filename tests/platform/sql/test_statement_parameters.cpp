// SPDX-License-Identifier: MIT
#include "platform/sql/StatementParameters.h"

#include <gtest/gtest.h>

using namespace Korvane;
using namespace Qt::StringLiterals;

TEST(StatementParameters, are_a_colon_and_a_name_outside_of_quotes_and_comments)
{
    static const struct
    {
        QString Statement;
        QStringList Names;
    } rows[] = {
        {u"insert into T(A, B) values(:A, :B)"_s, {u"A"_s, u"B"_s}},
        {u"update T set B=:B,A=:A where C=1"_s, {u"B"_s, u"A"_s}},
        {u":_a1,:图片)"_s, {u"_a1"_s, u"图片"_s}},
        {u"(:A,:a,:B,:A)"_s, {u"A"_s, u"B"_s}},
        {u"values(':A', \":B\", `:C`, [D:E], :F)"_s, {u"F"_s}},
        {u"values('it''s :A', :B)"_s, {u"B"_s}},
        {u"select [a]]:b], :C"_s, {u"C"_s}},
        {u"select 1 -- :A\r\n, :B /* :C\n:D */ , :E"_s, {u"B"_s, u"E"_s}},
        {u"select :A -- :B"_s, {u"A"_s}},
        {u"select :A /* :B"_s, {u"A"_s}},
        {u"values(':A"_s, {}},
        {u"values('2024-01-31 12:30:05', #12:30:00#, 12:30)"_s, {}},
        {u"select a : b, c:, :"_s, {}},
        {u"select 5-:A, 6/:B"_s, {u"A"_s, u"B"_s}},
        {u""_s, {}},
    };
    for (const auto &row : rows) {
        QStringList names;
        for (const TSqlParameter &parameter : ParametersOf(row.Statement)) {
            names += parameter.Name;
            EXPECT_TRUE(parameter.Value.isNull());
        }
        EXPECT_EQ(names, row.Names) << row.Statement.toStdString();
    }
}
