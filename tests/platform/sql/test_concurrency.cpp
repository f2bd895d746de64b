// SPDX-License-Identifier: MIT
// Several users of one database: several connections, several processes.
#include "platform/sql/OtherUser.h"
#include "support/Packets.h"
#include "support/TestDatabase.h"

#include <QElapsedTimer>

using namespace Korvane;
using namespace Korvane::Testing;
using namespace Qt::StringLiterals;

namespace {

/// A database of either dialect with an empty T(WHO int, N int) and a holder of its write lock.
class Concurrency : public testing::TestWithParam<TSqlDialect>
{
protected:
    Concurrency() { RunAll(*FHolder, {u"create table T(WHO int, N int)"_s}); }

    QString LockedMessage() const
    {
        return u"数据库正被其他用户锁定，请稍后再试：%1（database is locked）"_s.arg(FDatabase.FileName());
    }

    TestDatabase FDatabase{GetParam()};
    std::unique_ptr<TADOConnection> FHolder = FDatabase.Connect();
};

INSTANTIATE_TEST_SUITE_P(Dialects, Concurrency, testing::ValuesIn(BothDialects), [](const auto &tested) {
    return tested.param == TSqlDialect::Access ? "Access" : "MSSQL";
});

} // namespace

TEST_P(Concurrency, two_processes_that_write_at_once_lose_no_row)
{
    OtherUser one, two;
    ASSERT_EQ(one.Ask(u"connect"_s, FDatabase.ConnectionString()), u"ok"_s);
    ASSERT_EQ(two.Ask(u"connect"_s, FDatabase.ConnectionString()), u"ok"_s);
    one.Tell(u"insert"_s, u"1"_s);
    two.Tell(u"insert"_s, u"2"_s);
    for (int i = 0; i < 100; ++i)
        FHolder->Execute(u"insert into T values(3, %1)"_s.arg(i));
    EXPECT_EQ(one.Answer(), u"ok"_s);
    EXPECT_EQ(two.Answer(), u"ok"_s);
    EXPECT_EQ(Rows(*FHolder, u"select WHO, count(*), min(N), max(N) from T group by WHO order by WHO"_s),
              u"1|200|0|199 / 2|200|0|199 / 3|100|0|99"_s);
}

TEST_P(Concurrency, connecting_and_leaving_at_once_fails_nobody)
{
    RunAll(*FHolder, {u"insert into T values(0, 0)"_s});
    // Nobody stays, so that the log is opened and taken away again and again.
    FHolder->SetConnected(false);
    OtherUser one, two;
    one.Tell(u"reconnect"_s, FDatabase.ConnectionString());
    two.Tell(u"reconnect"_s, FDatabase.ConnectionString());
    EXPECT_EQ(one.Answer(), u"ok"_s);
    EXPECT_EQ(two.Answer(), u"ok"_s);
    EXPECT_EQ(Rows(*FDatabase.Connect(), u"select N from T"_s), u"200"_s);
}

// The last one to leave takes the log away. Another process must not take itself for the last one because a
// second connection of this process has come and gone.
TEST_P(Concurrency, a_second_connection_leaves_the_locks_of_the_first)
{
    FDatabase.Connect();
    EXPECT_EQ(Rows(*FHolder, u"select count(*) from T"_s), u"0"_s);
    OtherUser user;
    ASSERT_EQ(user.Ask(u"connect"_s, FDatabase.ConnectionString()), u"ok"_s);
    ASSERT_EQ(user.Ask(u"disconnect"_s), u"ok"_s);
    EXPECT_TRUE(QFile::exists(FDatabase.FileName() + u"-wal"_s));
    FHolder->Execute(u"insert into T values(1, 1)"_s);
    ASSERT_EQ(user.Ask(u"connect"_s, FDatabase.ConnectionString()), u"ok"_s);
    EXPECT_EQ(user.Ask(u"rows"_s, u"select N from T"_s), u"1"_s);
}

