// SPDX-License-Identifier: MIT
#include "platform/sql/SqlError.h"
#include "platform/sql/sqlite/SqliteDatabase.h"
#include "platform/sql/sqlite/SqliteMetadata.h"
#include "support/Packets.h"
#include "support/TestDatabase.h"

#include <QFileInfo>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Korvane;
using namespace Korvane::Testing;
using namespace Qt::StringLiterals;

namespace {

void Write(const QString &fileName, const QByteArray &bytes)
{
    QFile file(fileName);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

QByteArray ContentOf(const QString &fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArrayLiteral("(cannot be read)");
}

QStringList FilesIn(const QString &folder) { return QDir(folder).entryList(QDir::Files, QDir::Name); }

/// Without the rights of root, which no file's mode stops.
class OrdinaryUser
{
public:
    OrdinaryUser() : FIsOrdinary(::geteuid() != 0 || ::seteuid(65534) == 0) {}
    ~OrdinaryUser()
    {
        if (::getuid() == 0 && ::seteuid(0) != 0)
            ADD_FAILURE() << "cannot be root again";
    }
    bool IsOrdinary() const { return FIsOrdinary; }

private:
    bool FIsOrdinary;
};

} // namespace

TEST(DatabaseFile, another_tool_sees_a_durable_database_that_compares_blind_to_case)
{
    for (const TSqlDialect dialect : BothDialects) {
        const TestDatabase database(dialect);
        PlainDatabase tool(database.FileName());
        EXPECT_EQ(tool.Run(u"pragma journal_mode"_s), u"wal"_s);
        EXPECT_EQ(tool.Run(u"pragma application_id"_s), QString::number(DatabaseApplicationId));
        EXPECT_EQ(tool.Run(u"select count(*) from _korvane where Kind='database'"_s), u"1"_s);

        const auto connection = database.Connect();
        EXPECT_EQ(Rows(*connection, u"select synchronous from pragma_synchronous"_s), u"2"_s) << "full";
        RunAll(*connection,
               {u"create table T(CODE varchar(10) not null, MEMO text, constraint PK_T primary key(CODE))"_s,
                u"insert into T values('Abc', 'Note')"_s});
        EXPECT_EQ(Rows(*connection, u"select CODE from T where CODE='aBC' and MEMO='NOTE'"_s), u"Abc"_s);
        EXPECT_EQ(tool.Run(u"select CODE from T where CODE='aBC' and MEMO='NOTE'"_s), u"Abc"_s);
        EXPECT_EQ(tool.Run(u"insert into T values('ABC', '')"_s),
                  u"error: UNIQUE constraint failed: T.CODE"_s);
        EXPECT_EQ(tool.Run(u"insert into T values('Abd', '')"_s), u""_s);
        EXPECT_EQ(Rows(*connection, u"select CODE from T order by CODE"_s), u"Abc / Abd"_s);
    }
}

TEST(DatabaseFile, is_made_only_where_there_is_none)
{
    for (const TSqlDialect dialect : BothDialects) {
        const TestDatabase database(dialect);
        RunAll(*database.Connect(), {u"create table T(A int)"_s});
        const QByteArray before = ContentOf(database.FileName());
        EXPECT_EQ(RaisedBy([&] { CreateCatalog(database.ConnectionString()); }),
                  u"EDatabaseError: 数据库文件已经存在："_s + database.FileName());
        EXPECT_EQ(ContentOf(database.FileName()), before);
    }
    const TestDatabase database(TSqlDialect::Access);
    const QString text = database.Folder() + u"/a.txt"_s;
    Write(text, "a letter");
    EXPECT_EQ(RaisedBy([&] { CreateCatalog(database.ConnectionTo(text)); }),
              u"EDatabaseError: 数据库文件已经存在："_s + text);
    EXPECT_EQ(ContentOf(text), QByteArray("a letter"));
    const QString nowhere = database.Folder() + u"/none/a.db"_s;
    EXPECT_EQ(RaisedBy([&] { CreateCatalog(database.ConnectionTo(nowhere)); }),
              u"EDatabaseError: 不能创建数据库文件：%1（No such file or directory）"_s.arg(nowhere));
    EXPECT_EQ(RaisedBy([&] { CreateCatalog(database.ConnectionTo({})); }),
              u"EDatabaseError: 没有指定数据库文件"_s);
    EXPECT_EQ(FilesIn(database.Folder()), (QStringList{u"a.txt"_s, u"orders.db"_s}));
}

TEST(DatabaseFile, what_is_none_is_told_and_left_alone)
{
    const TestDatabase database(TSqlDialect::Access);
    const QString header = u"SQLite format 3"_s + QChar(0);
    const struct
    {
        QString Name;
        QByteArray Content;
        QString Message;
    } rows[] = {
        {u"empty.db"_s, "", u"不是有效的数据库文件：%1"_s},
        {u"letter.doc"_s, QByteArray(5000, 'x'), u"不是有效的数据库文件：%1"_s},
        {u"short.db"_s, "SQLite", u"不是有效的数据库文件：%1"_s},
        {u"header.db"_s, header.toLatin1(), u"不是有效的数据库文件：%1（file is not a database）"_s},
        {u"noise.db"_s, header.toLatin1() + QByteArray(5000, '\x7f'),
         u"不是有效的数据库文件：%1（file is not a database）"_s},
    };
    for (const auto &row : rows) {
        const QString file = database.Folder() + u'/' + row.Name;
        Write(file, row.Content);
        EXPECT_EQ(ConnectFailure(database.ConnectionTo(file)), row.Message.arg(file));
        EXPECT_EQ(ContentOf(file), row.Content);
    }
    const QString missing = database.Folder() + u"/没有.db"_s;
    EXPECT_EQ(ConnectFailure(database.ConnectionTo(missing)), u"找不到数据库文件："_s + missing);
    EXPECT_EQ(ConnectFailure(database.ConnectionTo(database.Folder())),
              u"这是文件夹，不是数据库文件："_s + database.Folder());
    EXPECT_EQ(ConnectFailure(database.ConnectionTo({})), u"没有指定数据库文件"_s);
    // Nothing was made, no roster stayed.
    EXPECT_EQ(FilesIn(database.Folder()), (QStringList{u"empty.db"_s, u"header.db"_s, u"letter.doc"_s,
                                                       u"noise.db"_s, u"orders.db"_s, u"short.db"_s}));
}

TEST(DatabaseFile, one_cut_short_is_told_as_damaged)
{
    for (const TSqlDialect dialect : BothDialects) {
        const TestDatabase database(dialect);
        RunAll(*database.Connect(), {u"create table T(A varchar(100))"_s, u"insert into T values('x')"_s,
                                     u"insert into T select A from T"_s});
        const QByteArray whole = ContentOf(database.FileName());
        ASSERT_GT(whole.size(), 4096);
        Write(database.FileName(), whole.left(4096));
        QString failure = ConnectFailure(database.ConnectionString());
        if (failure == u"nothing"_s)
            failure = FailureOf(*database.Connect(), u"select * from T"_s);
        EXPECT_TRUE(failure.startsWith(u"数据库文件已损坏："_s + database.FileName()))
            << failure.toStdString();
    }
}

TEST(DatabaseFile, violations_are_told_in_a_clerks_words)
{
    for (const TSqlDialect dialect : BothDialects) {
        const TestDatabase database(dialect);
        const auto connection = database.Connect();
        RunAll(
            *connection,
            {u"create table M(CODE varchar(10) not null, constraint PK_M primary key(CODE))"_s,
             u"create table T(CODE varchar(10) not null, NAME varchar(20) not null, QTY int, M varchar(10), "
             "constraint PK_T primary key(CODE), constraint CK_T check(QTY>0), "
             "constraint FK_T foreign key(M) references M(CODE))"_s,
             u"create unique index IX_T on T(NAME)"_s, u"insert into T values('a', 'x', 1, null)"_s});
        static const struct
        {
            QString Statement;
            QString Failure;
        } rows[] = {
            {u"insert into T values('A', 'y', 1, null)"_s,
             u"主键或唯一索引的值重复，记录已存在（UNIQUE constraint failed: T.CODE）"_s},
            {u"insert into T values('b', 'X', 1, null)"_s,
             u"主键或唯一索引的值重复，记录已存在（UNIQUE constraint failed: T.NAME）"_s},
            {u"insert into T values('b', null, 1, null)"_s,
             u"不可为空的字段没有值（NOT NULL constraint failed: T.NAME）"_s},
            {u"update T set CODE=null"_s, u"不可为空的字段没有值（NOT NULL constraint failed: T.CODE）"_s},
            {u"insert into T values('b', 'y', 0, null)"_s,
             u"字段的值不符合约束（CHECK constraint failed: CK_T）"_s},
            {u"insert into T values('b', 'y', 1, 'none')"_s,
             u"相关联的记录不存在，或仍被引用（FOREIGN KEY constraint failed）"_s},
            {u"insert into NONE values(1)"_s, u"no such table: NONE"_s},
            {u"insert into T(NONE) values(1)"_s, u"table T has no column named NONE"_s},
        };
        for (const auto &row : rows)
            EXPECT_EQ(FailureOf(*connection, row.Statement), row.Failure) << row.Statement.toStdString();
        EXPECT_EQ(Rows(*connection, u"select * from T"_s), u"a|x|1|~"_s);
    }
}

TEST(DatabaseFile, opened_for_reading_it_cannot_be_written)
{
    for (const TSqlDialect dialect : BothDialects) {
        const TestDatabase database(dialect);
        RunAll(*database.Connect(), {u"create table T(A int)"_s, u"insert into T values(1)"_s});
        TADOConnection connection;
        connection.SetConnectionString(database.ConnectionString());
        connection.SetMode(cmRead);
        connection.SetConnected(true);
        EXPECT_TRUE(connection.Driver().HasFeature(TSqlFeature::ReadOnly));
        EXPECT_EQ(Rows(connection, u"select * from T"_s), u"1"_s);
        EXPECT_EQ(FailureOf(connection, u"insert into T values(2)"_s),
                  u"数据库是只读的，不能写入：%1（attempt to write a readonly database）"_s.arg(
                      database.FileName()));
        connection.BeginTrans();
        EXPECT_EQ(Rows(connection, u"select * from T"_s), u"1"_s);
        connection.RollbackTrans();
    }
}

TEST(DatabaseFile, without_the_right_to_write_it_is_read_or_refused_in_words)
{
    for (const TSqlDialect dialect : BothDialects) {
        const TestDatabase database(dialect);
        ConnectTo(database.ConnectionString())->Execute(u"create table T(A int)"_s);
        if (dialect == TSqlDialect::MSSQL) {
            // The folder is the server: "master" is there from the first connect on.
            ConnectTo(database.ConnectionTo(u"master"_s));
        }
        QFile(database.FileName()).setPermissions(QFile::ReadOwner | QFile::ReadGroup | QFile::ReadOther);
        const auto folder = QFile::ReadOwner | QFile::ExeOwner | QFile::ReadGroup | QFile::ExeGroup |
                            QFile::ReadOther | QFile::ExeOther;
        QFile(database.Folder())
            .setPermissions(folder | QFile::WriteOwner | QFile::WriteGroup | QFile::WriteOther);
        {
            const OrdinaryUser user;
            if (!user.IsOrdinary())
                GTEST_SKIP() << "the mode of a file does not stop this user";
            const auto connection = database.Connect();
            EXPECT_EQ(Rows(*connection, u"select * from T"_s), u""_s);
            EXPECT_EQ(FailureOf(*connection, u"insert into T values(2)"_s),
                      u"数据库是只读的，不能写入：%1（attempt to write a readonly database）"_s.arg(
                          database.FileName()));
        }
        // Nor can anything be put beside the file.
        QFile(database.Folder()).setPermissions(folder);
        {
            const OrdinaryUser user;
            TADOConnection connection;
            connection.SetConnectionString(database.ConnectionString());
            connection.SetConnected(true);
            EXPECT_EQ(Rows(connection, u"select * from T"_s), u""_s);
            EXPECT_EQ(FailureOf(connection, u"insert into T values(2)"_s),
                      u"数据库是只读的，不能写入：%1（attempt to write a readonly database）"_s.arg(
                          database.FileName()));
            const QString file = database.Folder() + u"/new.db"_s;
            EXPECT_EQ(RaisedBy([&] {
                          CreateCatalog(
                              database.ConnectionTo(dialect == TSqlDialect::Access ? file : u"new"_s));
                      }),
                      u"EDatabaseError: 不能创建数据库文件：%1（Permission denied）"_s.arg(file));
        }
        QFile(database.Folder()).setPermissions(folder | QFile::WriteOwner);
    }
}

TEST(DatabaseFile, one_made_by_another_tool_is_served_and_keeps_its_journal)
{
    const TestDatabase database(TSqlDialect::Access);
    const QString file = database.Folder() + u"/foreign.db"_s;
    PlainDatabase(file).Run(u"create table T(A text); insert into T values('x')"_s);
    {
        const auto connection = ConnectTo(database.ConnectionTo(file));
        EXPECT_EQ(Rows(*connection, u"select A from T"_s), u"x"_s);
        RunAll(*connection, {u"create table U(B int)"_s, u"drop table T"_s});
    }
    PlainDatabase tool(file);
    EXPECT_EQ(tool.Run(u"select name from sqlite_master"_s), u"U"_s);
    EXPECT_EQ(tool.Run(u"pragma journal_mode"_s), u"delete"_s);
    EXPECT_EQ(tool.Run(u"pragma application_id"_s), u"0"_s);
}

TEST(DatabaseFile, removing_takes_all_of_it_and_refuses_one_in_use)
{
    for (const TSqlDialect dialect : BothDialects) {
        const TestDatabase database(dialect);
        {
            const auto connection = database.Connect();
            RunAll(*connection, {u"create table T(A int)"_s});
            const QString named = dialect == TSqlDialect::Access ? database.FileName() : u"orders"_s;
            EXPECT_EQ(RaisedBy([&] { RemoveCatalog(database.ConnectionString()); }),
                      u"EDatabaseError: 数据库正在使用中，不能删除："_s + named);
            EXPECT_EQ(Rows(*connection, u"select * from T"_s), u""_s);
        }
        RemoveCatalog(database.ConnectionString());
        const QStringList left = FilesIn(database.Folder());
        EXPECT_TRUE(left.filter(u"orders"_s).isEmpty()) << left.join(u' ').toStdString();
        CreateCatalog(database.ConnectionString());
        EXPECT_EQ(FailureOf(*database.Connect(), u"select * from T"_s), u"no such table: T"_s);
    }
}
