// SPDX-License-Identifier: MIT
#include "SessionFixture.h"

#include "support/ScriptedDriver.h"

using namespace Korvane;
using namespace Korvane::Testing;
using namespace Qt::StringLiterals;

namespace {

const QString InUse = u"数据库正在使用中，请确保当前没有用户在使用"_s;

class SessionBackup : public SessionFixture
{
protected:
    SessionBackup() { RunScript({u"create table T(A int)"_s, u"insert into T values(1)"_s}); }

    void RunScript(const QStringList &statements)
    {
        for (const QString &statement : statements)
            FSession.Execute(statement);
    }
    /// The name of the tested database, as DBName takes it.
    QString Name() const { return IsAccess() ? FDatabase.FileName() : u"orders"_s; }
    void Reconnect()
    {
        FSession.SetDBName(Name());
        FSession.SetConnected(true);
    }
    /// What the database holds, seen by another session.
    QString Content()
    {
        TDBSession other;
        Aim(other, FDatabase);
        other.SetDBPassword(FSession.DBPassword());
        other.SetConnected(true);
        return TextOf(other.Open(u"select A from T order by A"_s)).section(u'\n', 1).trimmed();
    }
    /// And the database's name if it is another one now.
    QString OutcomeAt(const std::function<bool()> &call)
    {
        const QString outcome = Outcome(call);
        return outcome + (FSession.DBName() == Name() ? QString() : u' ' + FSession.DBName());
    }
    QString Backup(const QString &file)
    {
        return OutcomeAt([&] { return FSession.BackupDB(file); });
    }
    QString Restore(const QString &file)
    {
        return OutcomeAt([&] { return FSession.RestoreDB(file); });
    }
    QStringList FilesOfDatabase() const { return QDir(FDatabase.Folder()).entryList(QDir::Files); }

