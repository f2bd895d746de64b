// SPDX-License-Identifier: MIT
#include "SessionFixture.h"

#include <QDeadlineTimer>
#include <QThread>

using namespace Korvane;
using namespace Korvane::Testing;
using namespace Qt::StringLiterals;

namespace {

class SessionCatalog : public SessionFixture
{
protected:
    std::unique_ptr<TDBSession> AnotherSession(const QString &applicationName)
    {
        auto session = std::make_unique<TDBSession>();
        Aim(*session, FDatabase);
        session->SetAppName(applicationName);
        session->SetConnected(true);
        return session;
    }
};
INSTANTIATE_TEST_SUITE_P(Places, SessionCatalog, testing::ValuesIn(AllPlaces()), PlaceName);

} // namespace

TEST_P(SessionCatalog, TableExists_finds_true_tables)
{
    FSession.Execute(u"create table Orders(A int)"_s);
    FSession.Execute(u"create table 订单(A int)"_s);
    FSession.Execute(u"create view V_Orders as select A from Orders"_s);
    static const struct
    {
        QString Name;
        bool Exists;
    } rows[] = {{u"Orders"_s, true}, {u"订单"_s, true},           {u"V_Orders"_s, false},
                {u"NONE"_s, false},  {u"sqlite_master"_s, false}, {u"_korvane"_s, false},
                {u""_s, false}};
    for (const auto &row : rows)
        EXPECT_EQ(FSession.TableExists(row.Name), row.Exists) << row.Name.toStdString();
    // Exact in case in the one dialect; in the other the server's collation decides.
    EXPECT_EQ(FSession.TableExists(u"ORDERS"_s), !IsAccess());
    FSession.Execute(u"drop view V_Orders"_s);
    FSession.Execute(u"drop table Orders"_s);
    EXPECT_FALSE(FSession.TableExists(u"Orders"_s));
}

TEST_P(SessionCatalog, IsEmpty_tells_whether_there_is_a_row)
{
    FSession.Execute(u"create table T(A int)"_s);
    EXPECT_TRUE(FSession.IsEmpty(u"select * from T"_s));
    FSession.Execute(u"insert into T values(null)"_s);
    EXPECT_FALSE(FSession.IsEmpty(u"select * from T"_s));
    EXPECT_TRUE(FSession.IsEmpty(u"select * from T where A=1"_s));
    EXPECT_EQ(RaisedBy([&] { FSession.IsEmpty(u"select * from NONE"_s); }),
              u"Exception: "_s + NoTable(u"NONE"_s) + u"\rselect * from NONE"_s);
    EXPECT_EQ(Logged(), (QStringList{NoTable(u"NONE"_s), u"select * from NONE"_s}));
}

TEST_P(SessionCatalog, the_version_is_the_highest_row_and_goes_to_all_rows)
{
    EXPECT_EQ(RaisedBy([&] { FSession.GetVersion(); }),
              u"Exception: "_s + NoTable(u"Version"_s) + u"\rselect max(VerNo) from Version\r\n"_s);
    EXPECT_TRUE(Logged().isEmpty());
    FSession.Execute(u"create table Version(VerNo int)"_s);
    EXPECT_EQ(FSession.GetVersion(), 0);
    FSession.SetVersion(5);
    EXPECT_EQ(FSession.GetVersion(), 0) << "there is no row to take it";
    FSession.Execute(u"insert into Version values(3)"_s);
    FSession.Execute(u"insert into Version values(11)"_s);
    EXPECT_EQ(FSession.GetVersion(), 11);
    FSession.SetVersion(7);
    EXPECT_EQ(Rows(u"select VerNo from Version"_s), u"7 / 7"_s);
    FSession.SetVersion(-1);
    EXPECT_EQ(FSession.GetVersion(), -1);
}

TEST_P(SessionCatalog, the_clock_is_the_databases)
{
    const QDateTime before = QDateTime::currentDateTime().addMSecs(-2);
    const QDateTime read = FSession.GetDateTime().ToQDateTime();
    EXPECT_GE(read, before);
    EXPECT_LE(read, QDateTime::currentDateTime().addMSecs(2));
    EXPECT_EQ(FSent.last(), IsAccess() ? u"select now()"_s : u"select getdate()"_s);
    EXPECT_EQ(FSession.GetDateTimeStr().size(), 14);
}

TEST_P(SessionCatalog, online_users_are_counted_by_each_dialects_rule)
{
    // Access: all others, whatever their name. MSSQL: those of the name, oneself included.
    EXPECT_EQ(FSession.GetOnlineUsers(u"收银台"_s), 0);
    EXPECT_EQ(FSession.GetOnlineUsers(u""_s), 0) << "who gives no name is listed by the program's";
    const auto first = AnotherSession(u"收银台"_s);
    EXPECT_EQ(first->GetOnlineUsers(u"收银台"_s), 1);
    auto second = AnotherSession(u"收银台"_s);
    const auto third = AnotherSession(u"it's"_s);
    EXPECT_EQ(first->GetOnlineUsers(u"收银台"_s), IsAccess() ? 3 : 2);
    EXPECT_EQ(FSession.GetOnlineUsers(u"it's"_s), IsAccess() ? 3 : 1);
    second.reset();
    // A server takes a moment to let go of a connection.
    const int left = IsAccess() ? 2 : 1;
    for (const QDeadlineTimer deadline(30'000);
         first->GetOnlineUsers(u"收银台"_s) > left && !deadline.hasExpired();)
        QThread::msleep(10);
    EXPECT_EQ(first->GetOnlineUsers(u"收银台"_s), left);
}

// In the Access dialect the clock gives the number, which may come twice.
TEST(SessionNumbers, tell_a_servers_sessions_apart)
{
    const TestDatabase database(TSqlDialect::MSSQL);
    TDBSession first, second;
    for (TDBSession *session : {&first, &second}) {
        Aim(*session, database);
        session->SetConnected(true);
        EXPECT_EQ(session->Open(u"select @@spid"_s).Value(0, 0).toInt(), session->SPID());
    }
    EXPECT_NE(first.SPID(), second.SPID());
    first.SetConnected(true);
    EXPECT_NE(first.SPID(), second.SPID());
}

TEST_P(SessionCatalog, the_databases_date_is_that_of_its_making)
{
    QDateTime made = FSession.GetDBDate().ToQDateTime();
    EXPECT_LT(qAbs(made.secsTo(QDateTime::currentDateTime())), 600);
    if (GetParam().IsEmbedded()) {
        PlainDatabase(FDatabase.FileName())
            .Run(u"update _korvane set Value='2001-02-03T04:05:06.007' where Kind='database'"_s);
        made = QDateTime(QDate(2001, 2, 3), QTime(4, 5, 6, 7));
    }
    FSession.Execute(u"create table AAA(A int)"_s);
    EXPECT_EQ(FSession.GetDBDate().ToQDateTime(), made);
}

TEST_P(SessionCatalog, OpenSchema_fills_the_target)
{
    FSession.Execute(u"create table T(CODE varchar(10))"_s);
    TADODataSet target;
    FSession.OpenSchema(siColumns, QVariantList{u"T"_s}, {}, target);
    EXPECT_EQ(target.FieldByName(u"COLUMN_NAME"_s).AsString(), u"CODE"_s);
    EXPECT_EQ(target.RecordCount(), 1);
}
