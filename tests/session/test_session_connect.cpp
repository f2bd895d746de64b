// SPDX-License-Identifier: MIT
#include "SessionFixture.h"

#include "platform/core/Cursor.h"
#include "support/ScriptedDriver.h"

#include <QMetaProperty>

using namespace Korvane;
using namespace Korvane::Testing;
using namespace Qt::StringLiterals;

namespace {

TDataPacket OneText(const QString &text) { return PacketOf({{u"A"_s, ftString, 30}}, {{text}}); }

} // namespace

TEST(DBSession, properties_stand_in_their_order_with_their_defaults)
{
    const TDBSession session;
    const QMetaObject &meta = TDBSession::staticMetaObject;
    QStringList properties;
    for (int i = meta.propertyOffset(); i < meta.propertyCount(); ++i)
        properties += QLatin1String(meta.property(i).name()) + u'=' +
                      session.property(meta.property(i).name()).toString() +
                      (meta.property(i).isWritable() ? u""_s : u" (read-only)"_s);
    EXPECT_EQ(properties, (QStringList{u"Connected=false"_s, u"DBType=dbtAccess"_s, u"DBServer="_s,
                                       u"DBName="_s, u"DBUser="_s, u"DBPassword="_s, u"AppName="_s,
                                       u"SPID=0 (read-only)"_s, u"SQL="_s}));
    EXPECT_STREQ(meta.superClass()->className(), "Korvane::TComponent");
}

TEST(DBSession, the_type_brings_its_user)
{
    TDBSession session;
    session.SetDBUser(u"me"_s);
    session.SetDBType(dbtAccess);
    EXPECT_EQ(session.DBUser(), u"Admin"_s);
    session.SetDBType(dbtMSSQL);
    EXPECT_EQ(session.DBUser(), u"sa"_s);
    session.SetDBUser(u"me"_s);
    EXPECT_EQ(session.DBUser(), u"me"_s);
    EXPECT_TRUE(session.setProperty("DBType", QVariant::fromValue(dbtAccess)));
    EXPECT_EQ(session.DBUser(), u"Admin"_s);
}

TEST(DBSession, connection_strings_name_what_each_dialect_needs)
{
    EXPECT_EQ(
        AccessConnectionString(u"C:\\a.mdb"_s, u"Admin"_s, u"p"_s),
        u"Provider=Microsoft.Jet.OLEDB.4.0;Data Source=C:\\a.mdb;User ID=Admin;Jet OLEDB:Database Password=p"_s);
    EXPECT_EQ(
        MSSQLConnectionString(u"s"_s, u"d"_s, u"sa"_s, u"p;q"_s, u"收银台"_s),
        u"Provider=SQLOLEDB.1;Data Source=s;Initial Catalog=d;User ID=sa;Password=\"p;q\";Application Name=收银台"_s);
}

TEST(DBSession, the_access_number_is_the_clock_of_the_connect)
{
    ScriptedServer server(u"Microsoft.Jet.OLEDB.4.0"_s);
    static const struct
    {
        QString Clock;
        int Number;
    } rows[] = {
        {u"2024-01-31 00:00:00.000"_s, 0},
        {u"2024-01-31 12:00:30.500"_s, 43730},
        {u"2024-01-31 23:59:59.999"_s, 87398},
    };
    for (const auto &row : rows) {
        server.Answer = OneText(row.Clock);
        TDBSession session;
        session.SetDBName(u"scripted"_s);
        session.SetConnected(true);
        EXPECT_EQ(session.SPID(), row.Number) << row.Clock.toStdString();
    }
    EXPECT_EQ(server.Told.mid(0, 3), (QStringList{u"connect"_s, u"select now()"_s, u"disconnect"_s}));
}

TEST(DBSession, the_mssql_number_is_the_servers)
{
    ScriptedServer server(u"SQLOLEDB.1"_s);
    server.Answer = PacketOf({{u"A"_s, ftInteger}}, {{57}});
    TDBSession session;
    session.SetDBType(dbtMSSQL);
    session.SetDBServer(u"scripted"_s);
    session.SetConnected(true);
    EXPECT_EQ(session.SPID(), 57);
    // Connecting a connected session makes the connection anew.
    server.Answer = PacketOf({{u"A"_s, ftInteger}}, {{58}});
    session.SetConnected(true);
    EXPECT_EQ(session.SPID(), 58);
    session.DisConnect();
    EXPECT_FALSE(session.Connected());
    EXPECT_EQ(session.SPID(), 58);
    EXPECT_EQ(server.Told, (QStringList{u"connect"_s, u"select @@spid"_s, u"disconnect"_s, u"connect"_s,
                                        u"select @@spid"_s, u"disconnect"_s}));
}

