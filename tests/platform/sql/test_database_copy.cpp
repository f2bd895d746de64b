// SPDX-License-Identifier: MIT
#include "platform/sql/DriverRegistry.h"
#include "platform/sql/OtherUser.h"
#include "support/Packets.h"
#include "support/TestDatabase.h"

#include <QRegularExpression>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Korvane;
using namespace Korvane::Testing;
using namespace Qt::StringLiterals;

namespace {

QStringList FilesIn(const QString &folder) { return QDir(folder).entryList(QDir::Files, QDir::Name); }

QByteArray BytesOf(const QString &fileName)
{
    QFile file(fileName);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << fileName.toStdString();
    return file.readAll();
}

void WriteFile(const QString &fileName, const QByteArray &bytes)
{
    QFile file(fileName);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

int ModeOf(const QString &fileName)
{
    struct stat state = {};
    ::stat(QFile::encodeName(fileName).constData(), &state);
    return int(state.st_mode & 0777);
}

/// A connection and what it copies, with a folder for the copies.
class DatabaseCopy : public testing::TestWithParam<TSqlDialect>
{
protected:
    DatabaseCopy()
    {
        RunAll(*FConnection, {u"create table T(A int, N int)"_s, u"insert into T values(1, 0)"_s});
    }

    QString Path(const QString &name) const { return FBackups.filePath(name); }
    void Copy(const QString &name) const { FConnection->Driver().CopyDatabase(Path(name)); }
    QString CopyFailure(const QString &name) const
    {
        return RaisedBy([&] { Copy(name); }).section(u": "_s, 1);
    }
    QString ContentOf(const QString &name) const
    {
        return PlainDatabase(Path(name)).Run(u"pragma integrity_check; select A from T"_s);
    }

    const TestDatabase FDatabase{GetParam()};
    const QTemporaryDir FBackups;
    const std::unique_ptr<TADOConnection> FConnection = FDatabase.Connect();
};
INSTANTIATE_TEST_SUITE_P(Dialects, DatabaseCopy, testing::ValuesIn(BothDialects), [](const auto &tested) {
    return tested.param == TSqlDialect::Access ? "Access" : "MSSQL";
});

} // namespace

TEST(DatabaseCopyPasswords, ride_along)
{
    for (const TSqlDialect dialect : BothDialects) {
        const TestDatabase database(dialect, u"p"_s);
        const QTemporaryDir backups;
        const QString copy = backups.filePath(u"备份.db"_s);
        const auto connection = ConnectTo(database.ConnectionString(u"p"_s));
        RunAll(*connection, {u"create table T(A int)"_s, u"insert into T values(1)"_s});
        connection->Driver().CopyDatabase(copy);
        const TestDatabase access(TSqlDialect::Access);
        EXPECT_EQ(ConnectFailure(access.ConnectionTo(copy)),
                  u"数据库设有密码，请输入密码后再连接："_s + copy);
        EXPECT_EQ(Rows(*ConnectTo(access.ConnectionTo(copy, u"p"_s)), u"select A from T"_s), u"1"_s);
    }
}

TEST_P(DatabaseCopy, is_what_was_committed_whoever_is_in_a_transaction)
{
    const auto writer = FDatabase.Connect();
    writer->BeginTrans();
    RunAll(*writer, {u"insert into T values(2, 0)"_s});
    Copy(u"a"_s);
    EXPECT_EQ(ContentOf(u"a"_s), u"ok / 1"_s);
    writer->CommitTrans();
    FConnection->BeginTrans();
    RunAll(*FConnection, {u"insert into T values(3, 0)"_s});
    Copy(u"a"_s); // takes the place of the one before
    EXPECT_EQ(ContentOf(u"a"_s), u"ok / 1 / 2"_s);
    FConnection->CommitTrans();
    EXPECT_EQ(Rows(*FConnection, u"select A from T"_s), u"1 / 2 / 3"_s);
}

TEST_P(DatabaseCopy, is_one_file_without_a_log_and_as_private_as_the_database)
{
    ASSERT_EQ(::chmod(QFile::encodeName(FDatabase.FileName()).constData(), 0640), 0);
    Copy(u"a"_s);
    EXPECT_EQ(BytesOf(Path(u"a"_s)).mid(18, 2), QByteArray("\x01\x01"));
    EXPECT_EQ(ContentOf(u"a"_s), u"ok / 1"_s);
    EXPECT_EQ(FilesIn(FBackups.path()), QStringList{u"a"_s});
    EXPECT_EQ(ModeOf(Path(u"a"_s)), 0640);
}

TEST_P(DatabaseCopy, taken_while_other_processes_write_holds_a_state_that_was_committed)
{
    RunAll(*FConnection, {u"delete from T"_s});
    OtherUser one, two;
    for (OtherUser *user : {&one, &two})
        ASSERT_EQ(user->Ask(u"connect"_s, FDatabase.ConnectionString()), u"ok"_s);
    one.Tell(u"insert"_s, u"1"_s);
    two.Tell(u"insert"_s, u"2"_s);
    int copies = 0;
    do {
        Copy(u"a"_s);
        // Each writer's rows are numbered from 0: without a gap they are what was there at one moment.
        EXPECT_EQ(PlainDatabase(Path(u"a"_s))
                      .Run(u"pragma integrity_check; select A from T group by A having max(N)+1<>count(*)"_s),
                  u"ok"_s);
        ++copies;
    } while (!one.Answers(0) || !two.Answers(0));
    EXPECT_GT(copies, 2);
    EXPECT_EQ(one.Answer(), u"ok"_s);
    EXPECT_EQ(two.Answer(), u"ok"_s);
    EXPECT_EQ(Rows(*FConnection, u"select count(*) from T"_s), u"400"_s);
}

TEST_P(DatabaseCopy, that_fails_leaves_the_copy_before)
{
    Copy(u"a"_s);
    const QString bad = u"不能写入文件："_s;
    EXPECT_EQ(CopyFailure(u"none/a"_s), bad + Path(u"none/a.part"_s) + u"（No such file or directory）"_s);
    EXPECT_EQ(CopyFailure({}), bad + Path({}) + u"（不是普通文件）"_s);
    const QString file = FDatabase.FileName();
    EXPECT_EQ(RaisedBy([&] { FConnection->Driver().CopyDatabase(file); }).section(u": "_s, 1),
              u"数据库不能复制到自身："_s + file);
    FConnection->SetConnected(false);
    const auto driver = CreateDriver(TConnectionString(FDatabase.ConnectionString()));
    EXPECT_NE(RaisedBy([&] { driver->CopyDatabase(Path(u"a"_s)); }), u"nothing"_s);
    EXPECT_EQ(FilesIn(FBackups.path()), QStringList{u"a"_s});
    EXPECT_EQ(ContentOf(u"a"_s), u"ok / 1"_s);
}

TEST_P(DatabaseCopy, two_to_one_place_do_not_mix)
{
    // What a killed process left is written over, what a living one holds is not.
    WriteFile(Path(u"a.part"_s), QByteArray(100'000, 'x'));
    WriteFile(Path(u"a.part-journal"_s), QByteArray(1000, 'x'));
    const int held = ::open(QFile::encodeName(Path(u"a.part"_s)).constData(), O_RDWR | O_CLOEXEC);
    struct flock lock = {};
    lock.l_type = F_WRLCK;
    lock.l_len = 1;
    ASSERT_EQ(::fcntl(held, F_OFD_SETLK, &lock), 0);
    EXPECT_EQ(CopyFailure(u"a"_s), u"正在备份到同一文件，请稍后再试："_s + Path(u"a.part"_s));
    ::close(held);
    Copy(u"a"_s);
    EXPECT_EQ(ContentOf(u"a"_s), u"ok / 1"_s);
    EXPECT_EQ(FilesIn(FBackups.path()), QStringList{u"a"_s});
}

// A log beside a database is worked into it by whoever opens it, whatever it was of.
TEST_P(DatabaseCopy, over_a_database_with_a_log_leaves_none_beside_it)
{
    {
        OtherUser user;
        const TestDatabase other(TSqlDialect::Access);
        ASSERT_EQ(user.Ask(u"connect"_s, other.ConnectionString()), u"ok"_s);
        user.Ask(u"run"_s, u"create table T(A int, B int)"_s);
        user.Ask(u"run"_s, u"insert into T values(77, 77)"_s);
        user.Kill();
        for (const QString &suffix : {u""_s, u"-wal"_s})
            ASSERT_TRUE(QFile::copy(other.FileName() + suffix, Path(u"a"_s) + suffix));
    }
    Copy(u"a"_s);
    EXPECT_EQ(FilesIn(FBackups.path()), QStringList{u"a"_s});
    EXPECT_EQ(ContentOf(u"a"_s), u"ok / 1"_s);
    // The same where the file itself is gone or is no database.
    QFile::remove(Path(u"a"_s));
    WriteFile(Path(u"a-journal"_s), "old");
    Copy(u"a"_s);
    WriteFile(Path(u"b"_s), "no database");
    WriteFile(Path(u"b-wal"_s), "old");
    Copy(u"b"_s);
    EXPECT_EQ(FilesIn(FBackups.path()), (QStringList{u"a"_s, u"b"_s}));
}

TEST_P(DatabaseCopy, over_a_database_in_use_is_refused)
{
    const TestDatabase other(TSqlDialect::Access);
    const auto user = other.Connect();
    RunAll(*user, {u"create table T(A int)"_s, u"insert into T values(5)"_s});
    EXPECT_NE(RaisedBy([&] { FConnection->Driver().CopyDatabase(other.FileName()); }), u"nothing"_s);
    EXPECT_EQ(Rows(*user, u"select A from T"_s), u"5"_s);
    EXPECT_FALSE(QFile::exists(other.FileName() + u".part"_s));
}

TEST(DatabaseCopyOfForeignFiles, waits_for_a_lock_as_long_as_the_timeout_says)
{
    const TestDatabase database(TSqlDialect::Access);
    const QString file = database.Folder() + u"/foreign.db"_s;
    const QString copy = database.Folder() + u"/copy.db"_s;
    PlainDatabase tool(file);
    tool.Run(u"create table T(A int); insert into T values(1)"_s);
    const auto connection = ConnectTo(database.ConnectionTo(file), 0);
    tool.Run(u"begin exclusive"_s);
    EXPECT_EQ(RaisedBy([&] { connection->Driver().CopyDatabase(copy); }).section(u": "_s, 1),
              u"数据库正被其他用户锁定，请稍后再试：%1（database is locked）"_s.arg(file));
    EXPECT_FALSE(QFile::exists(copy));
    EXPECT_FALSE(QFile::exists(copy + u".part"_s));
    tool.Run(u"commit; begin immediate; insert into T values(2)"_s);
    connection->Driver().CopyDatabase(copy);
    EXPECT_EQ(PlainDatabase(copy).Run(u"select A from T"_s), u"1"_s);
}

TEST(DatabaseReplacement, takes_the_old_ones_place_with_its_mode_and_no_log)
{
    const TestDatabase database(TSqlDialect::Access);
    const QString copy = database.Folder() + u"/copy"_s;
    const TConnectionString connection(database.ConnectionString());
    const auto driver = CreateDriver(connection);
    RunAll(*database.Connect(), {u"create table T(A int)"_s, u"insert into T values(1)"_s});
    driver->CopyDatabaseFile(database.FileName(), copy, TCopyCheck::Whole);
    // A user who was killed leaves a log with what he committed.
    OtherUser user;
    ASSERT_EQ(user.Ask(u"connect"_s, database.ConnectionString()), u"ok"_s);
    user.Ask(u"run"_s, u"insert into T values(2)"_s);
    EXPECT_EQ(RaisedBy([&] { driver->ReplaceDatabase(connection, copy); }).section(u": "_s, 1),
              u"数据库正在使用中，不能替换："_s + database.FileName());
    user.Kill();
    ASSERT_TRUE(QFile::exists(database.FileName() + u"-wal"_s));
    ASSERT_EQ(::chmod(QFile::encodeName(database.FileName()).constData(), 0660), 0);
    driver->ReplaceDatabase(connection, copy);
    EXPECT_EQ(FilesIn(database.Folder()), QStringList{u"orders.db"_s});
    EXPECT_EQ(ModeOf(database.FileName()), 0660);
    EXPECT_EQ(Rows(*database.Connect(), u"select A from T"_s), u"1"_s);
}

TEST(DatabaseReplacement, of_a_database_with_a_password_is_for_who_knows_it)
{
    const TestDatabase database(TSqlDialect::Access, u"p"_s);
    const QString copy = database.Folder() + u"/copy"_s;
    const TConnectionString wrong(database.ConnectionString(u"q"_s));
    const auto driver = CreateDriver(wrong);
    driver->CopyDatabaseFile(database.FileName(), copy, TCopyCheck::Whole);
    EXPECT_EQ(RaisedBy([&] { driver->ReplaceDatabase(wrong, copy); }).section(u": "_s, 1),
              u"数据库密码不正确，不能连接："_s + database.FileName());
    driver->ReplaceDatabase(TConnectionString(database.ConnectionString(u"p"_s)), copy);
    EXPECT_FALSE(QFile::exists(copy));
}

TEST(ServerBackups, go_back_to_the_database_that_is_named_or_that_they_are_of)
{
    const TestDatabase server(TSqlDialect::MSSQL);
    const QTemporaryDir backups;
    const QString file = backups.filePath(u"it's.bak"_s);
    const QString disk = u"disk='%1'"_s.arg(QString(file).replace(u'\'', u"''"_s));
    const auto session = ConnectTo(server.ConnectionTo(u"master"_s));
    RunAll(*server.Connect(), {u"create table T(A int)"_s, u"insert into T values(1)"_s});
    RunAll(*session, {u"backup database ORDERS to "_s + disk});
    const auto content = [&](const QString &database) {
        return Rows(*ConnectTo(server.ConnectionTo(database)), u"select A from T"_s);
    };
    RunAll(*server.Connect(), {u"delete from T"_s});
    RunAll(*session, {u"restore database [新 库] from "_s + disk});
    EXPECT_EQ(content(u"新 库"_s), u"1"_s);
    EXPECT_EQ(content(u"orders"_s), u""_s);
    RunAll(*session, {u"restore database orders from "_s + disk});
    EXPECT_EQ(content(u"orders"_s), u"1"_s);
    RunAll(*server.Connect(), {u"delete from T"_s});
    RunAll(*session, {u"restore database master from "_s + disk});
    EXPECT_EQ(content(u"orders"_s), u"1"_s);
    EXPECT_EQ(Rows(*session, u"select name from sysdatabases order by dbid"_s), u"master / orders / 新 库"_s);

    // A database in use stays, also under the one who asks; a relative path is in the server's folder.
    const auto user = server.Connect();
    EXPECT_EQ(FailureOf(*user, u"restore database Orders from "_s + disk),
              u"数据库正在使用中，不能恢复：Orders"_s);
    RunAll(*user, {u"backup database orders to disk='own.bak'"_s});
    EXPECT_EQ(FilesIn(server.Folder()).filter(u"own"_s), QStringList{u"own.bak"_s});
}

TEST(ServerBackups, that_cannot_be_done_are_refused_with_the_reason)
{
    const TestDatabase server(TSqlDialect::MSSQL);
    const QString folder = server.Folder() + u'/';
    const auto session = ConnectTo(server.ConnectionTo(u"master"_s));
    CreateCatalog(server.ConnectionTo(u"locked"_s, u"p"_s));
    RunAll(*session, {u"backup database master to disk='master.bak'"_s,
                      u"backup database orders to disk='orders.bak'"_s});
    PlainDatabase(folder + u"foreign.bak"_s).Run(u"create table T(A int)"_s);
    const QString noName = u"不能恢复到系统数据库 master，备份中也没有其他数据库的名称："_s;
    const QString ownFile = u"备份文件不能放在服务器自己的文件处："_s;
    const struct
    {
        QString Statement;
        QString Reason;
    } rows[] = {
        {u"backup database none to disk='a.bak'"_s, u"找不到数据库文件："_s + folder + u"none.db"_s},
        {u"backup database locked to disk='a.bak'"_s,
         u"数据库设有密码，请输入密码后再连接："_s + folder + u"locked.db"_s},
        {u"backup database orders to disk=''"_s, u"没有指定备份文件："_s},
        {u"backup database orders to disk='new.db'"_s, ownFile + folder + u"new.db"_s},
        {u"backup database orders to disk='x/../roster'"_s, ownFile + folder + u"roster"_s},
        {u"restore database orders from disk='none'"_s, u"找不到数据库文件："_s + folder + u"none"_s},
        {u"restore database orders from disk='locked.db'"_s, ownFile + folder + u"locked.db"_s},
        {u"restore database master from disk='master.bak'"_s, noName + u"master.bak"_s},
        {u"restore database [MASTER] from disk='foreign.bak'"_s, noName + u"foreign.bak"_s},
        {u"restore database locked from disk='orders.bak'"_s,
         u"数据库设有密码，请输入密码后再连接："_s + folder + u"locked.db"_s},
        {u"restore database [a/b] from disk='orders.bak'"_s, u"“a/b”不能作为数据库名称"_s},
    };
    for (const auto &row : rows)
        EXPECT_EQ(FailureOf(*session, row.Statement), row.Reason) << row.Statement.toStdString();
    TADOConnection reader;
    reader.SetConnectionString(server.ConnectionTo(u"orders"_s));
    reader.SetMode(cmRead);
    reader.SetConnected(true);
    RunAll(reader, {u"backup database orders to disk='b.bak'"_s});
    EXPECT_EQ(FailureOf(reader, u"restore database other from disk='b.bak'"_s),
              u"连接是只读的，不能恢复数据库：other"_s);
    EXPECT_EQ(FilesIn(server.Folder()).filter(QRegularExpression(u"rest|part"_s)), QStringList());
}
