// SPDX-License-Identifier: MIT
#include "platform/sql/postgres/PostgresRewriter.h"

#include "PostgresRows.h"
#include "platform/sql/StatementParameters.h"
#include "platform/sql/postgres/PostgresCatalog.h"
#include "platform/sql/postgres/PostgresSetup.h"

#include <QElapsedTimer>
#include <QFile>
#include <QRegularExpression>
#include <QSet>

#include <gtest/gtest.h>

using namespace Korvane;
using namespace Qt::StringLiterals;

namespace {

/// The steps between " ;; ", or a refusal behind "! ".
QString Rewritten(const QString &statement)
{
    try {
        QStringList steps;
        for (const TPostgresStep &step : RewriteForPostgres(statement).Steps)
            steps.append(QString::fromUtf8(step.Sql));
        return steps.join(u" ;; "_s);
    } catch (const ESqlError &error) {
        return u"! "_s + error.Message();
    }
}

QString Expected(const TPostgresRow &row)
{
    QString expected = QString::fromUtf8(row.Expected);
    for (const QString &table : {u"sysobjects"_s, u"sysdatabases"_s, u"sysprocesses"_s})
        expected.replace(u'{' + table + u'}', PostgresCatalogTable(table));
    return expected;
}

QStringList ParameterNames(const QString &statement)
{
    QStringList names;
    for (const TSqlParameter &parameter : ParametersOf(statement))
        names.append(parameter.Name);
    return names;
}

TEST(PostgresRewriter, RewritesEveryRow)
{
    for (const TPostgresRow &row : PostgresRows) {
        const QString statement = QString::fromUtf8(row.Statement);
        const QString rewritten = Rewritten(statement);
        EXPECT_EQ(rewritten.toStdString(), Expected(row).toStdString()) << row.Id;
        // Nothing that is written may look like a parameter to the driver.
        if (!rewritten.startsWith(u'!')) {
            EXPECT_EQ(ParameterNames(rewritten), ParameterNames(statement)) << row.Id;
        }
    }
}

TEST(PostgresRewriter, TheDocumentsRowsAndTheTestsAreTheSame)
{
    QFile file(QStringLiteral(KORVANE_SOURCE_DIR "/docs/dialects.md"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QString text = QString::fromUtf8(file.readAll());
    static const QRegularExpression line(u"^\\| ([a-z-]+) \\|"_s, QRegularExpression::MultilineOption);
    QSet<QString> documented, tested;
    const qsizetype section = text.indexOf(u"\n## On PostgreSQL"_s);
    ASSERT_GT(section, 0);
    for (auto it = line.globalMatch(text, section); it.hasNext();)
        documented.insert(it.next().captured(1));
    documented.remove(u"id"_s);
    for (const TPostgresRow &row : PostgresRows)
        tested.insert(QString::fromLatin1(row.Id));
    EXPECT_EQ((documented - tested).values().join(u' ').toStdString(), "");
    EXPECT_EQ((tested - documented).values().join(u' ').toStdString(), "");
}

TEST(PostgresRewriter, TellsTheKindOfEachStep)
{
    const auto result = RewriteForPostgres(
        u"begin tran /* x */ insert T values(1) -- y\n update T set A=1 delete T select 1; "
        "(select 2) with q as (select 1 as A) select A from q select A into N from T "
        "create table X(A int) commit rollback; select @@rowcount; select '@@rowcount'"_s);
    QString kinds;
    for (const TPostgresStep &step : result.Steps)
        kinds += u"SRDBCU"_s[int(step.Kind)] + (step.ReadsRowCount ? u"!"_s : QString());
    EXPECT_EQ(kinds, u"BRRRSSSDDCUS!S"_s);
    EXPECT_EQ(RowCountSql(7), "select set_config('korvane.rowcount', '7', false)");
}

TEST(PostgresRewriter, KeepsHowResultsWereWritten)
{
    struct TRow
    {
        const char *Statement;
        const char *Names; ///< the column as the engine gives it, and as it was written
    };
    const TRow rows[] = {
        {"select * from T", ""},
        {"select id, T.Name, A as [Cust Name], 名称 from T", "CUST NAME=Cust Name ID=id NAME=Name 名称=名称"},
        {"select N=1, Max(A) as m from T", "M=m N=N"},
        {"select ID from (select A as Id, b from T) q", "B=b ID=ID"},
        {"select top 1 * from (select 'N' as FSELECTED, * from (select T.ID as Id from T) ZZZ) ZZZ",
         "FSELECTED=FSELECTED ID=Id"},
        {"select A as 'my name', count(*), @@spid from T", "MY NAME=my name"}};
    for (const TRow &row : rows) {
        const auto written = RewriteForPostgres(QString::fromUtf8(row.Statement)).WrittenNames;
        QStringList names;
        for (auto it = written.begin(); it != written.end(); ++it)
            names.append(it.key() + u'=' + it.value());
        names.sort();
        EXPECT_EQ(names.join(u' ').toStdString(), row.Names) << row.Statement;
    }
}

TEST(PostgresRewriter, TellsServerCommands)
{
    struct TRow
    {
        const char *Statement;
        TServerCommand Command;
        const char *Database;
        const char *File;
    };
    const TRow rows[] = {
        {"create database [订单 a]", TServerCommand::CreateDatabase, "订单 a", ""},
        {"DROP DATABASE Orders;", TServerCommand::DropDatabase, "Orders", ""},
        {"backup database x to disk='C:\\it''s.bak'", TServerCommand::BackupDatabase, "x", "C:\\it's.bak"},
        {"restore database x from disk=N'f' with replace", TServerCommand::RestoreDatabase, "x", "f"}};
    for (const TRow &row : rows) {
        const auto result = RewriteForPostgres(QString::fromUtf8(row.Statement));
        EXPECT_EQ(result.Command, row.Command) << row.Statement;
        EXPECT_EQ(result.CommandDatabase, QString::fromUtf8(row.Database));
        EXPECT_EQ(result.CommandFile, QString::fromUtf8(row.File));
        EXPECT_TRUE(result.Steps.isEmpty());
    }
}

TEST(PostgresRewriter, RefusesNamesThatTheEngineWouldCut)
{
    const QString longest = QString(21, u'名');
    EXPECT_EQ(Rewritten(u"select 1 as [%1]"_s.arg(longest)), u"select 1 as \"%1\""_s.arg(longest));
    EXPECT_EQ(Rewritten(u"drop table [%1x]"_s.arg(longest)),
              u"! 名称“%1x”太长：PostgreSQL 的名称最多 63 个字节"_s.arg(longest));
    // A name put together keeps its meaning where it is too long.
    const QString one = Rewritten(u"create index a%1 on %1(A)"_s.arg(longest.left(18)));
    const QString other = Rewritten(u"create index b%1 on %1(A)"_s.arg(longest.left(18)));
    EXPECT_NE(one, other);
    EXPECT_LE(one.section(u'"', 1, 1).toUtf8().size(), 63);
    EXPECT_EQ(Rewritten(u"drop index %1.a%1"_s.arg(longest.left(18))).section(u'"', 1, 1),
              one.section(u'"', 1, 1));
    EXPECT_EQ(PostgresName(u"aÉé_ﬀ名z"_s), u"AÉé_ﬀ名Z"_s);
}

TEST(PostgresRewriter, PatternsBecomeRegularExpressions)
{
    struct TRow
    {
        const char *Pattern;
        const char *Written;
    };
    const TRow rows[] = {{"'a.b_c%'", "ilike 'a.b_c%'"},
                         {"'a[b'", "ilike 'a[b'"},
                         {"'[]]'", "~* '^[\\]]$'"},
                         {"'[^]x]_'", "~* '^[^\\]x].$'"},
                         {"'a.(b)[c-e\\^]%'", "~* '^a\\.\\(b\\)[c-e\\\\\\^].*$'"},
                         {"'[[]''%'", "~* '^[\\[]''.*$'"},
                         {"'!%[x]!_!!' escape '!'", "~* '^%[x]_!$'"},
                         {"'![x]' escape '!'", "ilike '![x]' escape '!'"},
                         {"'x' escape 'ab'", "! ESCAPE 后只能有一个字符"}};
    for (const TRow &row : rows) {
        const QString rewritten = Rewritten(u"select 1 where A like "_s + QString::fromUtf8(row.Pattern));
        EXPECT_EQ(rewritten.section(u"collate \"C\" "_s, -1).toStdString(), row.Written) << row.Pattern;
    }
}

TEST(PostgresRewriter, NamesThePlaceOfWhatItCannotRead)
{
    EXPECT_EQ(Rewritten(u"select 1\nfrom [T"_s), u"! 方括号没有结束（第 2 行第 6 列）"_s);
    EXPECT_EQ(Rewritten(u"update T set"_s), u"! 语句不完整（第 1 行第 13 列）"_s);
    EXPECT_EQ(Rewritten(u"select [] from T"_s), u"! 方括号中没有名称"_s);
    EXPECT_EQ(Rewritten(u"create index IX on T(A+1)"_s), u"! 语句有语法错误：“+”（第 1 行第 23 列）"_s);
}

TEST(PostgresRewriter, TakesLinearTime)
{
    const QString chains[] = {u"A+B-"_s.repeated(50'000), u"A+'x'+"_s.repeated(50'000),
                              u"left(A,1)+"_s.repeated(50'000)};
    QElapsedTimer timer;
    timer.start();
    for (const QString &chain : chains)
        Rewritten(u"select "_s + chain + u'1');
    EXPECT_LT(timer.elapsed(), 20'000);
}

TEST(PostgresSetup, HasNothingThatADriverTakesForAParameter)
{
    for (const QByteArray &sql : {PostgresSessionSql(), PostgresIsPreparedSql(), PostgresPrepareSql()}) {
        EXPECT_FALSE(sql.contains('?'));
        EXPECT_FALSE(sql.contains("::"));
    }
}

} // namespace
