// SPDX-License-Identifier: MIT
// Statements served by prepared ones do what they do without.
#include "platform/core/Variants.h"
#include "platform/sql/sqlite/SqliteDriver.h"
#include "support/Packets.h"
#include "support/TestDatabase.h"

#include <QRandomGenerator>

using namespace Korvane;
using namespace Korvane::Testing;
using namespace Qt::StringLiterals;

namespace {

/// A driver on a database of its own, which tells all there is to tell of what it does.
class Subject
{
public:
    Subject(TSqlDialect dialect, TStatementReuse reuse)
        : FDatabase(dialect), FDriver(std::make_unique<TSqliteDriver>(dialect, reuse))
    {
        FDriver->Connect(TConnectionString(FDatabase.ConnectionString()), {});
    }

    QString Execute(const QString &statement, const QByteArray &blob = {})
    {
        return Tell([&] {
            const TSqlParameter parameter{u"p"_s, blob};
            return u"rows: %1"_s.arg(
                FDriver->Execute(statement, {&parameter, size_t(blob.isNull() ? 0 : 1)}));
        });
    }
    QString Query(const QString &statement)
    {
        return Tell([&] { return TextOf(FDriver->Query(statement)); });
    }
    /// All that stands in the table, as another tool of the engine sees it.
    QString Contents() const
    {
        static const QString columns = u"K,C,V,M,I,S,D,F,B,Y,T,N"_s;
        QStringList cells;
        for (const QString &column : columns.split(u','))
            cells += u"typeof(%1)||' '||quote(%1)"_s.arg(column);
        return PlainDatabase(FDatabase.FileName())
            .Run(u"select %1 from T order by rowid"_s.arg(cells.join(u",' ',"_s)))
            .replace(u" / "_s, u"\n"_s);
    }

    TestDatabase FDatabase;
    std::unique_ptr<SqlDriver> FDriver;

private:
    static QString Tell(const std::function<QString()> &action)
    {
        try {
            return action();
        } catch (const ESqlError &error) {
            QString text = u"error:"_s;
            for (const TSqlError &entry : error.Errors())
                text += u" %1 %2 %3"_s.arg(entry.Description).arg(entry.NativeError).arg(entry.SQLState);
            return text;
        }
    }
};

/// Makes statements from patterns, in which "@" is some literal, "$" a key and "%" a number that
/// differs little.
class StatementMaker
{
public:
    StatementMaker(TSqlDialect dialect, quint32 seed)
        : FRandom(seed), FIsAccess(dialect == TSqlDialect::Access)
    {
    }

    QString Make()
    {
        const QStringList &own = FIsAccess ? OwnToAccess : OwnToMssql;
        const int number = FRandom.bounded(int(Common.size() + own.size()));
        QString statement;
        for (const QChar c : number < Common.size() ? Common[number] : own[number - Common.size()]) {
            if (c == u'@')
                statement +=
                    FRandom.bounded(4) == 0 ? Decimal() : Pick(FIsAccess ? AccessValues : MssqlValues);
            else if (c == u'$')
                statement += u"'k%1'"_s.arg(FRandom.bounded(8));
            else if (c == u'%')
                statement += QString::number(FRandom.bounded(-2, 9));
            else
                statement += c;
        }
        return statement;
    }

    static QString TableOf(TSqlDialect dialect)
    {
        return u"create table T(K varchar(10) not null, C char(10), V varchar(20), M %1, I int, S smallint, "
               "D decimal(12,2), F float, B image, Y bit, T datetime, N char(14), "
               "constraint PK_T primary key(K))"_s.arg(dialect == TSqlDialect::Access ? u"memo" : u"text");
    }

private:
    QString Decimal()
    {
        const qint64 digits = qint64(FRandom.generate64() >> FRandom.bounded(12, 63));
        const QString text = QString::number(digits);
        const int places = FRandom.bounded(0, int(text.size()));
        return (FRandom.bounded(2) ? u"-"_s : u""_s) + text.chopped(places) +
               (places > 0 ? u'.' + text.right(places) : u""_s);
    }
    QString Pick(const QStringList &own)
    {
        const int number = FRandom.bounded(int(Values.size() + own.size()));
        return number < Values.size() ? Values[number] : own[number - Values.size()];
    }

