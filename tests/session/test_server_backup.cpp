// SPDX-License-Identifier: MIT
// Backup and restore on a database server.
#include "SessionFixture.h"

#include <QFile>
#include <QRegularExpression>
#include <QThread>

using namespace Korvane;
using namespace Korvane::Testing;
using namespace Qt::StringLiterals;

namespace {

class ServerBackup : public SessionFixture
{
protected:
    ServerBackup()
    {
        if (!FSession.Connected())
            return;
        FName = FSession.DBName();
        FSession.SetAppName(FName); // a name of its own
        for (const QString &statement :
             {u"create table T(ID int identity(1,1), A varchar(20), B image, D decimal(18,4))"_s,
              u"create unique index IX on T(A)"_s,
              u"insert into T(A,B,D) values('甲''乙',0x00ff27,1234567.0001)"_s})
            FSession.Execute(statement);
    }
    void Reconnect()
    {
        FSession.SetDBName(FName);
        FSession.SetConnected(true);
    }
    /// Of each message the first line: what follows is the statement with names of the server's.
    QString FirstLines(const std::function<bool()> &call)
    {
        static const QRegularExpression behind(u"\r[^\\]]*"_s);
        return Outcome(call).remove(behind);
    }
    QString Backup(const QString &file)
    {
        return FirstLines([&] { return FSession.BackupDB(file); });
    }
    /// From a connection of another name: one of the name that the database is used by stops a restore.
    QString Restore(const QString &file, int others = 0)
    {
        FSession.SetConnected(false);
        FSession.SetAppName({});
        Reconnect();
        FSession.SetAppName(FName);
        // The server takes a moment to let go of a connection.
        for (int tries = 0; tries < 200 && FSession.GetOnlineUsers(FName) > others; ++tries)
            QThread::msleep(25);
        return FirstLines([&] { return FSession.RestoreDB(file); });
    }
    QString Content() { return Rows(u"select ID,A,B,D from T order by ID"_s); }

    QString FName;
};

std::vector<TTestPlace> ServerPlaces() { return {{dbtMSSQL, ServerKind::Postgres}}; }
INSTANTIATE_TEST_SUITE_P(Places, ServerBackup, testing::ValuesIn(ServerPlaces()), PlaceName);

} // namespace

TEST_P(ServerBackup, a_restore_brings_back_what_was_backed_up)
{
    const QString before = Content();
    const TDateTime made = FSession.GetDBDate();
    const QString file = Path(u"备份 1.bak"_s);
    EXPECT_EQ(Backup(file), u"true disconnected"_s);
    Reconnect();
    FSession.Execute(u"delete from T"_s);
    FSession.Execute(u"create table LATER(A int)"_s);
    EXPECT_EQ(Restore(file), u"true disconnected"_s);
    EXPECT_EQ(FSession.DBName(), u"master"_s);

    Reconnect();
    EXPECT_EQ(Content(), before);
    EXPECT_FALSE(FSession.TableExists(u"LATER"_s));
    EXPECT_EQ(FSession.GetDBDate(), made);
    // Identities count on, indexes hold, and rewritten statements find their functions.
    FSession.Execute(u"insert into T(A) values('丙')"_s);
    EXPECT_EQ(Rows(u"select ID from T where len(A)=1 and convert(varchar(10), ID)='2'"_s), u"2"_s);
    EXPECT_THROW(FSession.Execute(u"insert into T(A) values('丙')"_s), Exception);
    EXPECT_FALSE(HasRestoreLeftovers(*GetParam().Server()));
    EXPECT_EQ(QDir(FCurrent.path()).entryList({u"*bak*"_s}, QDir::Files), QStringList{u"备份 1.bak"_s});
}

TEST_P(ServerBackup, a_file_that_is_damaged_leaves_the_database)
{
    const QString before = Content();
    for (int i = 0; i < 3000; ++i)
        FSession.Execute(u"insert into T(A) values('%1')"_s.arg(i));
    const QString full = Content();
    const QString file = Path(u"a.bak"_s);
    ASSERT_EQ(Backup(file), u"true disconnected"_s);
    QFile damaged(file);
    ASSERT_TRUE(damaged.open(QIODevice::ReadWrite));
    const QByteArray whole = damaged.readAll();
    // Its table of contents comes first, its rows last.
    const auto spoilt = [&](qsizetype place) {
        return QByteArray(whole).replace(place, 600, QByteArray(600, '\x55'));
    };
    const qsizetype inContents = whole.size() / 2, inRows = whole.size() - 2000;
    for (const QByteArray &bytes : {whole.left(inContents), spoilt(inContents), whole.left(inRows),
                                    spoilt(inRows), QByteArray("no archive"), QByteArray()}) {
        damaged.resize(0);
        damaged.seek(0);
        damaged.write(bytes);
        damaged.flush();
        EXPECT_EQ(Restore(file), u"EAbort [数据库恢复失败] disconnected"_s);
        EXPECT_EQ(FSession.DBName(), FName);
        Reconnect();
        EXPECT_EQ(Content(), full);
        EXPECT_FALSE(HasRestoreLeftovers(*GetParam().Server()));
    }
    EXPECT_EQ(Restore(Path(u"missing"_s)), u"EAbort [数据库恢复失败] disconnected"_s);
    Reconnect();
    EXPECT_EQ(Backup(Path(u"no/such/folder"_s)), u"EAbort [数据库备份失败] disconnected"_s);
}

TEST_P(ServerBackup, a_database_in_use_is_not_replaced)
{
    const QString file = Path(u"a.bak"_s);
    ASSERT_EQ(Backup(file), u"true disconnected"_s);
    TDBSession other;
    Aim(other, FDatabase);
    other.SetAppName(FName);
    other.SetConnected(true);
    EXPECT_EQ(Restore(file, 1), u"EAbort [数据库正在使用中，请确保当前没有用户在使用] connected"_s);
    // Whoever goes by another name is found by the server.
    other.SetConnected(false);
    other.SetAppName(u"other"_s);
    other.SetConnected(true);
    EXPECT_EQ(Restore(file), u"EAbort [数据库恢复失败] disconnected"_s);
    other.SetConnected(false);
    EXPECT_EQ(Restore(file), u"true disconnected"_s);
    Reconnect();
    EXPECT_FALSE(HasRestoreLeftovers(*GetParam().Server()));
}
