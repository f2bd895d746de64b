// SPDX-License-Identifier: MIT
#include "SessionFixture.h"

#include "platform/core/Cursor.h"
#include "support/ScriptedDriver.h"

using namespace Korvane;
using namespace Korvane::Testing;
using namespace Qt::StringLiterals;

namespace {

class SessionExecute : public SessionFixture
{
};
INSTANTIATE_TEST_SUITE_P(Places, SessionExecute, testing::ValuesIn(AllPlaces()), PlaceName);

/// A session on a scripted server, which sees what is sent and fails as told.
class ScriptedSession : public testing::Test
{
protected:
    ScriptedSession()
    {
        QDir::setCurrent(FCurrent.path());
        FServer.Answer = PacketOf({{u"A"_s, ftInteger}}, {{51}});
        FSession.SetDBType(dbtMSSQL);
        FSession.SetDBServer(u"scripted"_s);
        FSession.SetConnected(true);
        FServer.Told.clear();
    }
    ~ScriptedSession() override { QDir::setCurrent(FBefore); }

    void FailWith(const QString &statement, const QList<TSqlError> &errors)
    {
        FServer.OnStatement = [=](const QString &sent) {
            if (sent == statement)
                throw ESqlError(errors);
        };
    }
    QByteArray Logged() const
    {
        QFile file(FCurrent.filePath(u"Error.sql"_s));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    QString FBefore = QDir::currentPath();
    QTemporaryDir FCurrent;
    ScriptedServer FServer{u"SQLOLEDB.1"_s};
    TDBSession FSession;
};

} // namespace

TEST_F(ScriptedSession, a_script_is_cut_at_lines_that_are_go)
{
    static const struct
    {
        QStringList Script;
        QStringList Sent;
    } rows[] = {
        {{u"a"_s, u""_s, u"  go\t"_s, u"GO"_s, u"b"_s}, {u"a"_s, u"b"_s}},
        {{u"a"_s}, {u"a"_s}},
        {{}, {}},
        {{u""_s, u"  "_s, u"go"_s, u"Go"_s, u"gO"_s}, {}},
        {{u"  a  "_s, u""_s, u"\tb"_s, u" "_s}, {u"a\r\nb"_s}},
        {{u"a"_s, u"go"_s, u"b"_s, u"go"_s}, {u"a"_s, u"b"_s}},
        {{u"a"_s, u"go 2"_s, u"go;"_s, u"gogo"_s, u"-- go"_s}, {u"a\r\ngo 2\r\ngo;\r\ngogo\r\n-- go"_s}},
        {{u"go"_s, u"a"_s, u"go"_s, u""_s}, {u"a"_s}},
        {{u"a"_s, u""_s}, {u"a"_s}},
        {{u"insert into T values('x"_s, u"  y')"_s}, {u"insert into T values('x\r\ny')"_s}},
    };
    for (const auto &row : rows) {
        FServer.Told.clear();
        EXPECT_TRUE(FSession.Execute(row.Script));
        EXPECT_EQ(FServer.Told, row.Sent) << row.Script.join(u'|').toStdString();
    }
}

TEST_F(ScriptedSession, ExecuteSQL_sends_line_by_line)
{
    FSession.SetSQL({u"  a "_s, u""_s, u"GO"_s, u"\t"_s, u"b"_s});
    EXPECT_TRUE(FSession.ExecuteSQL());
    EXPECT_EQ(FServer.Told, (QStringList{u"a"_s, u"GO"_s, u"b"_s}));
    EXPECT_EQ(FSession.GetSQL().size(), 5) << "the property stays as it was set";
    FSession.SetSQL({});
    EXPECT_TRUE(FSession.ExecuteSQL());
    EXPECT_EQ(FServer.Told.size(), 3);
}

TEST_F(ScriptedSession, a_failure_is_the_description_and_the_statement)
{
    const QList<TSqlError> errors = {{u"描述"_s, 0, {}}, {u"more"_s, 0, {}}};
    const TBlobStreams none;
    const struct
    {
        std::function<void()> Call;
        QString Statement; ///< that fails
        QString Message;
        bool IsLogged;
    } rows[] = {
        {[&] { FSession.Execute(u"x"_s); }, u"x"_s, u"描述\rx"_s, true},
        {[&] { FSession.Execute(u"x"_s, nullptr); }, u"x"_s, u"描述\rx"_s, true},
        {[&] { FSession.Execute(u"x"_s, &none); }, u"x"_s, u"描述\rx"_s, true},
        {[&] { FSession.Open(u"x"_s); }, u"x"_s, u"描述\rx"_s, true},
        {[&] { FSession.Open(u"x"_s, 5); }, u"x"_s, u"描述\rx"_s, true},
        {[&] { FSession.IsEmpty(u"x"_s); }, u"x"_s, u"描述\rx"_s, true},
        {[&] { FSession.TableExists(u"T"_s); }, u"select 1 from sysobjects where xtype='U' and name='T'"_s,
         u"描述\rselect 1 from sysobjects where xtype='U' and name='T'"_s, true},
        {[&] {
             FSession.Execute(QStringList{u"a"_s, u"go"_s, u" x"_s, u""_s, u"y "_s, u"go"_s, u"b"_s});
         },
         u"x\r\ny"_s, u"描述\rx\r\ny\r\n"_s, false},
        {[&] {
             FSession.SetSQL({u"a"_s, u" x"_s, u"b"_s});
             FSession.ExecuteSQL();
         },
         u"x"_s, u"描述\rx\r\n"_s, false},
        {[&] { FSession.GetVersion(); }, u"select max(VerNo) from Version"_s,
         u"描述\rselect max(VerNo) from Version\r\n"_s, false},
        {[&] { FSession.SetVersion(7); }, u"update Version set VerNo=7"_s,
         u"描述\rupdate Version set VerNo=7\r\n"_s, false},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.Message.toStdString());
        FailWith(row.Statement, errors);
        FServer.Told.clear();
        QFile::remove(FCurrent.filePath(u"Error.sql"_s));
        SetScreenCursor(crHourGlass);
        EXPECT_EQ(RaisedBy(row.Call), u"Exception: "_s + row.Message);
        EXPECT_EQ(ScreenCursor(), crDefault);
        EXPECT_EQ(FServer.Told.value(FServer.Told.size() - 1), row.Statement) << "it stops there";
        const QString line = row.Message + u"\r\n"_s;
        EXPECT_EQ(Logged(), row.IsLogged ? line.toUtf8() : QByteArray());
    }
}