    static const QStringList Common, OwnToAccess, OwnToMssql;
    static const QStringList Values, AccessValues, MssqlValues;

    QRandomGenerator FRandom;
    const bool FIsAccess;
};

const QStringList StatementMaker::Common = {
    u"insert into T(K,C,V,M,I,S,D,F,Y,T,N) values($,@,@,@,@,@,@,@,@,@,@)"_s,
    u"insert into T(K,I) values(@,%)"_s,
    u"insert into T ( K , V ) values ( @ , @ ) -- it's 'so', 5"_s,
    u"insert into T(K,I) values($,@),(@,@)"_s,
    u"insert into T(K,B,V) values($,:p,@)"_s,
    u"update T set C=@,V=@,M=@,N=@,T=@ where K=$"_s,
    u"update T set I=@, S=@, D=@, F=@, Y=@ where K=$"_s,
    u"update T set I=@, D=@ where K=$ and I<>@"_s,
    u"update T set T.D=@ where T.K=$"_s,
    u"update T set B=:p,V=@ where K=$"_s,
    u"update T set B=@ where K=$"_s,
    u"update T set K=@ where K=$"_s,
    u"update T set V='a'+@ where I=%"_s,
    u"update T set D=D+% where K=$ /* 'x' */"_s,
    u"update T set D=%+%, V=- 5 where K=$"_s,
    u"update T set I=iif(I=@,%,%) where K=$"_s,
    u"update T set I=% where K=(select max(K) from T where V=@)"_s,
    u"update T set I=% where K=$; update T set S=@ where K=$"_s,
    u"delete from T where K=$"_s,
    u"delete from T where I<% and F>@ or not (V<>@)"_s,
    u"select * from T where K=$ order by K"_s,
    u"select * from T where V=@ or C<>@ and N>=@ order by K"_s,
    u"select K,I,D+1,@ as X from T where D=@ order by K"_s,
    u"select K from T where I=@ or S=@ or F=@ order by 1"_s,
    u"select K from T where I between % and % order by K"_s,
    u"select K from T where I between % and S=@ order by K"_s,
    u"select K from T where V like @ order by K"_s,
    u"select K from T where V in (@,@) order by K"_s,
    u"select K from T where V+C=@ or I-1=@ order by K"_s,
    u"select count(*), @ from T where F<=@"_s,
    u"select top 3 K from T where I>% order by K"_s,
    u"select I,count(*) from T where Y=@ group by I having I<>% order by I"_s,
    u"select K from T where K=$ and exists (select 1 from T q where q.I=@) order by K"_s,
    u"select K from T where Y=@ and B=@ or T=@"_s,
    u"insert into T(K,I) select K+@, I from T where I=%"_s,
    u"select @"_s,
    u"update T set NONE=@ where K=$"_s,
};
const QStringList StatementMaker::OwnToAccess = {
    u"update T set T=#1/31/2024#, Y=True, V=@ where K=$"_s,
    u"delete * from T where K=$ and isnull(V)"_s,
    u"select K&@ from T where K=$ and Y=Yes"_s,
};
const QStringList StatementMaker::OwnToMssql = {
    u"update q set q.I=%, q.V=@ from T q where q.K=$"_s, u"delete T where K=$ and I=@"_s,
    u"select X=@, K from dbo.T where dbo.T.K=$"_s,       u"select convert(varchar(5), D) from T where K=$"_s,
    u"select top (%) K from T where K<>$ order by K"_s,  u"insert T(K,I) values($,@)"_s,
};
const QStringList StatementMaker::Values = {
    u"null"_s,
    u"NULL"_s,
    u"''"_s,
    u"'a'"_s,
    u"'A'"_s,
    u"'it''s'"_s,
    u"''''"_s,
    u"' '"_s,
    u"'中文''字'"_s,
    u"'😀'"_s,
    u"'5'"_s,
    u"'05'"_s,
    u"'5.0'"_s,
    u"'-7'"_s,
    u"'1e3'"_s,
    u"'0x10'"_s,
    u"' 5 '"_s,
    u"'9223372036854775808'"_s,
    u"'1e400'"_s,
    u"'Y'"_s,
    u"'20240131083000'"_s,
    u"'2024-01-31 08:30:00'"_s,
    u"':p'"_s,
    u"'?'"_s,
    u"'-- x'"_s,
    u"'/* y */'"_s,
    u"'[x]'"_s,
    u"'\"q\"'"_s,
    u"'a*'"_s,
    u"'%'"_s,
    u"0"_s,
    u"1"_s,
    u"5"_s,
    u"007"_s,
    u"-3"_s,
    u"-0"_s,
    u"- 5"_s,
    u"+5"_s,
    u"(5)"_s,
    u"0.5"_s,
    u"0.50"_s,
    u"-0.0"_s,
    u"5.0"_s,
    u"5."_s,
    u".5"_s,
    u"0.1"_s,
    u"2.675"_s,
    u"1234567890.12"_s,
    u"1e3"_s,
    u"1E-5"_s,
    u"1e308"_s,
    u"1e400"_s,
    u"999999999999999999"_s,
    u"9223372036854775807"_s,
    u"-9223372036854775808"_s,
    u"9223372036854775808"_s,
    u"18446744073709551616"_s,
    u"12345678901234567.89"_s,
    u"'a'+'b'"_s,
    u"1+1"_s,
    u"'unterminated"_s,
    u"5x"_s,
};
const QStringList StatementMaker::AccessValues = {u"\"it's\""_s,   u"\"a\"\"b\""_s, u"#2024-01-31#"_s,
                                                  u"#13:30:00#"_s, u"True"_s,       u"now() is null"_s};
const QStringList StatementMaker::MssqlValues = {u"N'中文'"_s, u"n'it''s'"_s, u"0x4A4B"_s,
                                                 u"N''"_s,     u"\"K\""_s,    u"cast(5 as int)"_s};

class StatementReuse : public testing::TestWithParam<TSqlDialect>
{
protected:
    /// Runs a statement on both; it must do the same.
    void Run(const QString &statement, const QByteArray &blob = {})
    {
        const QString trace = u"statement: "_s + statement;
        const auto run = [&](Subject &subject) {
            return statement.startsWith(u"select"_s) ? subject.Query(statement)
                                                     : subject.Execute(statement, blob);
        };
        EXPECT_EQ(run(FWith), run(FWithout)) << trace.toStdString();
    }

