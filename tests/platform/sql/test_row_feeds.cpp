// SPDX-License-Identifier: MIT
// Rowsets of which the first rows are read at once and the others later.
#include "support/Packets.h"
#include "support/TestDatabase.h"

#include <gtest/gtest.h>

#include <QFile>

using namespace Korvane;
using namespace Korvane::Testing;
using namespace Qt::StringLiterals;

namespace {

constexpr int RowCount = 3000;
const QString AllRows = u"select * from T"_s;

/// T(A int, B varchar(200)) of 3,000 rows, and U(A int) of none.
void MakeTables(TADOConnection &connection)
{
    connection.Execute(u"create table U(A int)"_s);
    connection.Execute(u"create table T(A int, B varchar(200))"_s);
    connection.BeginTrans();
    for (int i = 0; i < RowCount; ++i)
        connection.Execute(u"insert into T values(%1, '%2')"_s.arg(i).arg(QString(150, u'x')));
    connection.CommitTrans();
}

/// The rows of a feed that is read to its end as "count first last".
QString AllOf(TRowFeed &feed)
{
    while (!feed.Read(QDeadlineTimer(0))) {
    }
    const TDataPacket &rows = feed.Rows();
    return u"%1 %2 %3"_s.arg(rows.RowCount()).arg(rows.Text(0, 0), rows.Text(0, rows.RowCount() - 1));
}

class RowFeeds : public testing::TestWithParam<TSqlDialect>
{
protected:
    RowFeeds() { MakeTables(*FConnection); }

    TFirstRows Open(const QString &statement = AllRows, int rows = 100)
    {
        return FConnection->QueryFirst(statement, rows);
    }

    TestDatabase FDatabase{GetParam()};
    std::unique_ptr<TADOConnection> FConnection = FDatabase.Connect();
};

INSTANTIATE_TEST_SUITE_P(Dialects, RowFeeds, testing::ValuesIn(BothDialects), [](const auto &tested) {
    return tested.param == TSqlDialect::Access ? "Access" : "MSSQL";
});

} // namespace

TEST_P(RowFeeds, give_the_first_rows_at_once_and_all_of_them_in_the_end)
{
    const TFirstRows rows = Open();
    ASSERT_TRUE(rows.Feed);
    EXPECT_EQ(rows.Rows.RowCount(), 100);
    int reads = 1;
    while (!rows.Feed->Read(QDeadlineTimer(0)))
        ++reads;
    EXPECT_GT(reads, 10) << "a deadline that is over ends a read soon";
    EXPECT_TRUE(rows.Feed->Read(QDeadlineTimer(0))) << "and at the end it stays";
    EXPECT_EQ(TextOf(rows.Feed->Rows()), TextOf(FConnection->Query(AllRows)));

    EXPECT_FALSE(Open(AllRows, RowCount).Feed) << "those were all";
    EXPECT_FALSE(Open(u"select * from U"_s).Feed);
    EXPECT_EQ(Open(u"select * from U"_s).Rows.FieldCount(), 1);
    EXPECT_EQ(Open(u"delete from U"_s).Rows.FieldCount(), 0) << "a statement without rows runs too";
}

TEST_P(RowFeeds, know_the_types_of_columns_from_the_first_rows_or_read_all)
{
    EXPECT_TRUE(Open(u"select 'N' as S, A, A*0.5 as H from T"_s).Feed);
    const TFirstRows numbers = Open(u"select A+1 as N, B from T"_s);
    EXPECT_FALSE(numbers.Feed) << "a fraction may stand behind an integer";
    EXPECT_EQ(numbers.Rows.RowCount(), RowCount);
    EXPECT_FALSE(Open(u"select null as N, A from T"_s).Feed);
}

TEST_P(RowFeeds, show_the_rows_of_their_moment_and_keep_nobody_from_working)
{
    const auto other = FDatabase.Connect();
    for (int i = 0; i < 5; ++i) // so that the statement is kept ready
        FConnection->Execute(u"update T set A=A+1 where A>%1"_s.arg(9000 + i));
    const struct
    {
        QString What;
        std::function<void()> Change;
    } changes[] = {
        {u"another user"_s, [&] { other->Execute(u"update T set A=A+1 where A>2000"_s); }},
        {u"the same user"_s, [&] { FConnection->Execute(u"update T set A=A+1 where A>2000"_s); }},
        {u"the same user again"_s, [&] { FConnection->Execute(u"update T set A=A+1 where A>2001"_s); }},
        {u"a transaction that is given up"_s,
         [&] {
             FConnection->BeginTrans();
             FConnection->Execute(u"delete from T where A>5"_s);
             FConnection->RollbackTrans();
         }},
        {u"the table itself"_s, [&] { FConnection->Execute(u"alter table T add C int"_s); }},
    };
    for (const auto &change : changes) {
        const QString expected =
            Rows(*FConnection, u"select count(*), min(A), max(A) from T"_s).replace('|', ' ');
        const TFirstRows rows = Open();
        const TFirstRows second = Open();
        EXPECT_EQ(Rows(*FConnection, u"select count(*) from U"_s), "0") << "reading goes on beside";
        change.Change();
        EXPECT_EQ(AllOf(*rows.Feed), expected) << change.What.toStdString();
        EXPECT_EQ(AllOf(*second.Feed), expected) << change.What.toStdString();
    }
    const TFirstRows last = Open();
    other->SetConnected(false);
    FConnection->SetConnected(false);
    EXPECT_EQ(AllOf(*last.Feed).section(u' ', 0, 0), QString::number(RowCount))
        << "a feed outlives its driver";
    const auto feed = ConnectTo(FDatabase.ConnectionString())->QueryFirst(AllRows, 10).Feed;
    RemoveCatalog(FDatabase.ConnectionString());
    EXPECT_TRUE(feed->Read(QDeadlineTimer(0)));
}

TEST_P(RowFeeds, tell_a_failure_to_whom_it_concerns_each_time)
{
    FConnection->SetConnected(false);
    QFile file(FDatabase.FileName());
    ASSERT_TRUE(file.open(QFile::ReadWrite));
    file.seek(file.size() / 2);
    file.write(QByteArray(int(file.size() / 4), '\xff'));
    file.close();

    const auto connection = FDatabase.Connect();
    const TFirstRows rows = connection->QueryFirst(AllRows, 100);
    ASSERT_TRUE(rows.Feed);
    EXPECT_EQ(connection->Execute(u"insert into U values(1)"_s), 1) << "what others do goes on";
    const QString first = RaisedBy([&] { AllOf(*rows.Feed); });
    EXPECT_TRUE(first.contains(u"malformed")) << first.toStdString();
    EXPECT_EQ(RaisedBy([&] { AllOf(*rows.Feed); }), first);
}

// A statement that is not read to its end would keep the other user's change waiting.
TEST(RowFeedsOfForeignFiles, read_all_rows_at_once_under_a_rollback_journal)
{
    const TestDatabase database(TSqlDialect::Access);
    const QString file = database.Folder() + u"/foreign.db"_s;
    PlainDatabase tool(file);
    tool.Run(u"create table T(A int); insert into T values(1); insert into T values(2)"_s);
    const auto connection = ConnectTo(database.ConnectionTo(file));
    const TFirstRows rows = connection->QueryFirst(AllRows, 1);
    EXPECT_FALSE(rows.Feed);
    EXPECT_EQ(rows.Rows.RowCount(), 2);
    EXPECT_EQ(tool.Run(u"delete from T"_s), "");
}