TEST_F(ScriptedSession, rows_that_come_later_fail_as_a_statement_does)
{
    struct TBrokenFeed : TRowFeed
    {
        bool Read(QDeadlineTimer) override { throw ESqlError(u"描述"_s); }
        const TDataPacket &Rows() const override { return FNothing; }
        TDataPacket FNothing;
    };
    FServer.Feed = std::make_shared<TBrokenFeed>();
    auto session = std::make_unique<TDBSession>();
    session->SetDBType(dbtMSSQL);
    session->SetDBServer(u"scripted"_s);
    session->SetConnected(true);
    const TFirstRows rows = session->Open(u"x"_s, 5);
    session.reset(); // which they may outlive
    SetScreenCursor(crHourGlass);
    EXPECT_EQ(RaisedBy([&] { rows.Feed->Read(QDeadlineTimer::Forever); }), u"Exception: 描述\rx"_s);
    EXPECT_EQ(ScreenCursor(), crDefault);
    EXPECT_EQ(Logged(), u"描述\rx\r\n"_s.toUtf8());
}

TEST_F(ScriptedSession, without_an_error_entry_the_script_is_to_be_checked)
{
    FailWith(u"x"_s, {});
    EXPECT_EQ(RaisedBy([&] { FSession.Execute(QStringList{u"x"_s}); }),
              u"Exception: 脚本运行出错，请检查脚本是否正确\rx\r\n"_s);
    FSession.SetSQL({u"x"_s});
    EXPECT_EQ(RaisedBy([&] { FSession.ExecuteSQL(); }),
              u"Exception: 脚本运行出错，请检查脚本是否正确\rx\r\n"_s);
    FailWith(u"update Version set VerNo=1"_s, {});
    EXPECT_EQ(RaisedBy([&] { FSession.SetVersion(1); }),
              u"Exception: 脚本运行出错，请检查脚本是否正确\rupdate Version set VerNo=1\r\n"_s);
    // What is logged reads the first entry without looking whether there is one.
    FailWith(u"x"_s, {});
    for (const std::function<void()> &call : {std::function<void()>([&] { FSession.Execute(u"x"_s); }),
                                              std::function<void()>([&] { FSession.Open(u"x"_s); }),
                                              std::function<void()>([&] { FSession.IsEmpty(u"x"_s); })})
        EXPECT_THROW(call(), EListError);
    EXPECT_EQ(Logged(), QByteArray());
}

