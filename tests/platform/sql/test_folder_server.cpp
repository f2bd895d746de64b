// SPDX-License-Identifier: MIT
#include "platform/sql/sqlite/FolderServer.h"
#include "support/Packets.h"
#include "support/TestDatabase.h"

#include <QCoreApplication>
#include <QDateTime>

using namespace Korvane;
using namespace Korvane::Testing;
using namespace Qt::StringLiterals;

namespace {

class FolderServer : public testing::Test
{
protected:
    std::unique_ptr<TADOConnection> Connect(const QString &database, const QString &furtherParts = {}) const
    {
        return ConnectTo(FServer.ConnectionTo(database) + furtherParts);
    }
    QStringList Files() const
    {
        return QDir(FServer.Folder()).entryList({u"*.db"_s}, QDir::Files, QDir::Name);
    }

    const TestDatabase FServer{TSqlDialect::MSSQL};
};

} // namespace

TEST_F(FolderServer, master_is_always_there)
{
    const auto session = Connect(u"master"_s);
    EXPECT_EQ(Rows(*session, u"select name, dbid from master..sysdatabases order by dbid"_s),
              u"master|1 / orders|2"_s);
    EXPECT_EQ(Rows(*Connect(u"MASTER"_s), u"select count(*) from sysdatabases"_s), u"2"_s);
    // Without a name it is what one is connected to.
    EXPECT_EQ(Rows(*Connect({}),
                   u"select d.name from master..sysprocesses p inner join master..sysdatabases d "
                   "on p.dbid=d.dbid where p.spid=@@spid"_s),
              u"master"_s);
    EXPECT_EQ(FailureOf(*session, u"drop database [Master]"_s), u"不能删除数据库：Master"_s);
}

TEST_F(FolderServer, databases_are_made_and_dropped_by_name)
{
    const auto session = Connect(u"master"_s);
    RunAll(*session, {u"create database [Sales 2024]"_s, u"create database 订单"_s});
    EXPECT_EQ(Files(), (QStringList{u"Sales 2024.db"_s, u"master.db"_s, u"orders.db"_s, u"订单.db"_s}));
    EXPECT_EQ(Rows(*session, u"select name from sysdatabases where name='SALES 2024'"_s), u"Sales 2024"_s);
    RunAll(*Connect(u"sales 2024"_s), {u"create table T(A int)"_s});
    RunAll(*Connect(u"订单"_s), {u"create table T(A int)"_s, u"insert into T values(1)"_s});
    EXPECT_EQ(Rows(*Connect(u"SALES 2024"_s), u"select count(*) from T"_s), u"0"_s);

    EXPECT_EQ(FailureOf(*session, u"create database [SALES 2024]"_s), u"数据库已经存在：SALES 2024"_s);
    EXPECT_EQ(FailureOf(*session, u"create database [master]"_s), u"数据库已经存在：master"_s);
    RunAll(*session, {u"drop database [sales 2024]"_s, u"drop database 订单"_s});
    EXPECT_EQ(Files(), (QStringList{u"master.db"_s, u"orders.db"_s}));
    EXPECT_EQ(FailureOf(*session, u"drop database 订单"_s),
              u"找不到数据库文件：%1/订单.db"_s.arg(FServer.Folder()));
    EXPECT_EQ(ConnectFailure(FServer.ConnectionTo(u"订单"_s)),
              u"找不到数据库文件：%1/订单.db"_s.arg(FServer.Folder()));
}

