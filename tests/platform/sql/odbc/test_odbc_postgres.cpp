// SPDX-License-Identifier: MIT
// What only PostgreSQL needs of the driver: names and values that its client library would take
// for something else, and copies of databases by its own programs.
#include "platform/core/DateTime.h"
#include "support/Packets.h"
#include "support/TestServer.h"

#include <QDir>

#include <gtest/gtest.h>

using namespace Korvane;
using namespace Korvane::Testing;
using namespace Qt::StringLiterals;

namespace {

class OdbcPostgres : public ::testing::Test
{
protected:
    void SetUp() override
    {
        const auto server = TestServer::Postgres();
        if (!server)
            GTEST_SKIP() << MissingServer(ServerKind::Postgres);
        FDatabase = std::make_unique<ServerDatabase>(*server);
        FConnection = FDatabase->Connect();
    }
    void TearDown() override
    {
        FConnection.reset();
        FDatabase.reset();
    }

    QString Rows(const QString &statement) { return Testing::Rows(*FConnection, statement); }
    QString Path(const QString &name) const { return FFolder.filePath(name); }
    /// The names of the server's databases that hold a text.
    QString Databases(const QString &part)
    {
        return Rows(u"select name from master..sysdatabases where name like '%%1%'"_s.arg(part));
    }

    QTemporaryDir FFolder;
    std::unique_ptr<ServerDatabase> FDatabase;
    std::unique_ptr<TADOConnection> FConnection;
};

TEST_F(OdbcPostgres, a_database_may_have_any_name_that_the_server_keeps)
{
    const QString start = FDatabase->Name();
    for (const QString &name : {start + u" $made$ 数'据\"]?"_s, start + QString(63 - start.size(), u'x')}) {
        FConnection->Execute(u"create database [%1]"_s.arg(QString(name).replace(u"]"_s, u"]]"_s)));
        EXPECT_EQ(Testing::Rows(*ConnectTo(FDatabase->Server().ConnectionString(name)),
                                u"select 1"_s),
                  u"1"_s);
        RemoveCatalog(FDatabase->Server().ConnectionString(name));
    }
    const QString tooLong = start + QString(64 - start.size(), u'x');
    const QString refused = u"名称“%1”太长：PostgreSQL 的名称最多 63 个字节"_s.arg(tooLong);
    EXPECT_EQ(FailureOf(*FConnection, u"create database "_s + tooLong), refused);
    EXPECT_EQ(FailureOf(*FConnection, u"drop database "_s + tooLong), refused);
    EXPECT_EQ(ConnectFailure(FDatabase->Server().ConnectionString(tooLong)), refused);
}

TEST_F(OdbcPostgres, a_program_name_that_is_no_text_hides_no_user)
{
    const auto other = FDatabase->Connect();
    for (const QString &name : {u"b64:/w=="_s, u"b64:AA=="_s, u"b64:7aCA"_s, u"b64:wIA="_s, u"b64:9JCAgA=="_s}) {
        other->Query(u"select set_config('application_name', '%1', false)"_s.arg(name));
        EXPECT_EQ(Rows(u"select count(*) from master..sysprocesses where program_name='%1'"_s.arg(name)), u"1"_s)
            << name.toStdString();
        EXPECT_EQ(FConnection->Driver()
                      .OpenSchema(siProviderSpecific, {{}, {}, {}, name}, QLatin1String(UserRosterSchemaId))
                      .RowCount(),
                  1);
    }
}

TEST_F(OdbcPostgres, who_reads_only_may_be_the_first_to_connect)
{
    const QString name = FDatabase->Name() + u"_r"_s;
    FConnection->Execute(u"create database "_s + name);
    {
        TADOConnection reader;
        reader.SetConnectionString(FDatabase->Server().ConnectionString(name));
        reader.SetMode(cmRead);
        reader.SetConnected(true);
        EXPECT_EQ(Testing::Rows(reader, u"select len('ab ')"_s), u"2"_s);
        EXPECT_TRUE(FailureOf(reader, u"create table T(A int)"_s).startsWith(u"数据库是只读的，不能写入（"_s));
    }
    RemoveCatalog(FDatabase->Server().ConnectionString(name));
}

TEST_F(OdbcPostgres, a_text_that_the_server_cannot_hold_is_refused_and_not_cut)
{
    FConnection->Execute(u"create table T(A varchar(20), M text)"_s);
    const QList<TSqlParameter> text{{u"A"_s, u"a\0b"_s}};
    EXPECT_EQ(text[0].Value.toString().size(), 3);
    EXPECT_THROW(FConnection->Execute(u"insert into T(A) values(:A)"_s, text), ESqlError);
    EXPECT_EQ(Rows(u"select A from T"_s), u""_s);
}

TEST_F(OdbcPostgres, times_keep_their_milliseconds)
{
    FConnection->Execute(u"create table T(D time)"_s);
    FConnection->Execute(u"insert into T values('23:59:58.123')"_s);
    EXPECT_EQ(FConnection->Query(u"select D from T"_s).Value(0, 0).toDouble(),
              TDateTime(QTime(23, 59, 58, 123)).Days());
}

TEST_F(OdbcPostgres, nobody_waits_who_is_told_not_to)
{
    FConnection->Execute(u"create table T(A int) insert into T values(1)"_s);
    FConnection->BeginTrans();
    FConnection->Execute(u"update T set A=2"_s);
    EXPECT_TRUE(FailureOf(*FDatabase->Connect({}, 0), u"update T set A=3"_s)
                    .startsWith(u"数据库正被其他用户锁定，请稍后再试（"_s));
    FConnection->RollbackTrans();
}

TEST_F(OdbcPostgres, copies_wait_for_nobody_for_ever)
{
    const QString backup = u"backup database %1 to disk='%2'"_s.arg(FDatabase->Name(), Path(u"a.bak"_s));
    FConnection->Execute(u"create table T(A int)"_s);
    FConnection->BeginTrans();
    FConnection->Execute(u"drop table T"_s);
    EXPECT_EQ(FailureOf(*FConnection, backup), u"在事务中不能备份或恢复数据库："_s + FDatabase->Name());
    EXPECT_TRUE(FailureOf(*FDatabase->Connect({}, 1), backup).contains(u"\"T\""_s));
    FConnection->RollbackTrans();
    EXPECT_EQ(FFolder.isValid(), true);
    EXPECT_EQ(QDir(FFolder.path()).entryList(QDir::Files), QStringList());
    FConnection->Execute(backup);
    EXPECT_EQ(QDir(FFolder.path()).entryList(QDir::Files), QStringList{u"a.bak"_s});
}

} // namespace