    Subject FWith{GetParam(), TStatementReuse::On};
    Subject FWithout{GetParam(), TStatementReuse::Off};
};

INSTANTIATE_TEST_SUITE_P(Dialects, StatementReuse, testing::ValuesIn(BothDialects), [](const auto &tested) {
    return tested.param == TSqlDialect::Access ? "Access" : "MSSQL";
});

} // namespace

TEST_P(StatementReuse, does_with_generated_statements_what_is_done_without_it)
{
    for (const quint32 seed : {1u, 2u, 3u}) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        StatementMaker maker(GetParam(), seed);
        Run(StatementMaker::TableOf(GetParam()));
        for (int i = 0; i < 2500 && !HasFailure(); ++i) {
            Run(maker.Make(), i % 3 == 0 ? QByteArray() : QByteArray("\0'blob", 6) + char(i));
            if (i % 50 == 0) {
                ASSERT_EQ(FWith.Contents(), FWithout.Contents()) << "after statement " << i;
            }
        }
        ASSERT_EQ(FWith.Contents(), FWithout.Contents());
        Run(u"drop table T"_s);
    }
}

TEST_P(StatementReuse, sees_what_became_of_the_tables)
{
    // Each round the statements meet the tables as someone has left them.
    static const QStringList changes = {
        u"create table T(K int, V varchar(5))"_s,
        u"alter table T add W int"_s,
        u"drop table T"_s,
        u"create table T(V float, K varchar(9) not null)"_s,
        u"create table U(K int)"_s,
        u"create index IX on T(K)"_s,
        u"insert into T(V,K) values(1,'1')"_s,
        u"drop table T"_s,
        u"create view T as select K, K*2 as V from U"_s,
        u"drop view T"_s,
        u"create table T(K int, V int, constraint PK primary key(K))"_s,
    };
    for (const bool byOthers : {false, true}) {
        SCOPED_TRACE(byOthers ? "changed by others" : "changed by the connection itself");
        const auto others = {FWith.FDatabase.Connect(), FWithout.FDatabase.Connect()};
        for (const QString &change : changes) {
            if (byOthers)
                for (const auto &other : others)
                    other->Execute(change);
            else
                Run(change);
            for (int i = 0; i < 4; ++i) {
                Run(u"insert into T(K,V) values(%1,'0%1')"_s.arg(i % 3));
                Run(u"update T set V='%1' where K='%1'"_s.arg(i));
                Run(u"select * from T where K=%1"_s.arg(i));
                Run(u"select * from T"_s);
            }
        }
        Run(u"drop table T"_s);
        Run(u"drop table U"_s);
    }
}