TEST_F(FolderServer, names_that_are_no_file_names_are_refused)
{
    const auto session = Connect(u"master"_s);
    for (const QString &name : {u"a/b"_s, u"../x"_s, u"."_s, u".hidden"_s, u"a\\b"_s, u"c:"_s, u"a*"_s,
                                u"a?"_s, u"a<b"_s, u"a|b"_s, u"a\tb"_s, QString(121, u'a')}) {
        EXPECT_EQ(FailureOf(*session, u"create database [%1]"_s.arg(name)),
                  u"“%1”不能作为数据库名称"_s.arg(name));
        EXPECT_EQ(FailureOf(*session, u"drop database [%1]"_s.arg(name)),
                  u"“%1”不能作为数据库名称"_s.arg(name));
        EXPECT_EQ(ConnectFailure(FServer.ConnectionTo(name)), u"“%1”不能作为数据库名称"_s.arg(name));
    }
    EXPECT_EQ(RaisedBy([&] { CreateCatalog(FServer.ConnectionTo({})); }),
              u"EDatabaseError: 没有指定数据库名称"_s);
    EXPECT_EQ(Files(), (QStringList{u"master.db"_s, u"orders.db"_s}));
}

TEST_F(FolderServer, a_folder_that_is_not_there_is_told)
{
    const QString nowhere = FServer.Folder() + u"/none"_s;
    EXPECT_EQ(
        ConnectFailure(u"Provider=SQLOLEDB.1;Data Source=folder:%1;Initial Catalog=orders"_s.arg(nowhere)),
        u"找不到数据库服务器的文件夹："_s + nowhere);
    EXPECT_EQ(ConnectFailure(
                  u"Provider=SQLOLEDB.1;Data Source=folder:%1;Initial Catalog=x"_s.arg(FServer.FileName())),
              u"找不到数据库服务器的文件夹："_s + FServer.FileName());
    EXPECT_EQ(ConnectFailure(u"Provider=SQLOLEDB.1;Data Source=folder:;Initial Catalog=orders"_s),
              u"找不到数据库服务器的文件夹："_s);
    EXPECT_EQ(ConnectFailure(u"Provider=SQLOLEDB.1;Data Source=FOLDER:%1/;Initial Catalog=ORDERS"_s.arg(
                  FServer.Folder())),
              u"nothing"_s);
}

TEST_F(FolderServer, a_database_in_use_is_not_dropped)
{
    const auto session = Connect(u"master"_s);
    const QString longName(60, u'长'); // longer in bytes than what a roster's line holds
    for (const QString &name : {u"orders"_s, u"中文 名"_s, longName}) {
        if (name != u"orders"_s)
            session->Execute(u"create database [%1]"_s.arg(name));
        const QString file = FServer.Folder() + u'/' + name + u".db"_s;
        {
            const auto user = Connect(name);
            EXPECT_EQ(FailureOf(*session, u"drop database [%1]"_s.arg(name)),
                      u"数据库正在使用中，不能删除："_s + name);
            EXPECT_EQ(FailureOf(*user, u"drop database [%1]"_s.arg(name)),
                      u"数据库正在使用中，不能删除："_s + name);
            EXPECT_TRUE(QFile::exists(file));
        }
        session->Execute(u"drop database [%1]"_s.arg(name));
        EXPECT_FALSE(QFile::exists(file));
    }
}

TEST_F(FolderServer, sysobjects_lists_what_there_is_now)
{
    const auto session = FServer.Connect();
    const QString objects = u"select name, xtype from sysobjects where xtype in('U', 'V') order by name"_s;
    EXPECT_EQ(Rows(*session, objects), u""_s);
    RunAll(*session, {u"create table Orders(A int not null, constraint PK_O primary key(A))"_s,
                      u"create view V_O as select A from Orders"_s, u"create index IX on Orders(A)"_s});
    EXPECT_EQ(Rows(*session, objects), u"Orders|U / V_O|V"_s);
    EXPECT_EQ(Rows(*session, u"select 1 from sysobjects where xtype='u' and name='orders'"_s), u"1"_s);
    RunAll(*Connect(u"orders"_s), {u"drop view V_O"_s, u"create table B(A int)"_s});
    EXPECT_EQ(Rows(*session, u"select name from dbo.sysobjects where type='U' order by name"_s),
              u"B / Orders"_s);

    // Also inside a transaction that goes back.
    session->BeginTrans();
    session->Execute(u"drop table B"_s);
    EXPECT_EQ(Rows(*session, objects), u"Orders|U"_s);
    session->RollbackTrans();
    EXPECT_EQ(Rows(*session, objects), u"B|U / Orders|U"_s);
    // The catalog's own rows are none that a statement affected.
    EXPECT_EQ(session->Execute(u"delete from B where A in(select id from sysobjects)"_s), 0);
}

