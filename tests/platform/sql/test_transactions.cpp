// SPDX-License-Identifier: MIT
#include "platform/sql/ADOCommand.h"
#include "support/Packets.h"
#include "support/TestDatabase.h"

using namespace Korvane;
using namespace Korvane::Testing;
using namespace Qt::StringLiterals;

namespace {

/// A database of either dialect with T(A int not null) of the rows 1, 2, 3.
class Transactions : public testing::TestWithParam<TSqlDialect>
{
protected:
    Transactions()
    {
        RunAll(*FConnection,
               {u"create table T(A int not null, B varchar(10))"_s, u"insert into T(A) values(1)"_s,
                u"insert into T(A) values(2)"_s, u"insert into T(A) values(3)"_s});
    }

    QString Numbers() { return Rows(*FConnection, u"select A from T order by A"_s); }

    TestDatabase FDatabase{GetParam()};
    std::unique_ptr<TADOConnection> FConnection = FDatabase.Connect();
};

INSTANTIATE_TEST_SUITE_P(Dialects, Transactions, testing::ValuesIn(BothDialects), [](const auto &tested) {
    return tested.param == TSqlDialect::Access ? "Access" : "MSSQL";
});

} // namespace

TEST_P(Transactions, statements_tell_how_many_rows_they_affected)
{
    static const struct
    {
        QString Statement;
        int Affected;
    } rows[] = {
        {u"update T set B='x'"_s, 3},
        {u"update T set B='y' where A>1"_s, 2},
        {u"update T set B='z' where A>9"_s, 0},
        {u"insert into T select A+10, B from T"_s, 3},
        {u"delete from T where A>10"_s, 3},
        {u"delete from T where A>10"_s, 0},
        {u"select * from T"_s, 0},
        {u"-- nothing"_s, 0},
        // A change of the structure affects no row.
        {u"create table U(A int)"_s, 0},
        {u"alter table T add C int"_s, 0},
        {u"alter table T alter column B varchar(20)"_s, 0},
        {u"create index IX_T on T(A)"_s, 0},
        {u"drop table U"_s, 0},
    };
    for (const auto &row : rows)
        EXPECT_EQ(FConnection->Execute(row.Statement), row.Affected) << row.Statement.toStdString();
}

TEST_P(Transactions, all_of_a_batch_is_done_or_nothing)
{
    FConnection->Execute(u"insert into T(A) values(4)\r\ninsert into T(A) values(5)"_s);
    EXPECT_EQ(Numbers(), u"1 / 2 / 3 / 4 / 5"_s);
    EXPECT_NE(FailureOf(*FConnection,
                        u"delete from T\r\ninsert into T(A) values(6)\r\ninsert into T(A) values(null)"_s),
              u"nothing"_s);
    EXPECT_EQ(Numbers(), u"1 / 2 / 3 / 4 / 5"_s);
    EXPECT_FALSE(FConnection->InTransaction());

    // Also a table's change in it.
    EXPECT_NE(
        FailureOf(*FConnection,
                  u"create table U(A int)\r\nalter table T drop column B\r\ninsert into NONE values(1)"_s),
        u"nothing"_s);
    EXPECT_EQ(Rows(*FConnection, u"select A, B from T where A=1"_s), u"1|~"_s);
    EXPECT_EQ(FailureOf(*FConnection, u"select * from U"_s), u"no such table: U"_s);

    // Inside a transaction the batch alone goes back.
    FConnection->BeginTrans();
    FConnection->Execute(u"delete from T where A>1"_s);
    EXPECT_NE(FailureOf(*FConnection, u"insert into T(A) values(7)\r\ninsert into NONE values(1)"_s),
              u"nothing"_s);
    EXPECT_TRUE(FConnection->InTransaction());
    FConnection->CommitTrans();
    EXPECT_EQ(Numbers(), u"1"_s);
}

TEST_P(Transactions, a_text_gives_the_rows_of_its_last_query)
{
    EXPECT_EQ(Rows(*FConnection, u"select 1\r\nselect A from T where A>1"_s), u"2 / 3"_s);
    EXPECT_EQ(Rows(*FConnection, u"select A from T where A=1\r\ndelete from T where A=2"_s), u"1"_s);
    EXPECT_EQ(Numbers(), u"1 / 3"_s);
}

TEST_P(Transactions, parameters_reach_every_statement_of_a_batch)
{
    TADOCommand command;
    command.SetConnection(FConnection.get());
    command.SetCommandText(u"delete from T\r\ninsert into T values(1, :B)\r\ninsert into T values(2, :B)"_s);
    command.SetParameter(0, u"x"_s);
    command.Execute();
    EXPECT_EQ(Rows(*FConnection, u"select * from T"_s), u"1|x / 2|x"_s);
}