TEST_P(StatementReuse, goes_along_with_transactions)
{
    Run(u"create table T(K int, constraint PK primary key(K))"_s);
    for (int round = 0; round < 3; ++round) {
        for (Subject *subject : {&FWith, &FWithout})
            subject->FDriver->BeginTransaction();
        for (int i = 0; i < 5; ++i)
            Run(u"insert into T(K) values(%1)"_s.arg(i * (round + 1)));
        Run(u"create table U%1(A int)"_s.arg(round));
        for (Subject *subject : {&FWith, &FWithout})
            round == 1 ? subject->FDriver->RollbackTransaction() : subject->FDriver->CommitTransaction();
        Run(u"select * from T order by K"_s);
        Run(u"select * from U%1"_s.arg(round));
    }
}

TEST_P(StatementReuse, holds_no_lock_and_no_value)
{
    Run(u"create table T(K int, B image, constraint PK primary key(K))"_s);
    const auto other = FWith.FDatabase.Connect({}, 0);
    const TSqlParameter blob{u"P"_s, QByteArray("blob")};
    for (int i = 0; i < 4; ++i) {
        FWith.FDriver->Execute(u"insert into T(K,B) values(%1,:P)"_s.arg(i), {&blob, 1});
        FWith.FDriver->Query(u"select * from T where K=%1"_s.arg(i));
        FWith.FDriver->Execute(u"select * from T where K=%1"_s.arg(i));
        EXPECT_THROW(FWith.FDriver->Execute(u"insert into T(K,B) values(%1,:P)"_s.arg(i)), ESqlError);
        FWith.FDriver->Execute(u"insert into T(K,B) values(%1,:P)"_s.arg(i + 100));
        // A reader that stayed would keep the log from being written back.
        EXPECT_EQ(Rows(*other, u"select count(*) from T"_s), QString::number(2 * i + 2));
        EXPECT_EQ(PlainDatabase(FWith.FDatabase.FileName()).Run(u"pragma wal_checkpoint(truncate)"_s),
                  u"0|0|0"_s);
    }
    EXPECT_EQ(Rows(*other, u"select K from T where B is null order by K"_s), u"100 / 101 / 102 / 103"_s);
    EXPECT_FALSE(other->InTransaction());
    FWith.FDriver->Disconnect();
    other->SetConnected(false);
    EXPECT_FALSE(QFile::exists(FWith.FDatabase.FileName() + u"-wal"_s)) << "the file is let go";
}

TEST_P(StatementReuse, has_room_for_some_forms_and_serves_any_number)
{
    QStringList columns;
    for (int i = 0; i < 100; ++i)
        columns += u"A%1 int"_s.arg(i);
    Run(u"create table T(K int, %1)"_s.arg(columns.join(u',')));
    Run(u"insert into T(K) values(1)"_s);
    for (int round = 0; round < 4; ++round)
        for (int i = 0; i < 100; ++i)
            Run(u"update T set A%1=%2 where K=1"_s.arg(i).arg(round * i));
    Run(u"select * from T"_s);
}