    const QString FRestored = IsAccess() ? u"true disconnected"_s : u"true disconnected master"_s;
};
INSTANTIATE_TEST_SUITE_P(Dialects, SessionBackup, testing::ValuesIn(EmbeddedPlaces()), PlaceName);

/// Whether a call ends silently.
bool IsAborted(const std::function<void()> &call)
{
    try {
        call();
        return false;
    } catch (const EAbort &) {
        return true;
    }
}

/// Damages one byte of a page near the end of a file.
void SpoilPage(const QString &fileName)
{
    QFile file(fileName);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    ASSERT_TRUE(file.seek(file.size() - 4096));
    file.write(QByteArray(64, '\x7f'));
}

void WriteFile(const QString &fileName, const QByteArray &bytes)
{
    QFile file(fileName);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

} // namespace

TEST_P(SessionBackup, a_restore_brings_back_what_was_backed_up)
{
    const QString file = Path(u"备份.bak"_s);
    EXPECT_EQ(Backup(file), u"true disconnected"_s);
    EXPECT_EQ(PlainDatabase(file).Run(u"pragma integrity_check; select A from T"_s), u"ok / 1"_s);
    Reconnect();
    RunScript({u"insert into T values(2)"_s, u"create table LATER(A int)"_s});
    // The second backup takes the first one's place.
    EXPECT_EQ(Backup(file), u"true disconnected"_s);
    Reconnect();
    RunScript({u"delete from T"_s, u"drop table LATER"_s});
    EXPECT_EQ(Restore(file), FRestored);
    EXPECT_EQ(Content(), u"1\n2"_s);
    Reconnect();
    EXPECT_TRUE(FSession.TableExists(u"LATER"_s));
    // Once more from the same backup, with a log that is not empty.
    RunScript({u"insert into T values(3)"_s});
    EXPECT_EQ(Restore(file), FRestored);
    EXPECT_EQ(Content(), u"1\n2"_s);
    EXPECT_EQ(QDir(FCurrent.path()).entryList(QDir::Files), QStringList{u"备份.bak"_s});
    EXPECT_EQ(FilesOfDatabase(),
              IsAccess() ? QStringList{u"orders.db"_s} : (QStringList{u"master.db"_s, u"orders.db"_s}));
}

TEST_P(SessionBackup, backup_leaves_other_users_work_alone)
{
    TDBSession other;
    Aim(other, FDatabase);
    other.SetConnected(true);
    other.BeginTrans();
    other.Execute(u"insert into T values(2)"_s);
    const QString file = Path(u"a.bak"_s);
    EXPECT_EQ(Backup(file), u"true disconnected"_s);
    EXPECT_EQ(PlainDatabase(file).Run(u"select A from T"_s), u"1"_s);
    other.CommitTrans();
    EXPECT_EQ(Content(), u"1\n2"_s);
}

TEST_P(SessionBackup, a_failed_backup_tells_its_reason_in_the_dialects_way)
{
    const QString folder = Path({});
    const QString none = Path(u"none/a.bak"_s);
    const QString bad = u"（No such file or directory）"_s;
    if (IsAccess()) {
        EXPECT_EQ(Backup(none), u"EAbort [数据库备份失败\r"_s + Name() + u'\r' + none + u"] connected"_s);
        EXPECT_EQ(Backup(Name()), u"EAbort [数据库备份失败\r"_s + Name() + u'\r' + Name() + u"] connected"_s);
    } else {
        EXPECT_EQ(Backup(none), u"EAbort [数据库备份失败\r不能写入文件："_s + none + u".part"_s + bad +
                                    u"] disconnected"_s);
        FSession.SetConnected(true);
        EXPECT_EQ(Backup(FDatabase.FileName()),
                  u"EAbort [数据库备份失败\r备份文件不能放在服务器自己的文件处："_s + FDatabase.FileName() +
                      u"] disconnected"_s);
        FSession.SetDBServer(u"folder:"_s + folder + u"none"_s);
        EXPECT_EQ(Backup(none), u"EAbort [数据库备份失败\r找不到数据库服务器的文件夹："_s + folder +
                                    u"none] disconnected"_s);
    }
    EXPECT_EQ(Content(), u"1"_s);
}

TEST_P(SessionBackup, a_bad_backup_is_found_before_the_database_is_touched)
{
    const QString good = Path(u"good.bak"_s);
    RunScript({u"create table F(A varchar(250))"_s, u"create index I on F(A)"_s});
    for (int i = 0; i < 100; ++i)
        FSession.Execute(u"insert into F values('%1%2')"_s.arg(i).arg(QString(200, u'x')));
    ASSERT_EQ(Backup(good), u"true disconnected"_s);
    for (const QString &name : {u"spoilt"_s, u"cut"_s})
        ASSERT_TRUE(QFile::copy(good, Path(name)));
    SpoilPage(Path(u"spoilt"_s));
    ASSERT_TRUE(QFile::resize(Path(u"cut"_s), 8192));
    WriteFile(Path(u"text"_s), "no database at all");
    WriteFile(Path(u"empty"_s), {});
    const struct
    {
        QString Name;
        QString Reason; ///< as a server tells it
    } rows[] = {
        {u"none"_s, u"找不到数据库文件：%1"_s},
        {u"empty"_s, u"不是有效的数据库文件：%1"_s},
        {u"text"_s, u"不是有效的数据库文件：%1（file is not a database）"_s},
        {u"cut"_s, u"数据库文件已损坏：%1（database disk image is malformed）"_s},
        {u"spoilt"_s, u"数据库文件已损坏：%1"_s},
    };
    for (const auto &row : rows) {
        const QString file = Path(row.Name);
        Reconnect();
        const QString outcome = Restore(file);
        const QString server = u"EAbort [数据库恢复失败\r"_s + row.Reason.arg(file);
        const QString expected = IsAccess() ? u"EAbort [数据库恢复失败] connected"_s : server;
        EXPECT_TRUE(outcome.startsWith(expected)) << outcome.toStdString();
        EXPECT_EQ(FSession.Connected(), IsAccess());
        FSession.SetConnected(false);
        EXPECT_EQ(Content(), u"1"_s) << row.Name.toStdString();
        EXPECT_EQ(FilesOfDatabase().filter(u"rest"_s) + FilesOfDatabase().filter(u"~"_s), QStringList());
    }
}

TEST_P(SessionBackup, users_who_are_there_are_not_pulled_away)
{
    const QString file = Path(u"a.bak"_s);
    ASSERT_EQ(Backup(file), u"true disconnected"_s);
    Reconnect();
    RunScript({u"insert into T values(2)"_s});
    TDBSession other;
    Aim(other, FDatabase);
    other.SetAppName(u"收银台"_s);
    other.SetConnected(true);
    if (!IsAccess()) {
        // Counted are those of the session's own AppName; who else is there, the server sees itself.
        EXPECT_EQ(Restore(file),
                  u"EAbort [数据库恢复失败\r数据库正在使用中，不能恢复：orders] disconnected"_s);
        FSession.SetAppName(u"收银台"_s);
        FSession.SetConnected(true);
    }
    EXPECT_EQ(Restore(file), u"EAbort ["_s + InUse + u"] connected"_s);
    other.SetConnected(false);
    EXPECT_EQ(Rows(u"select A from T"_s), u"1 / 2"_s);
    // The session itself counts when it is connected under AppName, in the MSSQL dialect.
    EXPECT_EQ(IsAccess() ? u"EAbort ["_s + InUse + u"] connected"_s : Restore(file),
              u"EAbort ["_s + InUse + u"] connected"_s);
    FSession.SetAppName(u"后台"_s);
    EXPECT_EQ(Restore(file), FRestored);
    EXPECT_EQ(Content(), u"1"_s);
}

TEST_P(SessionBackup, an_unconnected_session_can_back_up_and_not_restore)
{
    const QString file = Path(u"a.bak"_s);
    FSession.SetConnected(false);
    EXPECT_EQ(Backup(file), u"true disconnected"_s);
    EXPECT_EQ(RaisedBy([&] { FSession.RestoreDB(file); }), u"EDatabaseError: 数据库没有连接"_s);
    EXPECT_EQ(Content(), u"1"_s);
}

TEST(SessionBackupPasswords, ride_along)
{
    for (const TSqlDialect dialect : BothDialects) {
        const TestDatabase database(dialect, u"p"_s);
        const QString file = database.Folder() + u"/a.bak"_s;
        TDBSession session;
        Aim(session, database);
        session.SetDBPassword(u"p"_s);
        session.SetConnected(true);
        session.Execute(u"create table T(A int)"_s);
        EXPECT_TRUE(session.BackupDB(file));
        session.SetConnected(true);
        session.Execute(u"drop table T"_s);
        EXPECT_TRUE(session.RestoreDB(file));
        Aim(session, database);
        session.SetDBPassword({});
        EXPECT_EQ(RaisedBy([&] { session.SetConnected(true); }),
                  u"Exception: 数据库设有密码，请输入密码后再连接："_s + database.FileName());
        session.SetDBPassword(u"p"_s);
        session.SetConnected(true);
        EXPECT_TRUE(session.TableExists(u"T"_s));
    }
}

// The folder in which the copy waits is the database's, and not the backup's.
TEST(SessionRestoreAccess, passes_through_the_folder_of_the_database)
{
    const TestDatabase database(TSqlDialect::Access);
    const QTemporaryDir backups;
    const QString file = backups.filePath(u"a.bak"_s);
    TDBSession session;
    Aim(session, database);
    EXPECT_TRUE(session.BackupAccess(file));
    EXPECT_FALSE(session.Connected());
    session.SetConnected(true);
    EXPECT_TRUE(session.BackupAccess(file));
    EXPECT_TRUE(session.Connected()) << "the database stays connected during the copy";
    ASSERT_TRUE(QDir(backups.path()).mkdir(u"~template.mdb"_s));
    EXPECT_TRUE(session.RestoreAccess(file));
    EXPECT_FALSE(session.Connected());
    session.SetConnected(true);
    ASSERT_TRUE(QDir(database.Folder()).mkdir(u"~template.mdb"_s));
    const PromptScript script;
    EXPECT_TRUE(IsAborted([&] { session.RestoreAccess(file); }));
    EXPECT_EQ(script->Boxes.value(0).Text, u"数据库恢复失败"_s);
    EXPECT_TRUE(session.Connected());
}

// Who reads only is on no list, but the engine knows of him: the exchange cannot be done then.
TEST(SessionRestoreAccess, does_not_look_at_whether_the_exchange_could_be_done)
{
    const TestDatabase database(TSqlDialect::Access);
    const QString file = database.Folder() + u"/a.bak"_s;
    TDBSession session;
    Aim(session, database);
    session.SetConnected(true);
    session.Execute(u"create table T(A int)"_s);
    EXPECT_TRUE(session.BackupAccess(file));
    session.Execute(u"insert into T values(1)"_s);
    TADOConnection reader;
    reader.SetConnectionString(database.ConnectionString());
    reader.SetMode(cmRead);
    reader.SetConnected(true);
    EXPECT_EQ(Testing::Rows(reader, u"select A from T"_s), u"1"_s);
    EXPECT_TRUE(session.RestoreDB(file));
    EXPECT_FALSE(session.Connected());
    EXPECT_EQ(Testing::Rows(reader, u"select A from T"_s), u"1"_s);
    EXPECT_FALSE(QFile::exists(database.Folder() + u"/~template.mdb"_s));
    reader.SetConnected(false);
    session.SetConnected(true);
    EXPECT_FALSE(session.IsEmpty(u"select A from T"_s));
}

namespace {

/// A session on a server that answers as it is told, with what it is told.
class ScriptedBackup : public testing::Test
{
protected:
    ScriptedBackup()
    {
        FServer.Answer = PacketOf({{u"A"_s, ftInteger}}, {{0}});
        FSession.SetDBType(dbtMSSQL);
        FSession.SetDBServer(u"scripted"_s);
        FSession.SetDBName(u"orders"_s);
        FSession.SetAppName(u"it's"_s);
    }
    void FailAt(const QString &word, const QList<TSqlError> &errors)
    {
        FServer.OnStatement = [=](const QString &statement) {
            if (statement.startsWith(word))
                throw ESqlError(errors);
        };
    }
    QString StateOfSession() const
    {
        return FSession.DBName() + (FSession.Connected() ? u" connected"_s : u" disconnected"_s);
    }

