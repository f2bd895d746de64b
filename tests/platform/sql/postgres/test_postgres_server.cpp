// SPDX-License-Identifier: MIT
// What rewritten statements do on a server, beside what the embedded engine does in the same dialect.
#include "PostgresRows.h"
#include "platform/sql/postgres/PostgresRewriter.h"
#include "support/TestServer.h"

#include <gtest/gtest.h>

using namespace Korvane;
using namespace Korvane::Testing;
using namespace Qt::StringLiterals;

namespace {

const QStringList Schema = {
    u"create table T(ID int, A varchar(10), B varchar(10), N decimal(12, 2), D char(8), F char(1))"_s,
    u"insert into T values(1, 'a1', 'b', 2.5, '20240131', 'Y')"_s,
    u"insert into T values(2, 'A2', null, 4, '20231231', 'N')"_s,
    u"create table U(ID int, A varchar(10), N int)"_s,
    u"insert into U values(1, 'u1', 1)"_s,
    u"insert into U values(3, 'u3', 3)"_s,
    u"create table W(A int, B varchar(5) constraint CK_B check(B<>''), C int, E int, "
    "constraint PK_W primary key(A))"_s,
    u"insert into W values(1, 'w', 2, 3)"_s,
    u"create table Z(ID int)"_s,
    u"create index IX on T(A)"_s,
    u"create view V as select 1 as A"_s};

class PostgresServer : public WithServer<::testing::Test>
{
protected:
    void SetUp() override
    {
        Open(ServerKind::Postgres);
        if (!IsSkipped())
            RunAll(*FConnection, Schema);
    }