TEST_P(StatementReuse, gives_as_first_value_what_the_rows_begin_with)
{
    Run(u"create table T(K int, V varchar(20), D datetime, S text)"_s);
    Run(u"insert into T(K,V,D,S) values(1,'一','2026-03-01 10:20:30','长')"_s);
    Run(u"insert into T(K) values(2)"_s);
    const QString select = u"select %1 from T where K=%2"_s;
    const QStringList values = {u"K"_s,   u"V"_s,     u"D"_s,        u"S"_s,
                                u"K*2"_s, u"V+'x'"_s, u"count(*)"_s, u"null"_s};
    for (int round = 0; round < 3; ++round) // read, learnt, ready
        for (const QString &value : values)
            for (int key = 1; key <= 3; ++key) {
                const QString statement = select.arg(value).arg(key);
                const TDataPacket rows = FWith.FDriver->Query(statement);
                const QVariant first = FWith.FDriver->QueryValue(statement);
                const QVariant expected = rows.RowCount() > 0 ? rows.Value(0, 0) : VarNull();
                EXPECT_EQ(first, expected) << statement.toStdString();
                EXPECT_EQ(first.typeId(), expected.typeId()) << statement.toStdString();
            }
    EXPECT_TRUE(VarIsNull(FWith.FDriver->QueryValue(u"insert into T(K) values(4)"_s)));
    EXPECT_TRUE(VarIsNull(FWith.FDriver->QueryValue(u"insert into T(K) values(5)"_s)));
    EXPECT_EQ(FWith.FDriver->QueryValue(u"select count(*) from T"_s).toInt(), 4);
}

TEST(StatementCache, keeps_what_comes_again_and_has_proven_itself)
{
    static const struct
    {
        QString First, Second;
        bool IsKept;
    } rows[] = {
        {u"update T set A=1 where K='k'"_s, u"update T set A='x' where K='l'"_s, true},
        {u"insert into T(A,K) values(null,'it''s')"_s, u"insert into T(A,K) values(-0.5,'')"_s, true},
        {u"delete from T where K='k'"_s, u"delete from T where K='l'"_s, true},
        {u"select * from T where K='k'"_s, u"select * from T where K=5"_s, true},
        {u"select A from T"_s, u"select A from T"_s, true},
        {u"update T set A=:A where K='k'"_s, u"update T set A=:A where K='l'"_s, true},
        // A comparison of something that is no column depends on what it is compared with.
        {u"select A from T where A between 1 and K='k'"_s, u"select A from T where A between 1 and K='l'"_s,
         false},
        {u"update T set A=1 where K=?"_s, u"update T set A=2 where K=?"_s, false},
        {u"select A from T where 'k'=K"_s, u"select A from T where 'l'=K"_s, false},
        {u"update T set A=1; update T set A=2"_s, u"update T set A=1; update T set A=3"_s, false},
        {u"create table U(A int)"_s, u"create table U(A int)"_s, false},
        {u"begin transaction"_s, u"begin transaction"_s, false},
        {u"select A as korvane_000 from T where K='k'"_s, u"select A as korvane_000 from T where K='l'"_s,
         false},
    };
    for (const TSqlDialect dialect : BothDialects) {
        TSqliteDatabase database({}, TSqliteOpen::Memory);
        database.Run("create table T(A int, K text)");
        for (const auto &row : rows) {
            SCOPED_TRACE(row.First.toStdString());
            TStatementCache cache(dialect);
            cache.Learn(database, row.First);
            EXPECT_FALSE(cache.Find(row.Second, {})) << "once is not enough";
            cache.Learn(database, row.First);
            EXPECT_EQ(cache.Find(row.Second, {}) != nullptr, row.IsKept);
            cache.Clear();
            EXPECT_FALSE(cache.Find(row.Second, {}));
        }
    }
    TSqliteDatabase database({}, TSqliteOpen::Memory);
    database.Run("create table T(A int, K text)");
    TStatementCache cache(TSqlDialect::MSSQL);
    for (int i = 0; i < 3; ++i)
        cache.Learn(database, u"select name from sysobjects where name='T'"_s);
    EXPECT_FALSE(cache.Find(u"select name from sysobjects where name='T'"_s, {})) << "a catalog table";
}