TEST_F(ScriptedSession, the_clock_and_the_counts_pass_failures_on)
{
    FServer.OnStatement = [](const QString &) { throw ESqlError(u"no"_s); };
    for (const std::function<void()> &call : {std::function<void()>([&] { FSession.GetDateTime(); }),
                                              std::function<void()>([&] { FSession.GetOnlineUsers(u"a"_s); }),
                                              std::function<void()>([&] { FSession.GetDBDate(); })})
        EXPECT_EQ(RaisedBy(call), u"EDatabaseError: no"_s);
    EXPECT_EQ(Logged(), QByteArray());
}

TEST_F(ScriptedSession, statements_are_sent_as_told)
{
    FServer.Answer = PacketOf({{u"A"_s, ftString, 30}}, {{u"2024-01-31 08:05:09.070"_s}});
    FServer.Affected = 4;
    EXPECT_EQ(FSession.Execute(u" update T set A=1 "_s), 4);
    FSession.SetDBName(u"o'k"_s);
    FSession.GetDateTime();
    FSession.GetDBDate();
    FServer.Answer = PacketOf({{u"A"_s, ftInteger}}, {{3}});
    EXPECT_EQ(FSession.GetOnlineUsers(u"it's"_s), 3);
    EXPECT_EQ(FSession.GetVersion(), 3);
    EXPECT_TRUE(FSession.TableExistsMSSQL(u"T"_s));
    EXPECT_EQ(
        FServer.Told,
        (QStringList{u" update T set A=1 "_s, u"select getdate()"_s,
                     u"select crdate as UseDate from master..sysdatabases where name = 'o''k'"_s,
                     u"select count(*) as UserCount from master..sysprocesses where program_name='it''s'"_s,
                     u"select max(VerNo) from Version"_s,
                     u"select 1 from sysobjects where xtype='U' and name='T'"_s}));
}

TEST_F(ScriptedSession, each_clock_text_asks_once)
{
    FServer.Answer = PacketOf({{u"A"_s, ftString, 30}}, {{u"2024-01-31 08:05:09.070"_s}});
    EXPECT_EQ(FSession.GetDateTimeStr(), u"20240131080509"_s);
    EXPECT_EQ(FSession.GetDateStr(), u"20240131"_s);
    EXPECT_EQ(FSession.GetTimeStr(), u"080509"_s);
    EXPECT_EQ(FServer.Told, (QStringList(3, u"select getdate()"_s)));
}

