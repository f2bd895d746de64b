// SPDX-License-Identifier: MIT
#include "platform/sql/ADOCommand.h"
#include "platform/sql/ADOConnection.h"
#include "platform/sql/ADODataSet.h"
#include "platform/sql/SqlError.h"
#include "support/Packets.h"
#include "support/ScriptedDriver.h"
#include "support/TestDatabase.h"

using namespace Korvane;
using namespace Korvane::Testing;
using namespace Qt::StringLiterals;

TEST(ADOConnection, the_error_list_holds_the_last_failure_until_the_next_operation)
{
    for (const TSqlDialect dialect : BothDialects) {
        const TestDatabase database(dialect);
        TADOConnection connection;
        connection.SetConnectionString(u"Provider=none"_s);
        EXPECT_THROW(connection.SetConnected(true), EDatabaseError);
        EXPECT_EQ(connection.Errors().size(), 1);
        EXPECT_FALSE(connection.Connected());

        connection.SetConnectionString(database.ConnectionString());
        connection.SetConnected(true);
        EXPECT_TRUE(connection.Errors().isEmpty());

        EXPECT_THROW(connection.Execute(u"insert into NONE values(1)"_s), EDatabaseError);
        ASSERT_EQ(connection.Errors().size(), 1);
        EXPECT_EQ(connection.Errors()[0].Description, u"no such table: NONE"_s);
        EXPECT_NE(connection.Errors()[0].NativeError, 0);
        connection.Query(u"select 1"_s);
        EXPECT_TRUE(connection.Errors().isEmpty());

        EXPECT_THROW(connection.Query(u"select * from"_s), EDatabaseError);
        EXPECT_EQ(connection.Errors().size(), 1);
        connection.BeginTrans();
        EXPECT_TRUE(connection.Errors().isEmpty());
        EXPECT_THROW(connection.BeginTrans(), EDatabaseError);
        EXPECT_EQ(connection.Errors().size(), 1);
        connection.RollbackTrans();
        EXPECT_TRUE(connection.Errors().isEmpty());
    }
}

TEST(ADOConnection, a_driver_may_leave_several_errors_or_none)
{
    ScriptedServer server(u"SQLOLEDB.1"_s);
    const auto connection = ConnectTo(u"Provider=SQLOLEDB.1;Data Source=scripted"_s);
    server.OnStatement = [](const QString &) {
        throw ESqlError({{u"first"_s, 7, u"23000"_s}, {u"second"_s, 8, {}}});
    };
    EXPECT_EQ(FailureOf(*connection, u"x"_s), u"first / second"_s);
    EXPECT_EQ(connection->Errors()[0].NativeError, 7);
    EXPECT_EQ(connection->Errors()[0].SQLState, u"23000"_s);
    server.OnStatement = [](const QString &) { throw ESqlError(QList<TSqlError>()); };
    EXPECT_EQ(FailureOf(*connection, u"x"_s), u"raised: "_s);
    // What is no failure of the driver's own counts as one entry.
    server.OnStatement = [](const QString &) { throw EConvertError(u"no number"_s); };
    EXPECT_EQ(FailureOf(*connection, u"x"_s), u"no number"_s);
}

TEST(ADOConnection, without_a_connection_all_is_refused)
{
    TADOConnection connection;
    TADODataSet target;
    EXPECT_EQ(RaisedBy([&] { connection.Execute(u"select 1"_s); }), u"EDatabaseError: 数据库没有连接"_s);
    EXPECT_EQ(RaisedBy([&] { connection.Query(u"select 1"_s); }), u"EDatabaseError: 数据库没有连接"_s);
    EXPECT_EQ(RaisedBy([&] { connection.BeginTrans(); }), u"EDatabaseError: 数据库没有连接"_s);
    EXPECT_EQ(RaisedBy([&] { connection.CommitTrans(); }), u"EDatabaseError: 数据库没有连接"_s);
    EXPECT_EQ(RaisedBy([&] { connection.OpenSchema(siTables, {}, {}, target); }),
              u"EDatabaseError: 数据库没有连接"_s);
    EXPECT_FALSE(connection.InTransaction());
    EXPECT_EQ(connection.Errors().size(), 1);
}

TEST(ADOConnection, setting_the_state_that_is_does_nothing)
{
    ScriptedServer server(u"SQLOLEDB.1"_s);
    const auto connection = ConnectTo(u"Provider=SQLOLEDB.1;Data Source=scripted"_s);
    QStringList events;
    connection->AfterConnect = [&](TADOConnection *sender) {
        events += sender == connection.get() ? u"on"_s : u"?"_s;
    };
    connection->AfterDisconnect = [&](TADOConnection *) { events += u"off"_s; };
    connection->SetConnected(true);
    connection->SetConnected(false);
    connection->SetConnected(false);
    connection->SetConnected(true);
    EXPECT_EQ(events, (QStringList{u"off"_s, u"on"_s}));
    EXPECT_EQ(server.Told, (QStringList{u"connect"_s, u"disconnect"_s, u"connect"_s}));
}

