// SPDX-License-Identifier: MIT
#include "DialectDatabase.h"
#include "DialectRows.h"

#include <QElapsedTimer>
#include <QFile>
#include <QRegularExpression>
#include <QSet>

#include <gtest/gtest.h>

namespace Korvane {

namespace {

constexpr const char *Schema[] = {
    "create table T(ID int, A varchar(10) collate nocase, B varchar(10) collate nocase, N decimal(12, 2), "
    "D char(8) collate nocase, F char(1) collate nocase)",
    "create table U(ID int, A varchar(10) collate nocase, N int)",
    "create table W(A int, B varchar(5) constraint CK_B check(B<>''), C int, E int, constraint PK_W primary "
    "key(A))",
    "create table Z(ID int)",
    "create table sysobjects(name text, xtype text)",
    "create table sysdatabases(name text, crdate text)",
    "create table sysprocesses(spid int, program_name text)",
    "create index \"T.IX\" on T(A)",
    "create view V as select 1 as A",
    "insert into T values(1, 'a1', 'b', 2.5, '20240131', 'Y'), (2, 'A2', null, 4, '20231231', 'N')",
    "insert into U values(1, 'u1', 1), (3, 'u3', 3)",
    "insert into W values(1, 'w', 2, 3)"};

TEST(SqlRewriter, RewritesAndRunsEveryRow)
{
    for (const TDialectRow &row : DialectRows) {
        const QString expected = QString::fromUtf8(row.Expected);
        const QString statement = QString::fromUtf8(row.Statement);
        EXPECT_EQ(Rewritten(statement, row.Dialect).toStdString(), expected.toStdString()) << row.Id;
        if (expected.startsWith(u'!'))
            continue;
        TDialectDatabase database(row.Dialect);
        for (const char *sql : Schema)
            database.Rows(sql);
        try {
            database.Run(statement);
        } catch (const Exception &error) {
            ADD_FAILURE() << row.Id << ": " << error.what();
        }
    }
}

TEST(SqlRewriter, TheDocumentsRowsAndTheTestsAreTheSame)
{
    QFile file(QStringLiteral(KORVANE_SOURCE_DIR "/docs/dialects.md"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    static const QRegularExpression line(QStringLiteral("^\\| ([a-z-]+) \\|"),
                                         QRegularExpression::MultilineOption);
    QSet<QString> documented;
    for (auto it = line.globalMatch(QString::fromUtf8(file.readAll())); it.hasNext();)
        documented.insert(it.next().captured(1));
    documented.remove(QStringLiteral("id"));
    QSet<QString> tested;
    for (const TDialectRow &row : DialectRows)
        tested.insert(QString::fromLatin1(row.Id));
    EXPECT_GT(tested.size(), 50);
    EXPECT_TRUE((documented - tested).isEmpty()) << (documented - tested).values().join(u' ').toStdString();
    EXPECT_TRUE((tested - documented).isEmpty()) << (tested - documented).values().join(u' ').toStdString();
}

TEST(SqlRewriter, TellsTheCatalogTablesAndServerCommands)
{
    const auto catalog = RewriteForSqlite(
        QStringLiteral("select 1 from master..SysProcesses p, [dbo].[sysobjects] where 'sysdatabases'=''"),
        MSSQL);
    EXPECT_EQ(catalog.CatalogTables, (QSet<QString>{"sysprocesses", "sysobjects"}));

    struct TRow
    {
        const char *Statement;
        TServerCommand Command;
        const char *Database;
        const char *File;
    };
    const TRow rows[] = {{"create database [订单 1]", TServerCommand::CreateDatabase, "订单 1", ""},
                         {"DROP DATABASE ORDERS;", TServerCommand::DropDatabase, "ORDERS", ""},
                         {"backup database ORDERS to disk='C:\\it''s.bak'", TServerCommand::BackupDatabase,
                          "ORDERS", "C:\\it's.bak"},
                         {"restore database [master] from disk = N'f' with replace",
                          TServerCommand::RestoreDatabase, "master", "f"}};
    for (const TRow &row : rows) {
        const auto result = RewriteForSqlite(QString::fromUtf8(row.Statement), MSSQL);
        EXPECT_EQ(result.Command, row.Command) << row.Statement;
        EXPECT_EQ(result.CommandDatabase, QString::fromUtf8(row.Database));
        EXPECT_EQ(result.CommandFile, QString::fromUtf8(row.File));
        EXPECT_TRUE(result.Steps.isEmpty());
    }
    EXPECT_EQ(Rewritten(QStringLiteral("create database a select 1"), MSSQL),
              QStringLiteral("! 内嵌数据库引擎不支持“一批中的 DATABASE 语句和其他语句”"));
}

TEST(SqlRewriter, SplitsWhereAStatementBegins)
{
    struct TRow
    {
        const char *Batch;
        int Statements;
    };
    const TRow rows[] = {{"", 0},
                         {" ; ;; -- nothing\n", 0},
                         {"insert into T(ID) select ID from U update T set ID=1", 2},
                         {"create view V2 as select ID from T union select ID from U delete from T", 2},
                         {"alter table T add constraint FK foreign key(ID) references U(ID) on delete "
                          "cascade on update set null "
                          "drop table U",
                          2},
                         {"select 1 select ';' select [;] select 2 -- ; select 3", 4},
                         {"select case when 1=1 then 2 end commit", 2},
                         {"create table #t(A int) select * into #u from #t drop table #t", 3}};
    for (const TRow &row : rows)
        EXPECT_EQ(RewriteForSqlite(QString::fromUtf8(row.Batch), MSSQL).Steps.size(), row.Statements)
            << row.Batch;
}

TEST(SqlRewriter, NamesThePlaceOfWhatItCannotRead)
{
    struct TRow
    {
        TSqlDialect Dialect;
        const char *Statement;
        const char *Message;
    };
    const TRow rows[] = {{Access, "select 'abc", "文本没有结束（第 1 行第 8 列）"},
                         {Access, "select\r\n  \"abc", "文本没有结束（第 2 行第 3 列）"},
                         {MSSQL, "select \"abc", "名称没有结束（第 1 行第 8 列）"},
                         {MSSQL, "select 1\nfrom [T", "方括号没有结束（第 2 行第 6 列）"},
                         {MSSQL, "select /* 1", "注释没有结束（第 1 行第 8 列）"},
                         {Access, "select #1/1/2024", "日期没有结束（第 1 行第 8 列）"},
                         {Access, "select (1", "括号没有结束（第 1 行第 8 列）"},
                         {Access, "select 1)", "多余的右括号（第 1 行第 9 列）"},
                         {Access, "update T set", "语句不完整（第 1 行第 13 列）"},
                         {Access, "insert into T(A) values 5", "语句有语法错误：“5”（第 1 行第 25 列）"},
                         {MSSQL, "drop index IX", "语句不完整（第 1 行第 14 列）"},
                         {MSSQL, "select convert(varchar) from T", "语句有语法错误：“)”（第 1 行第 23 列）"}};
    for (const TRow &row : rows)
        EXPECT_EQ(Rewritten(QString::fromUtf8(row.Statement), row.Dialect).toStdString(),
                  std::string("! ") + row.Message);
    EXPECT_TRUE(Rewritten(QString(QChar(0)), Access).contains(QStringLiteral("空字符")));
}

TEST(SqlRewriter, LimitsDepthAndTakesLinearTime)
{
    const auto nested = [](int depth) {
        return QStringLiteral("select ") + QString(depth, u'(') + u'1' + QString(depth, u')');
    };
    EXPECT_EQ(Rewritten(nested(1000), MSSQL), nested(1000));
    EXPECT_TRUE(Rewritten(nested(1001), MSSQL).startsWith(QStringLiteral("! 括号嵌套过深")));
    EXPECT_TRUE(Rewritten(QStringLiteral("select ") + QStringLiteral("case when ").repeated(5000), MSSQL)
                    .startsWith(QStringLiteral("! 表达式嵌套过深")));
    // Long chains: a quadratic pass over these would take minutes.
    const QString chains[] = {
        QStringLiteral("A+B-").repeated(100'000), QStringLiteral("A & ").repeated(200'000),
        QStringLiteral("- not ").repeated(100'000), QStringLiteral("f(a),").repeated(100'000)};
    QElapsedTimer timer;
    timer.start();
    for (const QString &chain : chains)
        Rewritten(QStringLiteral("select ") + chain + u'1', Access);
    EXPECT_LT(timer.elapsed(), 20'000);
}

} // namespace

} // namespace Korvane