TEST_F(ScriptedSession, the_clock_is_understood_in_the_form_of_any_server)
{
    const TDateTime moment(QDate(2024, 1, 31), QTime(8, 5, 9));
    const struct
    {
        TPacketField Field;
        QList<QVariantList> Rows;
        TDateTime Read;
    } rows[] = {
        {{u"A"_s, ftString, 30}, {{u"2024-01-31 08:05:09.070"_s}}, moment + 0.07 / 86400},
        {{u"A"_s, ftString, 30}, {{u"2024-01-31 08:05:09"_s}}, moment},
        {{u"A"_s, ftString, 30}, {{u" 2024-01-31T08:05:09"_s}}, moment},
        {{u"A"_s, ftDateTime}, {{moment.Days()}}, moment},
        {{u"A"_s, ftString, 30}, {{QVariant()}}, {}},
        {{u"A"_s, ftString, 30}, {}, {}},
    };
    for (const auto &row : rows) {
        FServer.Answer = PacketOf({row.Field}, row.Rows);
        EXPECT_EQ(FSession.GetDateTime().ToQDateTime(), row.Read.ToQDateTime())
            << TextOf(FServer.Answer).toStdString();
    }
    for (const QString &text : {u"2024-02-30 08:05:09.070"_s, u"2024-01-31 08:65:09.070"_s, u"x"_s}) {
        FServer.Answer = PacketOf({{u"A"_s, ftString, 30}}, {{text}});
        EXPECT_THROW(FSession.GetDateTime(), Exception) << text.toStdString();
    }
}

TEST_P(SessionExecute, tells_the_rows_affected)
{
    FSession.Execute(u"create table T(A int)"_s);
    EXPECT_EQ(FSession.Execute(u"insert into T values(1)"_s), 1);
    EXPECT_EQ(FSession.Execute(u"insert into T select A+1 from T"_s), 1);
    EXPECT_EQ(FSession.Execute(u"update T set A=0"_s), 2);
    EXPECT_EQ(FSession.Execute(u"delete from T where A=9"_s), 0);
    EXPECT_TRUE(FSession.Execute(u"delete from T where A=9"_s, nullptr));
}

TEST_P(SessionExecute, streams_go_to_the_parameters_in_their_order_whatever_their_names)
{
    FSession.Execute(u"create table T(NO int, A image, B image)"_s);
    TBlobStreams streams;
    streams.Add(u"B"_s, QByteArray("\0first", 6));
    streams.Add(u"A"_s, "second");
    EXPECT_TRUE(FSession.Execute(u"insert into T(NO, A, B) values(1, :A, :B)"_s, &streams));
    EXPECT_EQ(Rows(u"select * from T"_s), u"1|0x006669727374|0x7365636f6e64"_s);
    // A statement without parameters ignores the list, a list that is short leaves NULL.
    EXPECT_TRUE(FSession.Execute(u"update T set NO=2"_s, &streams));
    TBlobStreams one;
    one.Add({}, "x");
    FSession.Execute(u"update T set A=:A, B=:B"_s, &one);
    EXPECT_EQ(Rows(u"select * from T"_s), u"2|0x78|~"_s);
    // Without a list no parameter is touched.
    FSession.Execute(u"update T set A=:A"_s, nullptr);
    EXPECT_EQ(Rows(u"select A from T"_s), u"~"_s);
}

TEST_P(SessionExecute, a_failing_script_keeps_the_batches_before)
{
    FSession.Execute(QStringList{u"create table T(A int not null)"_s});
    const QString message = RaisedBy([&] {
        FSession.Execute(QStringList{u"insert into T values(1)"_s, u"GO"_s, u"insert into T values(2)"_s,
                                     u"insert into T values(null)"_s, u"GO"_s, u"insert into T values(3)"_s});
    });
    EXPECT_TRUE(message.startsWith(u"Exception: 不可为空的字段没有值（"_s)) << message.toStdString();
    EXPECT_EQ(message.section(u'\r', 1), u"insert into T values(2)\r\ninsert into T values(null)\r\n"_s);
    EXPECT_EQ(Rows(u"select A from T"_s), u"1"_s);
    EXPECT_TRUE(Logged().isEmpty());

    FSession.SetSQL(
        {u"insert into T values(4)"_s, u"insert into NONE values(1)"_s, u"insert into T values(5)"_s});
    EXPECT_EQ(RaisedBy([&] { FSession.ExecuteSQL(); }),
              u"Exception: "_s + NoTable(u"NONE"_s) + u"\rinsert into NONE values(1)\r\n"_s);
    EXPECT_EQ(Rows(u"select A from T order by A"_s), u"1 / 4"_s);
    EXPECT_TRUE(Logged().isEmpty());

    // In the caller's transaction all of it goes back.
    FSession.BeginTrans();
    EXPECT_THROW(FSession.Execute(QStringList{u"delete from T"_s, u"go"_s, u"delete from NONE"_s}),
                 Exception);
    FSession.RollbackTrans();
    EXPECT_EQ(Rows(u"select A from T order by A"_s), u"1 / 4"_s);
}

