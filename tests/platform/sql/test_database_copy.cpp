// SPDX-License-Identifier: MIT
#include "platform/sql/DriverRegistry.h"
#include "support/Packets.h"
#include "support/TestDatabase.h"

using namespace Korvane;
using namespace Korvane::Testing;
using namespace Qt::StringLiterals;

namespace {

QStringList FilesIn(const QString &folder) { return QDir(folder).entryList(QDir::Files, QDir::Name); }

} // namespace

TEST(DatabaseCopy, is_whole_while_others_use_the_database)
{
    for (const TSqlDialect dialect : BothDialects) {
        const TestDatabase database(dialect, u"p"_s);
        const QTemporaryDir backups;
        const QString copy = backups.filePath(u"备份.db"_s);
        const auto connection = ConnectTo(database.ConnectionString(u"p"_s));
        RunAll(*connection, {u"create table T(A int)"_s, u"insert into T values(1)"_s});
        const auto writer = ConnectTo(database.ConnectionString(u"p"_s));
        writer->BeginTrans();
        RunAll(*writer, {u"insert into T values(2)"_s});
        connection->Driver().CopyDatabase(copy);
        writer->CommitTrans();

        EXPECT_EQ(FilesIn(backups.path()), QStringList{u"备份.db"_s});
        EXPECT_EQ(PlainDatabase(copy).Run(u"pragma integrity_check; select A from T"_s), u"ok / 1"_s);
        // It is a database like the one it was made from, password and all.
        const TestDatabase access(TSqlDialect::Access);
        EXPECT_EQ(ConnectFailure(access.ConnectionTo(copy)),
                  u"数据库设有密码，请输入密码后再连接："_s + copy);
        EXPECT_EQ(Rows(*ConnectTo(access.ConnectionTo(copy, u"p"_s)), u"select A from T"_s), u"1"_s);

        connection->Driver().CopyDatabase(copy); // takes the place of the one before
        EXPECT_EQ(PlainDatabase(copy).Run(u"select A from T"_s), u"1 / 2"_s);
    }
}

TEST(DatabaseCopy, that_fails_leaves_the_copy_before)
{
    for (const TSqlDialect dialect : BothDialects) {
        const TestDatabase database(dialect);
        const QTemporaryDir backups;
        const QString copy = backups.filePath(u"a.db"_s);
        const auto connection = database.Connect();
        RunAll(*connection, {u"create table T(A int)"_s, u"insert into T values(1)"_s});
        connection->Driver().CopyDatabase(copy);
        EXPECT_NE(RaisedBy([&] { connection->Driver().CopyDatabase(backups.filePath(u"none/a.db"_s)); }),
                  u"nothing"_s);
        EXPECT_NE(RaisedBy([&] { connection->Driver().CopyDatabase(backups.path()); }), u"nothing"_s);
        EXPECT_EQ(FilesIn(backups.path()), QStringList{u"a.db"_s});
        EXPECT_EQ(PlainDatabase(copy).Run(u"select A from T"_s), u"1"_s);
        connection->SetConnected(false);
        auto driver = CreateDriver(TConnectionString(database.ConnectionString()));
        EXPECT_NE(RaisedBy([&] { driver->CopyDatabase(copy); }), u"nothing"_s);
        EXPECT_EQ(PlainDatabase(copy).Run(u"select A from T"_s), u"1"_s);
    }
}

// The copy is what was last committed, or there is none: never a part.
TEST(DatabaseCopy, inside_a_transaction_is_whole_or_refused)
{
    for (const TSqlDialect dialect : BothDialects) {
        const TestDatabase database(dialect);
        const QTemporaryDir backups;
        const QString copy = backups.filePath(u"a.db"_s);
        const auto connection = database.Connect();
        RunAll(*connection, {u"create table T(A int)"_s, u"insert into T values(1)"_s});
        connection->BeginTrans();
        RunAll(*connection, {u"insert into T values(2)"_s});
        const QString raised = RaisedBy([&] { connection->Driver().CopyDatabase(copy); });
        const bool isCopied = raised == u"nothing"_s;
        EXPECT_EQ(QFile::exists(copy), isCopied) << raised.toStdString();
        EXPECT_EQ(isCopied ? PlainDatabase(copy).Run(u"select A from T"_s) : u"1"_s, u"1"_s);
        connection->CommitTrans();
    }
}

TEST(DatabaseCopy, of_a_locked_database_is_refused)
{
    const TestDatabase database(TSqlDialect::Access);
    const QString file = database.Folder() + u"/foreign.db"_s;
    const QString copy = database.Folder() + u"/copy.db"_s;
    PlainDatabase tool(file);
    tool.Run(u"create table T(A int); insert into T values(1)"_s);
    const auto connection = ConnectTo(database.ConnectionTo(file), 0);
    tool.Run(u"begin exclusive"_s);
    EXPECT_NE(RaisedBy([&] { connection->Driver().CopyDatabase(copy); }), u"nothing"_s);
    EXPECT_FALSE(QFile::exists(copy));
    EXPECT_FALSE(QFile::exists(copy + u".part"_s));
}