TEST(DBSession, a_failed_connect_tells_the_providers_words_alone_or_asks_to_check)
{
    for (const TSqlDialect dialect : BothDialects) {
        ScriptedServer server(dialect == TSqlDialect::Access ? u"Microsoft.Jet.OLEDB.4.0"_s
                                                             : u"SQLOLEDB.1"_s);
        TDBSession session;
        session.SetDBType(dialect == TSqlDialect::Access ? dbtAccess : dbtMSSQL);
        session.SetDBServer(u"scripted"_s);
        session.SetDBName(u"scripted"_s);
        QList<TSqlError> errors = {{u"the first"_s, 0, {}}, {u"the second"_s, 0, {}}};
        server.OnConnect = [&] { throw ESqlError(errors); };
        SetScreenCursor(crHourGlass);
        EXPECT_EQ(RaisedBy([&] { session.SetConnected(true); }), u"Exception: the first"_s);
        EXPECT_EQ(ScreenCursor(), crDefault);
        EXPECT_FALSE(session.Connected());
        errors.clear();
        EXPECT_EQ(RaisedBy([&] { session.Connect(); }), u"Exception: 连接失败，请检验属性设置是否正确"_s);
        EXPECT_FALSE(session.Connected());
    }
}

TEST(DBSession, a_number_that_cannot_be_read_passes_the_failure_on_with_the_session_connected)
{
    for (const TSqlDialect dialect : BothDialects) {
        ScriptedServer server(dialect == TSqlDialect::Access ? u"Microsoft.Jet.OLEDB.4.0"_s
                                                             : u"SQLOLEDB.1"_s);
        TDBSession session;
        session.SetDBType(dialect == TSqlDialect::Access ? dbtAccess : dbtMSSQL);
        session.SetDBServer(u"scripted"_s);
        session.SetDBName(u"scripted"_s);
        server.OnStatement = [](const QString &) { throw ESqlError(u"no clock"_s); };
        EXPECT_EQ(RaisedBy([&] { session.SetConnected(true); }), u"EDatabaseError: no clock"_s);
        EXPECT_TRUE(session.Connected());
    }
}

TEST(DBSession, a_failed_reconnect_leaves_no_connection)
{
    for (const TSqlDialect dialect : BothDialects) {
        const TestDatabase database(dialect);
        TDBSession session;
        Aim(session, database);
        session.SetConnected(true);
        session.SetDBName(database.Folder() + u"/none.db"_s);
        EXPECT_THROW(session.SetConnected(true), Exception);
        EXPECT_FALSE(session.Connected());
        EXPECT_THROW(session.GetDateTime(), EDatabaseError);
    }
}

TEST(DBSession, a_password_is_asked_for_in_words)
{
    for (const TSqlDialect dialect : BothDialects) {
        const TestDatabase database(dialect, u"a;b"_s);
        TDBSession session;
        Aim(session, database);
        EXPECT_EQ(RaisedBy([&] { session.SetConnected(true); }),
                  u"Exception: 数据库设有密码，请输入密码后再连接："_s + database.FileName());
        session.SetDBPassword(u"a"_s);
        EXPECT_EQ(RaisedBy([&] { session.SetConnected(true); }),
                  u"Exception: 数据库密码不正确，不能连接："_s + database.FileName());
        session.SetDBPassword(u"a;b"_s);
        session.SetConnected(true);
        EXPECT_TRUE(session.Connected());
    }
}

TEST(DBSession, a_transaction_is_joined_and_ended_once)
{
    for (const TSqlDialect dialect : BothDialects) {
        ScriptedServer server(dialect == TSqlDialect::Access ? u"Microsoft.Jet.OLEDB.4.0"_s
                                                             : u"SQLOLEDB.1"_s);
        server.Answer = dialect == TSqlDialect::Access ? OneText(u"2024-01-31 08:00:00"_s)
                                                       : PacketOf({{u"A"_s, ftInteger}}, {{51}});
        TDBSession session;
        session.SetDBType(dialect == TSqlDialect::Access ? dbtAccess : dbtMSSQL);
        session.SetDBServer(u"scripted"_s);
        session.SetDBName(u"scripted"_s);
        session.CommitTrans();
        session.RollbackTrans();
        session.SetConnected(true);
        session.CommitTrans();
        session.RollbackTrans();
        session.BeginTrans();
        session.BeginTrans();
        session.CommitTrans();
        session.CommitTrans();
        session.BeginTrans();
        session.RollbackTrans();
        session.RollbackTrans();
        EXPECT_EQ(server.Told.mid(2), (QStringList{u"begin"_s, u"commit"_s, u"begin"_s, u"rollback"_s}));
    }
}

TEST(DBSession, no_routine_of_its_own_opens_a_transaction)
{
    ScriptedServer server(u"SQLOLEDB.1"_s);
    server.Answer = PacketOf({{u"A"_s, ftInteger}}, {{51}});
    TDBSession session;
    session.SetDBType(dbtMSSQL);
    session.SetDBServer(u"scripted"_s);
    session.SetConnected(true);
    session.Execute(u"a"_s);
    session.Execute(QStringList{u"b"_s, u"go"_s, u"c"_s});
    session.SetSQL({u"d"_s});
    session.ExecuteSQL();
    session.SetVersion(1);
    EXPECT_EQ(server.Told.mid(2),
              (QStringList{u"a"_s, u"b"_s, u"c"_s, u"d"_s, u"update Version set VerNo=1"_s}));
}
