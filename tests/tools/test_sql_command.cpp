// SPDX-License-Identifier: MIT
#include "ToolTesting.h"

#include "platform/core/Cp936.h"

using namespace Korvane;
using namespace Korvane::Testing;
using namespace Qt::StringLiterals;

namespace {

class SqlCommandTest : public DialectToolTest
{
protected:
    void SetUp() override
    {
        DialectToolTest::SetUp();
        DesignStore(Path(u"empty.dbd"_s));
        ASSERT_EQ(OnDatabase({u"create"_s, Path(u"empty.dbd"_s)}).Status, 0);
    }

    void WriteFile(const QString &name, const QByteArray &bytes) const
    {
        QFile file(Path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }

    void MakeGoods() const
    {
        ASSERT_EQ(
            Sql(u"create table GOODS(CODE varchar(10) not null, NAME varchar(20), QTY int, PRICE float)"_s)
                .Out,
            u"语句已执行\n"_s);
        ASSERT_EQ(Sql(u"insert into GOODS(CODE,NAME,QTY,PRICE) values('A1','螺丝',12,0.5)"_s).Out,
                  u"1 行受影响\n"_s);
        ASSERT_EQ(Sql(u"insert into GOODS(CODE,NAME,QTY,PRICE) values('螺母B','',NULL,100.25)"_s).Out,
                  u"1 行受影响\n"_s);
    }
};

} // namespace

INSTANTIATE_TEST_SUITE_P(Dialects, SqlCommandTest, testing::Values("access", "mssql"), DialectName);

TEST_P(SqlCommandTest, prints_rows_as_a_table_or_as_csv)
{
    MakeGoods();
    const QString select = u"select CODE,NAME,QTY,PRICE from GOODS order by CODE"_s;
    EXPECT_EQ(Sql(select).Out, u"CODE  | NAME |  QTY |  PRICE\n"
                               "------+------+------+-------\n"
                               "A1    | 螺丝 |   12 |    0.5\n"
                               "螺母B |      | NULL | 100.25\n"_s);
    const ToolRun csv = Sql(select, {u"--csv"_s});
    EXPECT_EQ(csv.Out, u"\"CODE\",\"NAME\",\"QTY\",\"PRICE\"\r\n"
                       "\"A1\",\"螺丝\",12,0.5\r\n"
                       "\"螺母B\",\"\",,100.25\r\n"_s);
    EXPECT_EQ(csv.Err, QString());
    EXPECT_EQ(Sql(u"update GOODS set QTY=1"_s, {u"--csv"_s}).Err, u"2 行受影响\n"_s);
}

TEST_P(SqlCommandTest, finds_the_first_word_behind_comments_and_brackets)
{
    const struct
    {
        QString Statement;
        QString Out;
    } rows[] = {
        {u"select 1 as N"_s, u"N\n-\n1\n"_s},
        {u" -- 说明 update\r\n/* a\nb */ -- c\n SELECT 1 as N"_s, u"N\n-\n1\n"_s},
        {u"/* select */ create table TA(N int)"_s, u"语句已执行\n"_s},
        {u"selection"_s, QString()},
    };
    for (const auto &row : rows)
        EXPECT_EQ(Sql(row.Statement).Out, row.Out) << qPrintable(row.Statement);
}

TEST_P(SqlCommandTest, runs_a_script_batch_by_batch_from_any_source)
{
    const QString script = u"create table TB(NAME varchar(20))\r\n"
                           "  Go  \r\n\r\n"
                           "go\r\n"
                           "insert into TB(NAME)\r\n"
                           "  values('第一行\r\n"
                           "\r\n"
                           "  go 行')\r\n"
                           "GO\r\n"
                           "select NAME from TB\r\n"
                           "go\r\n"
                           "select NAME from TB where 1=0\r\n"
                           "go\r\n"
                           "drop table TB"_s;
    const QString out = u"语句已执行\n"
                        "1 行受影响\n"
                        "NAME\n"
                        "---------------------\n"
                        "第一行\\r\\n\\r\\n  go 行\n"
                        "\n"
                        "NAME\n"
                        "----\n"
                        "语句已执行\n"_s;
    WriteFile(u"utf8.sql"_s, script.toUtf8());
    WriteFile(u"gbk.sql"_s, Cp936::Encode(script));
    const struct
    {
        QStringList Arguments;
        QString Input;
    } rows[] = {
        {{u"sql"_s, script}, {}},
        {{u"sql"_s, u"-"_s}, script},
        {{u"sql"_s, u"--file"_s, Path(u"utf8.sql"_s)}, {}},
        {{u"sql"_s, u"--file"_s, Path(u"gbk.sql"_s)}, {}},
    };
    for (const auto &row : rows) {
        const ToolRun run = OnDatabase(row.Arguments, {.Input = row.Input});
        EXPECT_EQ(run.Out, out);
        EXPECT_EQ(run.Err, QString());
        EXPECT_EQ(run.Status, 0);
    }
    EXPECT_EQ(OnDatabase({u"sql"_s, u"-"_s}, {.Input = u"\ngo\n \n"_s}).Status, 0);
}

TEST_P(SqlCommandTest, a_script_stops_at_its_first_failing_batch)
{
    const ToolRun run =
        Sql(u"create table TC(N int)\ngo\ninsert into NOWHERE values(1)\ngo\ndrop table TC"_s);
    EXPECT_EQ(run.Status, 1);
    EXPECT_EQ(run.Out, u"语句已执行\n"_s);
    const QStringList lines = run.Err.split(u'\n');
    ASSERT_EQ(lines.size(), 4) << qPrintable(run.Err);
    EXPECT_TRUE(lines[0].contains(u"NOWHERE"_s)) << qPrintable(run.Err);
    EXPECT_EQ(lines[1], u"insert into NOWHERE values(1)"_s);
    EXPECT_EQ(lines[2], u"第 2 批失败，之前的 1 批已经执行，后面的 1 批没有执行。"_s);
    EXPECT_EQ(Sql(u"select count(*) as N from TC"_s).Out, u"N\n-\n0\n"_s);

    const ToolRun single = Sql(u"select * from NOWHERE"_s);
    EXPECT_EQ(single.Status, 1);
    EXPECT_EQ(single.Err.count(u'\n'), 2) << qPrintable(single.Err);
}