TEST_P(SessionExecute, a_line_that_says_go_is_sent_by_ExecuteSQL)
{
    FSession.SetSQL({u"go"_s});
    const QString message = RaisedBy([&] { FSession.ExecuteSQL(); });
    EXPECT_TRUE(message.endsWith(u"\rgo\r\n"_s)) << message.toStdString();
    EXPECT_EQ(FSent.last(), u"go"_s);
}

TEST_P(SessionExecute, failed_statements_are_logged_one_behind_the_other)
{
    EXPECT_THROW(FSession.Execute(u"delete from 无"_s), Exception);
    EXPECT_THROW(FSession.Open(u"select * from NONE"_s), Exception);
    EXPECT_THROW(FSession.IsEmpty(u"select * from NONE2"_s), Exception);
    EXPECT_EQ(Logged(),
              (QStringList{NoTable(u"无"_s), u"delete from 无"_s, NoTable(u"NONE"_s), u"select * from NONE"_s,
                           NoTable(u"NONE2"_s), u"select * from NONE2"_s}));
}

TEST_P(SessionExecute, a_failure_that_is_not_the_databases_does_not_tell_an_old_one)
{
    FSession.Execute(u"create table T(A image)"_s);
    TBlobStreams two;
    two.Add({}, "x");
    two.Add({}, "y");
    EXPECT_THROW(FSession.Execute(u"delete from NONE"_s), Exception);
    const QString message = RaisedBy([&] { FSession.Execute(u"insert into T values(:A)"_s, &two); });
    EXPECT_FALSE(message.contains(u"NONE"_s)) << message.toStdString();
    EXPECT_EQ(Rows(u"select count(*) from T"_s), u"0"_s);
}

TEST_P(SessionExecute, a_packet_outlives_the_next_call)
{
    FSession.Execute(u"create table T(CODE varchar(10), QTY int)"_s);
    FSession.Execute(u"insert into T values('中', 1)"_s);
    const TDataPacket packet = FSession.Open(u"select * from T"_s);
    FSession.Execute(u"delete from T"_s);
    FSession.Open(u"select * from T"_s);
    FSession.GetDateTime();
    EXPECT_EQ(TextOf(packet), u"CODE:string(10)|QTY:integer\n中|1\n"_s);
}

TEST_P(SessionExecute, without_a_connection_all_is_refused)
{
    FSession.DisConnect();
    EXPECT_EQ(RaisedBy([&] { FSession.Execute(u"x"_s); }), u"Exception: 数据库没有连接\rx"_s);
    EXPECT_EQ(RaisedBy([&] { FSession.Open(u"x"_s); }), u"Exception: 数据库没有连接\rx"_s);
    EXPECT_EQ(RaisedBy([&] { FSession.GetVersion(); }),
              u"Exception: 数据库没有连接\rselect max(VerNo) from Version\r\n"_s);
    EXPECT_EQ(RaisedBy([&] { FSession.GetDateTime(); }), u"EDatabaseError: 数据库没有连接"_s);
    EXPECT_TRUE(FSession.Execute(QStringList())) << "nothing is sent";
}