    const QString FCount =
        u"select count(*) as UserCount from master..sysprocesses where program_name='it''s'"_s;
    ScriptedServer FServer{u"SQLOLEDB.1"_s};
    TDBSession FSession;
    PromptScript FScript;
};

} // namespace

TEST_F(ScriptedBackup, the_server_gets_the_names_as_they_are)
{
    EXPECT_TRUE(FSession.BackupDB(u"D:\\it's.bak"_s));
    FSession.SetConnected(true);
    EXPECT_TRUE(FSession.RestoreDB(u"D:\\it's.bak"_s));
    EXPECT_EQ(FServer.Told,
              (QStringList{u"connect"_s, u"select @@spid"_s,
                           u"backup database orders to disk='D:\\it's.bak'"_s, u"disconnect"_s, u"connect"_s,
                           u"select @@spid"_s, FCount, u"disconnect"_s, u"connect"_s, u"select @@spid"_s,
                           u"restore database master from disk='D:\\it's.bak'"_s, u"disconnect"_s}));
    EXPECT_EQ(StateOfSession(), u"master disconnected"_s);
}

TEST_F(ScriptedBackup, a_backup_reconnects_a_connected_session)
{
    FSession.SetConnected(true);
    EXPECT_TRUE(FSession.BackupMSSQL(u"f"_s));
    EXPECT_EQ(FServer.Told, (QStringList{u"connect"_s, u"select @@spid"_s, u"disconnect"_s, u"connect"_s,
                                         u"select @@spid"_s, u"backup database orders to disk='f'"_s}));
    EXPECT_EQ(StateOfSession(), u"orders connected"_s);
}

TEST_F(ScriptedBackup, failures_tell_the_first_error_and_put_the_name_back)
{
    const QList<TSqlError> errors = {{u"the first"_s, 0, {}}, {u"the second"_s, 0, {}}};
    FSession.SetConnected(true);
    FailAt(u"backup"_s, errors);
    EXPECT_TRUE(IsAborted([&] { FSession.BackupDB(u"f"_s); }));
    EXPECT_EQ(StateOfSession(), u"orders disconnected"_s);
    FSession.SetConnected(true);
    FailAt(u"restore"_s, errors);
    EXPECT_TRUE(IsAborted([&] { FSession.RestoreDB(u"f"_s); }));
    EXPECT_EQ(StateOfSession(), u"orders disconnected"_s);
    ASSERT_EQ(FScript->Boxes.size(), 2);
    EXPECT_EQ(FScript->Boxes[0].Text, u"数据库备份失败\rthe first"_s);
    EXPECT_EQ(FScript->Boxes[1].Text, u"数据库恢复失败\rthe first"_s);
}

// The list of errors is read as it is, empty or not.
TEST_F(ScriptedBackup, failures_without_an_entry_raise_the_lists_own)
{
    FSession.SetConnected(true);
    FailAt(u"restore"_s, {});
    EXPECT_THROW(FSession.RestoreDB(u"f"_s), EListError);
    EXPECT_EQ(StateOfSession(), u"orders disconnected"_s);
    FailAt(u"backup"_s, {});
    EXPECT_THROW(FSession.BackupDB(u"f"_s), EListError);
    EXPECT_TRUE(FScript->Boxes.isEmpty());
}
