// SPDX-License-Identifier: MIT
// What only PostgreSQL needs of the driver: names and values that its client library would take
// for something else, and copies of databases by its own programs.
#include "platform/core/DateTime.h"
#include "platform/sql/odbc/OdbcConnection.h"
#include "platform/sql/odbc/OdbcPostgres.h"
#include "platform/sql/postgres/PostgresTools.h"
#include "support/Packets.h"
#include "support/TestServer.h"

#include <QDir>

#include <gtest/gtest.h>

#include <sys/file.h>

using namespace Korvane;
using namespace Korvane::Testing;
using namespace Qt::StringLiterals;

namespace {

class OdbcPostgres : public WithServer<::testing::Test>
{
protected:
    void SetUp() override { Open(ServerKind::Postgres); }

    QString Path(const QString &name) const { return FFolder.filePath(name); }
    QStringList Files() const
    {
        return QDir(FFolder.path()).entryList(QDir::Files | QDir::System, QDir::Name);
    }

    QTemporaryDir FFolder;
};

TEST_F(OdbcPostgres, a_database_may_have_any_name_that_the_server_keeps)
{
    const QString start = FDatabase->Name();
    for (const QString &name : {start + u" $made$ 数'据\"]?"_s, start + QString(63 - start.size(), u'x')}) {
        FConnection->Execute(u"create database [%1]"_s.arg(QString(name).replace(u"]"_s, u"]]"_s)));
        EXPECT_EQ(Testing::Rows(*ConnectTo(FDatabase->Server().ConnectionString(name)), u"select 1"_s),
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
    for (const QString &name :
         {u"b64:/w=="_s, u"b64:AA=="_s, u"b64:7aCA"_s, u"b64:wIA="_s, u"b64:9JCAgA=="_s}) {
        other->Query(u"select set_config('application_name', '%1', 1=0)"_s.arg(name));
        EXPECT_EQ(Rows(u"select count(*) from master..sysprocesses where program_name='%1'"_s.arg(name)),
                  u"1"_s)
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
        EXPECT_TRUE(
            FailureOf(reader, u"create table T(A int)"_s).startsWith(u"数据库是只读的，不能写入（"_s));
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
    const QString name = FDatabase->Name();
    const QString backup = u"backup database %1 to disk='%2'"_s.arg(name, Path(u"a.bak"_s));
    FConnection->Execute(u"create table T(A int)"_s);
    FConnection->BeginTrans();
    FConnection->Execute(u"drop table T"_s);
    EXPECT_EQ(FailureOf(*FConnection, backup), u"在事务中不能备份或恢复数据库："_s + name);
    const QString failure = FailureOf(*FDatabase->Connect({}, 1), backup);
    EXPECT_TRUE(failure.contains(u"LOCK TABLE public.\"T\""_s)) << failure.toStdString();
    FConnection->RollbackTrans();
    EXPECT_EQ(Files(), QStringList());
    FConnection->Execute(backup);
    EXPECT_EQ(Files(), QStringList{u"a.bak"_s});
}

TEST_F(OdbcPostgres, archives_go_to_files_alone_and_one_at_a_time)
{
    const auto failure = [&](const QString &file) {
        return FailureOf(*FConnection, u"backup database %1 to disk='%2'"_s.arg(FDatabase->Name(), file));
    };
    EXPECT_EQ(failure({}), u"没有指定备份文件："_s);
    EXPECT_EQ(failure(FFolder.path()), u"没有指定备份文件："_s + FFolder.path());
    EXPECT_EQ(failure(u"/dev/null"_s), u"不能写入文件：/dev/null（不是普通文件）"_s);
    const QString file = Path(u"a.bak"_s);
    QFile part(file + u".part"_s); // another backup
    ASSERT_TRUE(part.open(QIODevice::ReadWrite));
    ASSERT_EQ(::flock(part.handle(), LOCK_EX), 0);
    EXPECT_EQ(failure(file), u"正在备份到同一文件，请稍后再试："_s + part.fileName());
    part.close(); // it was killed
    ASSERT_TRUE(QFile::link(file, Path(u"link"_s)));
    EXPECT_EQ(failure(file), u"nothing"_s);
    EXPECT_EQ(failure(Path(u"link"_s)), u"nothing"_s);
    EXPECT_EQ(Files(), (QStringList{u"a.bak"_s, u"link"_s}));
    EXPECT_TRUE(QFileInfo(Path(u"link"_s)).isSymLink());
}

TEST_F(OdbcPostgres, a_database_is_restored_under_any_name_but_the_servers_own)
{
    const TestServer &server = FDatabase->Server();
    const QString file = Path(u"a'b.bak"_s), copy = FDatabase->Name() + u"_Kopie? $x$ \"数'据="_s;
    const auto statement = [&](const QString &text, const QString &name) {
        return text.arg(u'[' + name + u']', QString(file).replace(u"'"_s, u"''"_s));
    };
    const QString backup = u"backup database %1 to disk='%2'"_s,
                  restore = u"restore database %1 from disk='%2'"_s;
    RunAll(*FConnection, {u"create table T(ID int identity(5,1), A varchar(20), M text)"_s,
                          u"create view V as select ID, left(A+'x', 2) as X from T where A like '[甲]%'"_s,
                          u"insert into T(A, M) values('甲', '乙')"_s, statement(backup, FDatabase->Name())});
    const auto master = ConnectTo(server.ConnectionString(u"master"_s));
    master->Execute(statement(restore, copy));
    {
        const auto restored = ConnectTo(server.ConnectionString(copy));
        restored->Execute(u"insert into T(A) values('甲2')"_s);
        EXPECT_EQ(Testing::Rows(*restored, u"select * from V order by ID"_s), u"5|甲x / 6|甲2"_s);
        // Other users get at the library's functions, too.
        EXPECT_EQ(Testing::Rows(*restored, u"select has_schema_privilege('public', 'korvane', 'usage')"_s),
                  u"1"_s);
        master->Execute(statement(backup, u"master"_s));
        EXPECT_EQ(FailureOf(*master, statement(restore, u"master"_s)),
                  u"不能恢复到系统数据库 master，备份中也没有其他数据库的名称："_s + file);
        EXPECT_EQ(FailureOf(*master, statement(restore, u"template1"_s)),
                  u"不能恢复到模板数据库：template1"_s);
        EXPECT_EQ(FailureOf(*master, statement(restore, copy)), u"数据库正在使用中，不能恢复："_s + copy);
    }
    RemoveCatalog(server.ConnectionString(copy));
    FConnection->SetConnected(false);
    FConnection->SetMode(cmRead);
    FConnection->SetConnected(true);
    EXPECT_EQ(FailureOf(*FConnection, statement(restore, copy)), u"连接是只读的，不能恢复数据库："_s + copy);
    EXPECT_FALSE(HasRestoreLeftovers(server));
}

// By which a restore gives the old database back its name when the new one cannot have it.
TEST_F(OdbcPostgres, two_new_names_in_one_text_are_given_together_or_not_at_all)
{
    FConnection->SetConnected(false);
    const TOdbcServer &server = PostgresOverOdbc();
    const TConnectionString master(FDatabase->Server().ConnectionString(u"master"_s));
    TOdbcConnection connection(server);
    connection.Connect(OdbcTargetOf(server, master, {}));
    const QString renames = PostgresRenameSql(FDatabase->Name(), FDatabase->Name() + u"_old"_s) + u"; "_s +
                            PostgresRenameSql(u"korvane_missing"_s, FDatabase->Name());
    EXPECT_THROW(TOdbcStatement(connection).Execute(renames), ESqlError);
    FConnection->SetConnected(true);
    EXPECT_TRUE(FConnection->Connected());
}

TEST(PostgresTools, a_program_that_is_missing_names_its_package)
{
    EXPECT_EQ(RaisedBy([] { FindPostgresTool(u"no_such_program"_s); }),
              u"EDatabaseError: 找不到程序 no_such_program，请安装 postgresql-client"_s);
}

} // namespace
