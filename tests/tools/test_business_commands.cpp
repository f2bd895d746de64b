// SPDX-License-Identifier: MIT
#include "ToolTesting.h"

using namespace Korvane;
using namespace Korvane::Testing;
using namespace Qt::StringLiterals;

TEST(WordsCommand, spells_amounts)
{
    EXPECT_EQ(RunKorvane({u"words"_s, u"1234.56"_s}).Out, u"壹仟贰佰叁拾肆元伍角陆分\n"_s);
    EXPECT_EQ(RunKorvane({u"words"_s, u"21.5"_s, u"--en"_s}).Out, u"Twenty-One And Cents Fifty Only\n"_s);
    for (const QString &amount : {u"1.234"_s, u"1e5"_s, u"abc"_s, u"1,000"_s, u".5"_s})
        EXPECT_EQ(RunKorvane({u"words"_s, amount}).Status, 2) << qPrintable(amount);
    EXPECT_EQ(RunKorvane({u"words"_s, u"--"_s, u"-5"_s}).Status, 2);
    EXPECT_EQ(RunKorvane({u"words"_s, u"10000000000000"_s}).Status, 1);
    EXPECT_EQ(RunKorvane({u"words"_s, u"0"_s, u"--en"_s}).Status, 1);
}

class NextCodeCommand : public DialectToolTest
{
};
INSTANTIATE_TEST_SUITE_P(Dialects, NextCodeCommand, testing::Values("access", "mssql"), DialectName);

TEST_P(NextCodeCommand, proposes_the_next_number)
{
    DesignStore(Path(u"empty.dbd"_s));
    ASSERT_EQ(OnDatabase({u"create"_s, Path(u"empty.dbd"_s)}).Status, 0);
    for (const QString &statement :
         {u"create table BILL(CODE varchar(20))"_s, u"insert into BILL values('24030700002')"_s,
          u"create table SYSMQ(MQ001 varchar(10), MQ005 varchar(1), MQ006 int, MQ007 int)"_s,
          u"insert into SYSMQ values('SO','1',2,5)"_s})
        ASSERT_EQ(Sql(statement).Status, 0);
    const auto next = [&](const QStringList &options) {
        const ToolRun run =
            OnDatabase(QStringList{u"next-code"_s, u"BILL"_s, u"CODE"_s, u"--date=2024-03-07"_s} + options);
        return QString::number(run.Status) + u' ' + run.Out + run.Err.section(u'\n', 0, 0);
    };
    EXPECT_EQ(next({}), u"0 20240300001\n"_s);
    EXPECT_EQ(next({u"--type=day"_s, u"--year-digits=2"_s}), u"0 24030700003\n"_s);
    EXPECT_EQ(next({u"--rule"_s, u"SO"_s}), u"0 24030700003\n"_s);
    EXPECT_EQ(next({u"--type=month"_s, u"--year-digits=2"_s, u"--custom"_s, u"--digits=5"_s}),
              u"0 240300003\n"_s);
    EXPECT_EQ(next({u"--rule"_s, u"PO"_s}), u"1 没有编码规则 PO，或者该规则为手工编码"_s);
    EXPECT_TRUE(next({u"--type=week"_s}).startsWith(u"2 "_s));
    EXPECT_TRUE(next({u"--digits=0"_s}).startsWith(u"2 "_s));
}