    /// The rows of a query behind other statements, of which nothing stays; "fails" if one does.
    static QString Outcome(TADOConnection &connection, const QStringList &statements, const QString &query)
    {
        QString rows;
        connection.BeginTrans();
        try {
            RunAll(connection, statements);
            rows = Testing::Rows(connection, query);
        } catch (const Exception &error) {
            rows = u"fails"_s;
        }
        connection.RollbackTrans();
        return rows;
    }
};

TEST_F(PostgresServer, RunsEveryRow)
{
    for (const TPostgresRow &row : PostgresRows) {
        const QString id = QString::fromLatin1(row.Id);
        const QString statement = QString::fromUtf8(row.Statement);
        // Another database, parameters without values, and what ends the transaction of this test.
        if (row.Expected[0] == '!' || id == "server"_L1 || id == "parameter"_L1 || id == "transaction"_L1 ||
            statement.contains("x.dbo"_L1))
            continue;
        FConnection->BeginTrans();
        try {
            FConnection->Query(statement);
        } catch (const Exception &error) {
            ADD_FAILURE() << row.Id << ": " << row.Statement << ": " << error.what();
        }
        FConnection->RollbackTrans();
    }
}

TEST_F(PostgresServer, DoesAsTheEmbeddedEngineDoes)
{
    struct TRow
    {
        const char *Statement; ///< parts between " ;; "
        const char *Query;
    };
    const TRow rows[] = {
        // names, texts, order
        {"", "select a.[sel ect] as Id, b as 'my name' from (select A as [sel ect], B from T) a order by 1"},
        {"", "select A from T where a = 'A1' or [b] = 'B'"},
        {"", "select count(*) from T t1 join T t2 on t1.A=upper(t2.A)"},
        {"", "select 'it''s', 'a\\b', N'中''文', 'x:y', ':p', '?'"},
        {"", "select A from T order by B"},
        {"", "select A from T order by B desc"},
        {"", "select distinct upper(A) from T union select 'x' order by 1 desc"},
        {"", "select ID, A from T where A >= 'a' and A < 'A2' order by A"},
        {"", "select 1 where 'N'='n' and 'a ' <> 'a'"},
        {"", "select top 1 A from T where B is null or B <> 'B' order by A desc"},
        {"", "select (select top 1 A from U where U.ID=T.ID) + 'x' from T order by T.ID"},
        {"", "(select A from T) union (select top 1 A from U order by A) order by 1"},
        {"", "select * from (select 'N' as FSELECTED, * from (select T.ID as Id, U.A as [Cust Name] from T "
             "left join U on T.ID=U.ID) ZZZ) ZZZ where Id=2"},
        {"", "with q as (select top 1 A, ID from T order by ID) select q.A from q join T on q.ID=T.ID"},
        {"", "select row_number() over (partition by F order by N desc), A from T order by A"},
        {"", "select F, sum(N) as S from T group by F having sum(N)>3 order by F"},
        {"", "select sum(N), avg(N), count(*), max(A), min(D), count(distinct F) from T"},
        // like
        {"", "select A from T where A like 'A%' order by ID"},
        {"", "select A from T where A like '[a-b][^3-9]' order by ID"},
        {"", "select A from T where A not like '%[2]'"},
        {"", "select A from T where N like '2%' or A like '%!%' escape '!'"},
        {"", "select A from T where A like B+'%' or A like left(A,1)+'[0-1]'"},
        {"", "select 1 where 'a?c[d' like 'a?'+'[^b][[]'+'d' and 'a\\c' like 'a'+'[\\]'+'c' and 'AB' like "
             "'a'+'[b-d]' and not 'ab' like 'a!'+'%' escape '!' and 'a^c' like 'a'+'[]^]c'"},
        {"", "select 1 where 'a\\b' like 'a\\b' and 'a\\b' like '%\\_' and 'axb' not like 'a.b'"},
        // operators and functions
        {"", "select A+B, A+'-'+B, isnull(B,'')+'x', ''+convert(varchar(10), ID) from T order by ID"},
        {"", "select N+1, N*2, N-'1', ID+N, ID*1.0/2, ID%2, '1'+5, 7/2, -7/2, 7.0/2, 6^3, 5&3, 5|2 from T"},
        {"", "select ID*A, A+1 from (select 2 as ID, '3' as A) q"},
        {"", "select A from T where ID in (1,3) and A in ('A1','x') and ID='1' and D=20240131"},
        {"",
         "select left(A,1), right(A,1), len('ab  '), substring(A,0,2), charindex('2',A), "
         "charindex('A',A,2), replace(A,'a','z'), space(2)+'x', replicate('ab',2), upper(A), ltrim('  x'), "
         "rtrim('x  ')+'|', char(65), ascii('A') from T order by ID"},
        {"",
         "select left('中文字',2), len('中文'), substring('中文字',2,1), right('中文字',1), right('ab',0)"},
        {"", "select left('abc',-1)"},
        {"",
         "select isnull(N,0), isnull(B,'none'), iif(N>3,'big','small'), case A when 'A1' then 1 else 2 end "
         "from T order by ID"},
        {"",
         "select convert(varchar(8),D,112), convert(char(10),D,120), convert(varchar(10),'2024-01-31 "
         "10:20:30',108), convert(varchar(3),'abcdef'), convert(int,'12'), convert(int, 2.9), cast('3.456' "
         "as decimal(10,2)), convert(float,'1.5'), cast(1 as bit), str(2.5,6,2), str(7) from T order by ID"},
        {"", "select convert(int, 'x')"},
        {"", "select year(D), month(D), day(D), datepart(weekday,D), datepart(week,D), datepart(quarter,D), "
             "datepart(dy,D) from T order by ID"},
        {"", "select dateadd(month,1,'20240131'), dateadd(hour,1,'20240131'), dateadd(mi,-5,'2024-01-31 "
             "00:03:00'), datediff(day,'20240131','2024-03-01'), datediff(month,'20231231','20240101'), "
             "datediff(hour,'2024-01-01 23:59','2024-01-02 00:01'), datediff(week,'20240106','20240107')"},
        {"", "select year('20240230')"},
        {"", "select round(2.55,1), round(-2.5,0), round(1234,-2), round(2.59,1,1), abs(-3), power(2,3), "
             "isnumeric('1e5'), isnumeric('x')"},
        {"", "select 1 where convert(varchar(8),getdate(),112)>='20240101' and getdate()>'2024-01-01'"},
        // rows
        {"update q set q.A=U.A, N=U.N+1 from T q, U where U.ID=q.ID", "select A, N from T order by ID"},
        {"update T set A=U.A from U where U.ID=T.ID", "select A from T order by ID"},
        {"update q set A='out' from T q left join U on q.ID=U.ID where U.ID is null",
         "select A from T order by ID"},
        {"update q set A=v.A from U v join T q on v.ID=q.ID join W on W.A=q.ID where v.N=1",
         "select A from T order by ID"},
        {"delete q from T q join U on q.ID=U.ID where U.N=1", "select ID from T"},
        {"delete q from T q left join U on q.ID=U.ID where U.N is null", "select ID from T"},
        {"delete T from U where U.ID=T.ID", "select ID from T"},
        {"insert into T(ID, A) select 5, 'five' union select 6, 'six' ;; insert T(T.ID) values(7)",
         "select ID, A from T where ID>4 order by ID"},
        {"truncate table T", "select count(*) from T"},
        {"insert into W values(1,'x',1,1)", "select 1"},
        {"insert into W values(2,'',1,1)", "select 1"},
        // tables
        {"create table X(ID int identity(100,1) primary key clustered, A varchar(5)) ;; insert into X(A) "
         "values('a') ;; insert into X(ID,A) values(150,'c') ;; insert into X(A) values('d') ;; insert into "
         "X "
         "values(null,'e')",
         "select ID, A from X order by ID"},
        {"create table X(A varchar(5)) ;; insert into X values('a') ;; alter table X add NO int identity ;; "
         "insert into X(A) values('b')",
         "select A, NO from X order by A"},
        {"create table X(A varchar(5) null, B bit not null default 1, C int default '7', D decimal(12, 2) "
         "default 1.5, E datetime, constraint PK_X primary key(A)) ;; insert into X(A) values('a')",
         "select A, B, C, D, E from X"},
        {"create table X(A varchar(5), B image) ;; insert into X values('x',0x4142)",
         "select A, B, convert(varchar(5),B) from X"},
        {"create table X(A varchar(5) primary key) ;; insert into X values('a') ;; insert into X values('A')",
         "select 1"},
        {"create table X(A char(5) primary key) ;; insert into X values('a') ;; insert into X values('a ')",
         "select A+'|', len(A) from X where A='a'"},
        {"create table X(A varchar(5), B varchar(5) collate Chinese_PRC_CS_AS) ;; insert into X "
         "values('a', 'a')",
         "select 1 from X where A='A' and B<>'A'"},
        {"alter table W alter column B varchar(20) not null ;; alter table W add G varchar(9) default 'z' ;; "
         "insert into W(A, B) values(9, '123456')",
         "select A, B, G from W order by A"},
        {"alter table W drop constraint CK_B ;; alter table W drop column B", "select * from W"},
        {"alter table W drop column A", "select 1"},
        {"alter table W drop column B", "select 1"},
        {"alter table W add X int not null", "select 1"},
        {"create unique index UX on T(F) ;; insert into T(F) values('y')", "select 1"},
        {"create table #tmp(A int, B varchar(5)) ;; insert into #tmp values(1,'x')", "select * from #tmp"},
        {"create view VV as select top 1 A, N+1 as M from T order by ID desc", "select * from VV"},
        {"select A into X from T where ID=1", "select * from X"},
    };
    const TestDatabase embedded(TSqlDialect::MSSQL);
    const auto local = embedded.Connect();
    RunAll(*local, Schema);
    for (const TRow &row : rows) {
        const QStringList statements = QString::fromUtf8(row.Statement).split(u" ;; "_s, Qt::SkipEmptyParts);
        const QString query = QString::fromUtf8(row.Query);
        EXPECT_EQ(Outcome(*FConnection, statements, query).toStdString(),
                  Outcome(*local, statements, query).toStdString())
            << row.Statement << "\n"
            << row.Query;
    }
}

/// The differences that docs/dialects.md tells of.
TEST_F(PostgresServer, DiffersWhereTheDocumentSaysSo)
{
    struct TRow
    {
        const char *Statement;
        const char *Query;
        const char *Rows;
    };
    const TRow rows[] = {
        {"", "select ID/2 from T order by ID", "0 / 1"},
        {"", "select 1/(ID-1) from T", "fails"},
        {"", "select N%2 from T order by ID", "0.5 / 0"},
        {"", "select convert(varchar(10), N) from T order by ID", "2.50 / 4.00"},
        {"", "select 1 where '①' collate database_default='1'", "1"},
        {"insert into T(A) values('12345678901')", "select 1", "fails"},
        {"insert into T(A) values('1234567890  ')", "select len(A) from T where ID is null", "10"},
        {"alter table W alter column B int", "select 1", "fails"},
        {"alter table W add constraint DF_E default 5 for E ;; insert into W(A) values(8) ;; alter table W "
         "drop "
         "constraint DF_E ;; insert into W(A) values(9)",
         "select E from W where A>1 order by A", "5 / ~"},
        {"create table X(A int identity) ;; insert into X(A) values(5) ;; truncate table X ;; insert into X "
         "values(null)",
         "select A from X", "1"},
        {"create table X(D datetime) ;; insert into X values('20240131')",
         "select convert(varchar(23), D), year(D) from X", "2024-01-31 00:00:00.000|2024"},
        {"", "select count(*) from sysobjects where xtype='U' and name='t'", "1"},
        {"", "select count(*) from master..sysdatabases where name='postgres'", "1"},
    };
    for (const TRow &row : rows)
        EXPECT_EQ(Outcome(*FConnection, QString::fromUtf8(row.Statement).split(u" ;; "_s, Qt::SkipEmptyParts),
                          QString::fromUtf8(row.Query))
                      .toStdString(),
                  row.Rows)
            << row.Statement << "\n"
            << row.Query;
}

TEST_F(PostgresServer, CountsTheRowsOfTheStatementBefore)
{
    FConnection->Execute(u"update T set F='N'"_s);
    EXPECT_EQ(Rows(u"select @@rowcount"_s), u"2"_s);
    EXPECT_EQ(Rows(u"delete T where ID=1 select @@rowcount"_s), u"1"_s);
}

TEST_F(PostgresServer, NumbersGoOnBehindThoseOfAnotherSession)
{
    FConnection->Execute(u"create table X(A int identity)"_s);
    const auto other = FDatabase->Connect();
    other->Execute(u"insert into X(A) values(7)"_s);
    FConnection->Execute(u"insert into X values(null)"_s);
    EXPECT_EQ(Testing::Rows(*other, u"select A from X order by A"_s), u"7 / 8"_s);
    EXPECT_EQ(Rows(u"select @@identity"_s), u"8"_s);
}

} // namespace