TEST(ADOConnection, OnExecute_sees_statements_before_they_run)
{
    ScriptedServer server(u"SQLOLEDB.1"_s);
    const auto connection = ConnectTo(u"Provider=SQLOLEDB.1;Data Source=scripted"_s);
    connection->OnExecute = [&](const QString &statement) { server.Told += u"soon "_s + statement; };
    connection->Execute(u"a"_s);
    connection->Query(u"b"_s);
    EXPECT_EQ(server.Told.mid(1), (QStringList{u"soon a"_s, u"a"_s, u"soon b"_s, u"b"_s}));
}

TEST(ADOQuery, sends_its_lines_as_one_statement)
{
    ScriptedServer server(u"SQLOLEDB.1"_s);
    server.Answer = PacketOf({{u"A"_s, ftInteger}}, {{1}, {2}});
    server.Affected = 3;
    const auto connection = ConnectTo(u"Provider=SQLOLEDB.1;Data Source=scripted"_s);
    TADOQuery query;
    EXPECT_EQ(RaisedBy([&] { query.Open(); }), u"EDatabaseError: 没有设置数据库连接"_s);
    query.SetConnection(connection.get());
    query.SetSQL({u"select *"_s, u"from T"_s});
    query.Open();
    EXPECT_EQ(query.RecordCount(), 2);
    query.SetSQL({u"delete T"_s});
    EXPECT_FALSE(query.Active()) << "new lines close a query";
    query.ExecSQL();
    EXPECT_EQ(query.RowsAffected(), 3);
    EXPECT_EQ(server.Told.mid(1), (QStringList{u"select *\r\nfrom T"_s, u"delete T"_s}));
}

TEST(ADOQuery, a_failed_open_leaves_it_closed)
{
    for (const TSqlDialect dialect : BothDialects) {
        const TestDatabase database(dialect);
        const auto connection = database.Connect();
        TADOQuery query;
        query.SetConnection(connection.get());
        query.SetSQL({u"select 1 as A union all select 2"_s});
        query.Open();
        EXPECT_EQ(query.FieldByName(u"a"_s).AsInteger(), 1);
        query.Next();
        EXPECT_EQ(query.Fields(0).AsInteger(), 2);
        query.SetSQL({u"select * from NONE"_s});
        EXPECT_THROW(query.Open(), EDatabaseError);
        EXPECT_FALSE(query.Active());
        TDataSetProvider provider;
        EXPECT_THROW(provider.Data(), EDatabaseError);
        provider.SetDataSet(&query);
        EXPECT_THROW(provider.Data(), EDatabaseError);
    }
}

TEST(ADOCommand, fills_its_parameters_by_number)
{
    for (const TSqlDialect dialect : BothDialects) {
        const TestDatabase database(dialect);
        const auto connection = database.Connect();
        RunAll(*connection, {u"create table T(NO int, A image, B varchar(20), C text)"_s});
        TADOCommand command;
        command.SetCommandText(u"insert into T(NO, A, B, C) values(1, :A, 'x:A', :C)"_s);
        EXPECT_EQ(RaisedBy([&] { command.Execute(); }), u"EDatabaseError: 没有设置数据库连接"_s);
        command.SetConnection(connection.get());
        ASSERT_EQ(command.ParameterCount(), 2);
        EXPECT_EQ(command.Parameter(1).Name, u"C"_s);
        command.LoadParameter(0, QByteArray("\0\1", 2), ftBlob);
        command.LoadParameter(1, "中文", ftMemo);
        EXPECT_EQ(command.Execute(), 1);
        EXPECT_THROW(command.LoadParameter(2, "x", ftBlob), EListError);
        EXPECT_THROW(command.SetParameter(-1, 1), EListError);
        EXPECT_EQ(Rows(*connection, u"select * from T"_s), u"1|0x0001|x:A|中文"_s);

        // A new text begins without values.
        command.SetCommandText(u"insert into T(NO, A) values(2, :A)"_s);
        command.Execute();
        EXPECT_EQ(Rows(*connection, u"select A from T where NO=2"_s), u"~"_s);
    }
}

// A name that comes again is the same parameter, whatever the case of its letters.
TEST(ADOCommand, a_parameter_fills_every_place_that_names_it)
{
    for (const TSqlDialect dialect : BothDialects) {
        const TestDatabase database(dialect);
        const auto connection = database.Connect();
        RunAll(*connection, {u"create table T(A image, B image, C image)"_s});
        TADOCommand command;
        command.SetConnection(connection.get());
        command.SetCommandText(u"insert into T values(:Pic, :Pic, :PIC)"_s);
        ASSERT_EQ(command.ParameterCount(), 1);
        command.LoadParameter(0, "x", ftBlob);
        command.Execute();
        EXPECT_EQ(Rows(*connection, u"select * from T"_s), u"0x78|0x78|0x78"_s);
    }
}
