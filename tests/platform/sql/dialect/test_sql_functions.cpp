// SPDX-License-Identifier: MIT
#include "DialectDatabase.h"

#include <QDateTime>
#include <QElapsedTimer>

#include <gtest/gtest.h>

namespace Korvane {

namespace {

constexpr auto Access = TSqlDialect::Access;
constexpr auto MSSQL = TSqlDialect::MSSQL;

struct TValueRow
{
    TSqlDialect Dialect;
    const char *Expression;
    const char *Value; ///< "~" for NULL, "! " and a message for an error
};

void CheckValues(std::initializer_list<TValueRow> rows)
{
    TDialectDatabase access(Access), mssql(MSSQL);
    for (const TValueRow &row : rows) {
        TDialectDatabase &database = row.Dialect == Access ? access : mssql;
        QString value;
        try {
            value = database.Value(QStringLiteral("select ") + QString::fromUtf8(row.Expression));
        } catch (const ESqlError &error) {
            value = QStringLiteral("! ") + error.Message().section(QStringLiteral(": select"), 0, 0);
        }
        EXPECT_EQ(value.toStdString(), row.Value)
            << testing::PrintToString(row.Dialect) << ": " << row.Expression;
    }
}

TEST(SqlFunctions, TextsAreCountedInCharacters)
{
    CheckValues({{Access, "left('订单ab', 3)", "订单a"},
                 {Access, "left('订单', 9)", "订单"},
                 {Access, "left('订单', 0)", ""},
                 {MSSQL, "left('订单', -1)", "! 文本函数的长度或位置不正确"},
                 {MSSQL, "right('订单ab', 3)", "单ab"},
                 {MSSQL, "right('ab', 9)", "ab"},
                 {Access, "left(null, 1)", "~"},
                 {Access, "left(12345, 2)", "12"},
                 {Access, "mid('订单明细', 2)", "单明细"},
                 {Access, "mid('订单明细', 2, 2)", "单明"},
                 {Access, "mid('订单明细', 9, 2)", ""},
                 {Access, "mid('ab', 0, 1)", "! 文本函数的长度或位置不正确"},
                 {MSSQL, "substring('abc', 0, 2)", "a"},
                 {MSSQL, "substring('abc', -5, 2)", ""},
                 {Access, "len('订单  ')", "4"},
                 {MSSQL, "len('订单  ')", "2"},
                 {MSSQL, "len(1.5)", "3"},
                 {Access, "instr('订单AB', 'b')", "4"},
                 {Access, "instr(4, 'abcabc', 'A')", "4"},
                 {Access, "instr('abc', 'x')", "0"},
                 {Access, "instr(5, 'abc', 'a')", "0"},
                 {Access, "instr('abc', '')", "1"},
                 {MSSQL, "charindex('B', '订单ab')", "4"},
                 {MSSQL, "charindex('a', 'abca', 2)", "4"},
                 {MSSQL, "charindex('', 'abc')", "0"},
                 {MSSQL, "charindex('a', null)", "~"},
                 {MSSQL, "replicate('订', 3) + space(2) + '.'", "订订订  ."},
                 {MSSQL, "replicate('a', -1)", "~"},
                 {MSSQL, "len(replicate('abcdefghij', 100000000))", "! string or blob too big"},
                 {Access, "string(3, '*') & string(2, 65)", "***AA"},
                 {MSSQL, "char(65) + char(66)", "AB"}});
}

TEST(SqlFunctions, PlusAddsNumbersAndJoinsTexts)
{
    CheckValues({{MSSQL, "A+B from (select 1 as A, 2 as B) q", "3"},
                 {MSSQL, "A+B from (select 1.5 as A, 2 as B) q", "3.5"},
                 {MSSQL, "A+B from (select '1' as A, '2' as B) q", "12"},
                 {MSSQL, "A+B from (select '1' as A, 2 as B) q", "3"},
                 {MSSQL, "A+B from (select 2 as A, ' 1.5 ' as B) q", "3.5"},
                 {MSSQL, "A+B from (select 2 as A, 'x' as B) q", "! “x”不是数值，不能与数值相加"},
                 {MSSQL, "A+B from (select null as A, 'x' as B) q", "~"},
                 {MSSQL, "A+B+C from (select '1' as A, '2' as B, 5 as C) q", "17"},
                 {MSSQL, "A+B+C from (select 1 as A, 2 as B, 3 as C) q", "6"},
                 {MSSQL, "A+B from (select 9223372036854775807 as A, 1 as B) q", "9.22337203685478e+18"},
                 {MSSQL, "A-B+A from (select 5 as A, 2 as B) q", "8"},
                 {Access, "'a' & null & 1.50 & 2", "a1.52"},
                 {Access, "null & null", ""},
                 {Access, "A & B from (select 0.1 as A, 100 as B) q", "0.1100"},
                 {Access, "2 + 3 & 4 * 5", "520"},
                 {MSSQL, "6 & 3", "2"},
                 {MSSQL, "6 ^ 3", "5"},
                 {MSSQL, "1 | 2 + 4", "7"}});
}

TEST(SqlFunctions, NumbersRoundAsTheirDialectDoes)
{
    CheckValues({{Access, "cint(2.5)", "2"},
                 {Access, "cint(3.5)", "4"},
                 {Access, "clng('12')", "12"},
                 {Access, "clng('x')", "! “x”不是数值"},
                 {Access, "round(2.5)", "2"},
                 {Access, "round(0.125, 2)", "0.12"},
                 {MSSQL, "round(2.5, 0)", "3"},
                 {MSSQL, "round(1.005, 2)", "1.01"},
                 {MSSQL, "round(-2.5, 0)", "-3"},
                 {MSSQL, "round(1234.5, -2)", "1200"},
                 {MSSQL, "round(1.99, 1, 1)", "1.9"},
                 {Access, "int(-1.5)", "-2"},
                 {Access, "fix(-1.5)", "-1"},
                 {MSSQL, "cast(-1.9 as int)", "-1"},
                 {MSSQL, "cast('7' as int)", "7"},
                 {MSSQL, "cast('7.5' as decimal(10, 0))", "8"},
                 {MSSQL, "cast(1.005 as decimal(10, 2))", "1.01"},
                 {MSSQL, "cast(5 as float)", "5.0"},
                 {MSSQL, "7/2", "3"},
                 {Access, "7/2", "3.5"},
                 {Access, "7\\2", "3"},
                 {Access, "-7 mod 3", "-1"},
                 {Access, "7 mod 0", "~"},
                 {Access, "2^3^2", "64"},
                 {Access, "-2^2", "-4"},
                 {Access, "val('12 3ab')", "123"},
                 {Access, "val('x')", "0"},
                 {Access, "str(5)", " 5"},
                 {MSSQL, "str(5)", "         5"},
                 {MSSQL, "str(3.146, 6, 2)", "  3.15"},
                 {MSSQL, "str(12345, 3)", "***"},
                 {Access, "cbool(-1) & cbool(0) & cbool('Yes')", "YNY"},
                 {MSSQL, "cast(2 as bit)", "Y"},
                 {MSSQL, "isnumeric('1.5') + isnumeric('x')", "1"},
                 {Access, "nz(null, 3)", "3"},
                 {Access, "nz(null)", ""},
                 {MSSQL, "isnull(null, 'x')", "x"}});
}

TEST(SqlFunctions, DatesAreReadInEveryForm)
{
    CheckValues({{Access, "year('20240131') & month('2024-01-31') & day('20240131083005')", "2024131"},
                 {Access, "hour('2024-01-31 08:30:05') & minute('8:30') & second('20240131083005')", "8305"},
                 {Access, "year(#1/31/2024#)", "2024"},
                 {Access, "weekday('20240128')", "1"},
                 {Access, "year('')", "~"},
                 {Access, "year(null)", "~"},
                 {Access, "year('20240230')", "! “20240230”不是有效的日期时间"},
                 {Access, "dateserial(2024, 1, 0)", "2023-12-31"},
                 {Access, "dateserial(2024, 14, 1)", "2025-02-01"},
                 {Access, "dateadd('m', 1, '20240131')", "2024-02-29"},
                 {Access, "dateadd('d', -1, '2024-03-01 08:00:00')", "2024-02-29 08:00:00.000"},
                 {Access, "dateadd('n', 90, '2024-01-31 23:00')", "2024-02-01 00:30:00.000"},
                 {MSSQL, "dateadd(yy, 1, '20240229')", "2025-02-28"},
                 {MSSQL, "dateadd(month, 2000000000, '20240229')", "! 日期超出范围"},
                 {MSSQL, "dateadd(hour, 200000000, '20240229')", "! 日期超出范围"},
                 {MSSQL, "datepart(dw, '20240131') * 1000 + datepart(week, '20240107')", "4002"},
                 {MSSQL, "datepart(quarter, '20240401')", "2"},
                 {MSSQL, "datepart(era, '20240401')", "! “era”不是日期的组成部分"},
                 {MSSQL, "datediff(day, '20240131', '2024-02-01')", "1"},
                 {MSSQL, "datediff(yy, '20231231', '20240101')", "1"},
                 {MSSQL, "datediff(mi, '2024-01-31 23:59:59', '20240201')", "1"},
                 {MSSQL, "datediff(wk, '20240106', '20240107')", "1"},
                 {Access, "datediff('w', '20240101', '20240114')", "1"},
                 {MSSQL, "convert(char(8), '2024-01-31 08:30:05', 112)", "20240131"},
                 {MSSQL, "convert(varchar(20), '20240131083005', 120)", "2024-01-31 08:30:05"},
                 {MSSQL, "convert(varchar(10), '20240131083005', 108)", "08:30:05"},
                 {MSSQL, "convert(varchar(7), '20240131', 111)", "2024/01"},
                 {MSSQL, "convert(varchar, 1.50)", "1.5"},
                 {MSSQL, "convert(varchar(3), '订单明细')", "订单明"},
                 {MSSQL, "convert(varchar(20), '20240131', 999)", "! 内嵌数据库引擎不支持“CONVERT 样式 999”"},
                 {MSSQL, "cast('20240131' as datetime)", "2024-01-31 00:00:00.000"},
                 {Access, "format('20240131', 'yyyy-mm-dd')", "2024-01-31"},
                 {Access, "format('2024-01-31 08:05:09', 'hhnnss')", "080509"},
                 {Access, "format(1234.5, '#,##0.00')", "1,234.50"},
                 {Access, "format(5, '000')", "005"},
                 {Access, "format(45322, 'yyyymmdd')", "20240131"},
                 {Access, "format(null, '0')", ""}});
    for (const TSqlDialect dialect : {Access, MSSQL}) {
        TDialectDatabase database(dialect);
        const QString now = database.Value(dialect == Access ? QStringLiteral("select now()")
                                                             : QStringLiteral("select getdate()"));
        const auto value = QDateTime::fromString(now, QStringLiteral("yyyy-MM-dd HH:mm:ss.zzz"));
        EXPECT_TRUE(value.isValid()) << now.toStdString();
        EXPECT_LT(std::abs(value.secsTo(QDateTime::currentDateTime())), 60);
    }
}

TEST(SqlFunctions, LikeMatchesByItsDialect)
{
    CheckValues({{Access, "'订单ABC' like '订*b?'", "1"},
                 {Access, "'订单ABC' like '%ab_'", "1"},
                 {Access, "'A1' like 'a#'", "1"},
                 {Access, "'AB' like 'a#'", "0"},
                 {Access, "'b' like '[a-c]'", "1"},
                 {Access, "'B' like '[!a-c]'", "0"},
                 {Access, "'*' like '[*]'", "1"},
                 {Access, "'x' like '[*]'", "0"},
                 {Access, "'a[b' like 'a[b'", "1"},
                 {Access, "']' like '[]]'", "1"},
                 {Access, "'-' like '[a-]'", "1"},
                 {Access, "null like '*'", "~"},
                 {Access, "'' like '*'", "1"},
                 {Access, "'' like '?'", "0"},
                 {Access, "12 like '1*'", "1"},
                 {MSSQL, "'a*b' like 'a*b'", "1"},
                 {MSSQL, "'axb' like 'a*b'", "0"},
                 {MSSQL, "'a#?' like 'A#?'", "1"},
                 {MSSQL, "'b' like '[^a]'", "1"},
                 {MSSQL, "'!' like '[!a]'", "1"},
                 {MSSQL, "'5%' like '5!%' escape '!'", "1"},
                 {MSSQL, "'50' like '5!%' escape '!'", "0"},
                 {MSSQL, "'x' like 'x' escape 'ab'", "! ESCAPE 后只能有一个字符"},
                 {MSSQL, "'x' not like 'y%'", "1"},
                 {MSSQL, "'É' like 'é'", "0"}});
    // Exponential backtracking would never come back from this.
    TDialectDatabase database(Access);
    QElapsedTimer timer;
    timer.start();
    EXPECT_EQ(database.Value(QStringLiteral("select '%1' like '%2b'")
                                 .arg(QString(20'000, u'a'), QStringLiteral("*a").repeated(200))),
              QStringLiteral("0"));
    EXPECT_LT(timer.elapsed(), 10'000);
}

TEST(SqlFunctions, TextsCompareBlindToCase)
{
    for (const TSqlDialect dialect : {Access, MSSQL}) {
        TDialectDatabase database(dialect);
        database.Run(QStringLiteral("create table T(CODE varchar(10), QTY decimal(12, 2) default '0')"));
        database.Run(QStringLiteral("insert into T(CODE) values('Ab')"));
        for (const char *condition :
             {"CODE='aB'", "left(CODE,1)='a'", "'AB'=CODE", "CODE in ('AB')", "CODE like 'ab'",
              "upper(CODE)='ab'", "CODE between 'aa' and 'ac'", "QTY=0"})
            EXPECT_EQ(database.Run(QStringLiteral("select CODE from T where ") + QString::fromUtf8(condition))
                          .size(),
                      1)
                << condition;
        EXPECT_EQ(database.Value(QStringLiteral("select QTY+1 from T")), QStringLiteral("1"));
    }
}

} // namespace

} // namespace Korvane