TEST_F(FolderServer, each_session_has_its_number_and_its_process)
{
    const auto first = Connect(u"orders"_s, u"Application Name=收银台"_s);
    const auto second = Connect(u"orders"_s, u"Application Name=收银台"_s);
    const auto third = Connect(u"master"_s, u"Application Name=admin's"_s);
    QStringList numbers;
    for (const auto *session : {&first, &second, &third}) {
        const QString number = Rows(**session, u"select @@spid"_s);
        EXPECT_GE(number.toInt(), 51);
        EXPECT_FALSE(numbers.contains(number));
        numbers += number;
    }
    const QString own =
        u"select p.program_name, p.loginame, p.hostprocess, d.name from master..sysprocesses p "
        "inner join master.dbo.sysdatabases d on p.dbid=d.dbid where p.spid=@@spid"_s;
    const QString process = QString::number(QCoreApplication::applicationPid());
    EXPECT_EQ(Rows(*first, own), u"收银台|sa|%1|orders"_s.arg(process));
    EXPECT_EQ(Rows(*third, own), u"admin's|sa|%1|master"_s.arg(process));
    EXPECT_EQ(Rows(*third, u"select count(*) from master..sysprocesses where program_name='收银台'"_s),
              u"2"_s);
    EXPECT_EQ(Rows(*third, u"select count(*) from master..sysprocesses where program_name='ADMIN''S'"_s),
              u"1"_s);
    EXPECT_EQ(Rows(*third, u"select count(*) from sysprocesses where spid=%1"_s.arg(numbers[1])), u"1"_s);
}

TEST_F(FolderServer, dates_of_databases_and_objects_are_those_of_their_making)
{
    const QDateTime before = QDateTime::currentDateTime();
    const auto session = Connect(u"master"_s);
    session->Execute(u"create database [new]"_s);
    const QDateTime after = QDateTime::currentDateTime();
    const auto read = [&](TADOConnection &connection, const QString &statement) {
        return QDateTime::fromString(Rows(connection, statement), u"yyyy-MM-dd hh:mm:ss.zzz"_s);
    };
    const QDateTime made = read(*session, u"select crdate from master..sysdatabases where name='new'"_s);
    EXPECT_GE(made, before.addMSecs(-1));
    EXPECT_LE(made, after);
    // The database's date stays, an object's is its own.
    PlainDatabase(FServer.Folder() + u"/new.db"_s)
        .Run(u"update _korvane set Value='2001-02-03T04:05:06.007' where Kind='database'"_s);
    const auto user = Connect(u"new"_s);
    user->Execute(u"create table T(A int)"_s);
    EXPECT_EQ(Rows(*session, u"select crdate from sysdatabases where name='new'"_s),
              u"2001-02-03 04:05:06.007"_s);
    EXPECT_GE(read(*user, u"select crdate from sysobjects where name='T'"_s), before.addMSecs(-1));
}

TEST_F(FolderServer, a_connection_that_only_reads_makes_and_drops_nothing)
{
    TADOConnection reader;
    reader.SetConnectionString(FServer.ConnectionString());
    reader.SetMode(cmRead);
    reader.SetConnected(true);
    for (const QString &statement : {u"create database [x]"_s, u"drop database [orders]"_s})
        EXPECT_TRUE(FailureOf(reader, statement).startsWith(u"连接是只读的"_s)) << statement.toStdString();
    EXPECT_EQ(Files(), QStringList(u"orders.db"_s));
}