TEST_P(Concurrency, what_a_lock_holds_up_waits_as_long_as_the_timeout_says)
{
    RunAll(*FHolder, {u"insert into T values(1, 1)"_s});
    FHolder->BeginTrans();
    static const QString statements[] = {
        u"insert into T values(2, 2)"_s,
        u"update T set N=5"_s,
        u"insert into T select WHO, N+1 from T"_s,
        // What reads before it writes waits in the same way.
        u"select * from T\r\ninsert into T values(2, 2)"_s,
        u"insert into T values(2, 2)\r\ninsert into T values(3, 3)"_s,
        u"alter table T alter column N float"_s,
        u"alter table T drop column N"_s,
        u"create table U(A int)"_s,
    };
    for (const int timeout : {0, 1}) {
        const auto waiter = FDatabase.Connect({}, timeout);
        for (const QString &statement : statements) {
            QElapsedTimer timer;
            timer.start();
            EXPECT_EQ(FailureOf(*waiter, statement), LockedMessage()) << statement.toStdString();
            EXPECT_GE(timer.elapsed(), timeout * 900) << statement.toStdString();
        }
        QElapsedTimer timer;
        timer.start();
        EXPECT_THROW(waiter->BeginTrans(), EDatabaseError);
        EXPECT_EQ(waiter->Errors().value(0).Description, LockedMessage());
        EXPECT_GE(timer.elapsed(), timeout * 900);
        EXPECT_FALSE(waiter->InTransaction());
        // Reading is not held up.
        EXPECT_EQ(Rows(*waiter, u"select * from T"_s), u"1|1"_s);
        EXPECT_EQ(Rows(*waiter, u"select 1\r\nselect * from T"_s), u"1|1"_s);
    }
    FHolder->CommitTrans();
}

TEST_P(Concurrency, a_waiting_writer_goes_on_when_the_lock_goes)
{
    OtherUser writer;
    ASSERT_EQ(writer.Ask(u"connect"_s, FDatabase.ConnectionString()), u"ok"_s);
    for (const QString &statement :
         {u"insert into T values(2, 2)"_s, u"alter table T add A int"_s,
          u"alter table T alter column A varchar(20)"_s, u"update T set N=N+1"_s}) {
        FHolder->BeginTrans();
        RunAll(*FHolder, {u"insert into T(WHO, N) values(1, 1)"_s});
        writer.Tell(u"run"_s, statement);
        EXPECT_FALSE(writer.Answers(100)) << statement.toStdString();
        FHolder->CommitTrans();
        const QString answer = writer.Answer();
        EXPECT_FALSE(answer.startsWith(u"error"_s)) << answer.toStdString();
    }
    EXPECT_EQ(Rows(*FHolder, u"select WHO, N from T order by WHO, N"_s), u"1|2 / 1|2 / 1|2 / 1|2 / 2|3"_s);
}

TEST_P(Concurrency, a_killed_writer_leaves_neither_its_lock_nor_half_its_work)
{
    OtherUser writer;
    ASSERT_EQ(writer.Ask(u"connect"_s, FDatabase.ConnectionString()), u"ok"_s);
    EXPECT_EQ(writer.Ask(u"run"_s, u"insert into T values(1, 1)"_s), u"1"_s);
    EXPECT_EQ(writer.Ask(u"run"_s, u"begin transaction"_s), u"0"_s);
    EXPECT_EQ(writer.Ask(u"run"_s, u"insert into T values(2, 2)"_s), u"1"_s);
    writer.Kill();
    EXPECT_EQ(FHolder->Execute(u"insert into T values(3, 3)"_s), 1);
    EXPECT_EQ(Rows(*FHolder, u"select WHO from T order by WHO"_s), u"1 / 3"_s);
}

// A file of another tool with a rollback journal: there a writer keeps out readers too.
TEST(ConcurrencyOfForeignFiles, a_connect_waits_as_long_as_the_timeout_says)
{
    const TestDatabase database(TSqlDialect::Access);
    const QString file = database.Folder() + u"/foreign.db"_s;
    PlainDatabase tool(file);
    tool.Run(u"create table T(A int); insert into T values(1); begin exclusive"_s);
    for (const int timeout : {0, 1}) {
        QElapsedTimer timer;
        timer.start();
        EXPECT_EQ(ConnectFailure(database.ConnectionTo(file), cmUnknown, timeout),
                  u"数据库正被其他用户锁定，请稍后再试：%1（database is locked）"_s.arg(file));
        EXPECT_GE(timer.elapsed(), timeout * 900);
    }
    EXPECT_EQ(tool.Run(u"commit"_s), u""_s);
    EXPECT_EQ(Rows(*ConnectTo(database.ConnectionTo(file)), u"select A from T"_s), u"1"_s);
}