TEST_P(Transactions, commit_keeps_and_rollback_takes_back_across_statements)
{
    EXPECT_EQ(FConnection->BeginTrans(), 1);
    EXPECT_TRUE(FConnection->InTransaction());
    RunAll(*FConnection, {u"delete from T"_s, u"insert into T(A) values(9)"_s});
    EXPECT_EQ(Numbers(), u"9"_s);
    const auto other = FDatabase.Connect();
    EXPECT_EQ(Rows(*other, u"select count(*) from T"_s), u"3"_s);
    FConnection->RollbackTrans();
    EXPECT_FALSE(FConnection->InTransaction());
    EXPECT_EQ(Numbers(), u"1 / 2 / 3"_s);

    FConnection->BeginTrans();
    RunAll(*FConnection, {u"delete from T where A<3"_s});
    FConnection->CommitTrans();
    EXPECT_EQ(Rows(*other, u"select A from T"_s), u"3"_s);
}

TEST_P(Transactions, a_failed_statement_leaves_the_transaction_open)
{
    FConnection->BeginTrans();
    RunAll(*FConnection, {u"insert into T(A) values(4)"_s});
    EXPECT_NE(FailureOf(*FConnection, u"insert into T(A) values(null)"_s), u"nothing"_s);
    EXPECT_TRUE(FConnection->InTransaction());
    FConnection->CommitTrans();
    EXPECT_EQ(Numbers(), u"1 / 2 / 3 / 4"_s);
}

TEST_P(Transactions, do_not_nest)
{
    FConnection->BeginTrans();
    RunAll(*FConnection, {u"insert into T(A) values(4)"_s});
    EXPECT_THROW(FConnection->BeginTrans(), EDatabaseError);
    EXPECT_TRUE(FConnection->InTransaction());
    FConnection->CommitTrans();
    EXPECT_THROW(FConnection->CommitTrans(), EDatabaseError);
    EXPECT_THROW(FConnection->RollbackTrans(), EDatabaseError);
    EXPECT_EQ(Numbers(), u"1 / 2 / 3 / 4"_s);
}

TEST_P(Transactions, a_change_of_the_structure_is_taken_back_too)
{
    FConnection->BeginTrans();
    RunAll(*FConnection,
           {u"create table U(A int)"_s, u"insert into U values(1)"_s, u"alter table T add C varchar(5)"_s,
            u"alter table T alter column B varchar(50)"_s, u"create index IX_T on T(A)"_s, u"drop table U"_s,
            u"alter table T drop column B"_s});
    EXPECT_EQ(Rows(*FConnection, u"select * from T where A=1"_s), u"1|~"_s);
    FConnection->RollbackTrans();
    EXPECT_EQ(TextOf(FConnection->Query(u"select * from T where A=1"_s)), u"A:integer|B:string(10)\n1|~\n"_s);
    RunAll(*FConnection, {u"create index IX_T on T(A)"_s, u"create table U(A int)"_s});

    PlainDatabase tool(FDatabase.FileName());
    EXPECT_EQ(tool.Run(u"select Name from _korvane where Kind='table' order by Name"_s), u"T / U"_s);
}

TEST_P(Transactions, one_that_is_open_at_the_end_is_taken_back)
{
    FConnection->BeginTrans();
    RunAll(*FConnection, {u"delete from T"_s});
    FConnection->SetConnected(false);
    FConnection->SetConnected(true);
    EXPECT_FALSE(FConnection->InTransaction());
    EXPECT_EQ(Numbers(), u"1 / 2 / 3"_s);
    FConnection->BeginTrans();
    RunAll(*FConnection, {u"delete from T"_s});
    FConnection.reset();
    EXPECT_EQ(Rows(*FDatabase.Connect(), u"select count(*) from T"_s), u"3"_s);
}

TEST_P(Transactions, statements_may_begin_and_end_them)
{
    const QString word = GetParam() == TSqlDialect::Access ? u"transaction"_s : u"tran"_s;
    RunAll(*FConnection, {u"begin "_s + word, u"delete from T"_s});
    EXPECT_TRUE(FConnection->InTransaction());
    RunAll(*FConnection, {u"rollback "_s + word});
    EXPECT_EQ(Numbers(), u"1 / 2 / 3"_s);
    RunAll(*FConnection, {u"begin %1\r\ndelete from T where A=1\r\ncommit %1"_s.arg(word)});
    EXPECT_FALSE(FConnection->InTransaction());
    EXPECT_EQ(Numbers(), u"2 / 3"_s);
}
