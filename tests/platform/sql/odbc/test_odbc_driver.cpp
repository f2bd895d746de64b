// SPDX-License-Identifier: MIT
// The driver on each server that the environment names.
#include "platform/sql/odbc/OdbcDriver.h"

#include "support/Packets.h"
#include "support/TestServer.h"

#include <gtest/gtest.h>

using namespace Korvane;
using namespace Korvane::Testing;
using namespace Qt::StringLiterals;

namespace {

class OdbcDriver : public WithServer<::testing::TestWithParam<ServerKind>>
{
protected:
    void SetUp() override { Open(GetParam()); }

    bool IsPostgres() const { return GetParam() == ServerKind::Postgres; }
    void Run(const QStringList &statements) { RunAll(*FConnection, statements); }
    qint64 Execute(const QString &statement, const QList<TSqlParameter> &parameters)
    {
        return FConnection->Execute(statement, {parameters.constData(), size_t(parameters.size())});
    }
    /// State and native code behind each description.
    QStringList ErrorsOf(const QString &statement)
    {
        FailureOf(*FConnection, statement);
        QStringList texts;
        for (const TSqlError &error : FConnection->Errors())
            texts += u"%1|%2"_s.arg(error.SQLState, error.Description.section(u'\n', 0, 0));
        return texts;
    }
    /// Ends the server's side of the connection from another one.
    void CutConnection()
    {
        const QString number = Rows(u"select @@spid"_s);
        const auto other = FDatabase->Connect();
        other->Query((IsPostgres() ? u"select pg_terminate_backend(%1)"_s : u"kill %1"_s).arg(number));
    }
};

INSTANTIATE_TEST_SUITE_P(Servers, OdbcDriver, ::testing::Values(ServerKind::Postgres, ServerKind::SqlServer),
                         ::testing::PrintToStringParamName());

/// Bytes of every value, longer than a piece and than a block's place.
QByteArray LongBytes(qsizetype size)
{
    QByteArray bytes(size, Qt::Uninitialized);
    for (qsizetype i = 0; i < size; ++i)
        bytes[i] = char(i * 7 + i / 256);
    return bytes;
}

TEST_P(OdbcDriver, types_come_as_fields)
{
    Run({u"create table T(ID int not null primary key, A varchar(20), B nvarchar(30), M text, D datetime, "
         "F float, N decimal(18,4), L bigint, S smallint, I image)"_s,
         u"insert into T values(1, 'a', N'中', 'm', '20240131 10:11:12', 2.5, 12.3450, 9000000000, 3, 0x4A4B)"_s,
         u"insert into T(ID) values(2)"_s});
    EXPECT_EQ(TextOf(FConnection->Query(u"select * from T order by ID"_s)),
              u"ID:integer|A:string(20)|B:string(30)|M:memo|D:datetime|F:float|N:float(18,4)|L:largeint|"
              "S:smallint|I:blob\n"
              "1|a|中|m|45322.42444444444|2.5|12.345|9000000000|3|0x4a4b\n"
              "2|~|~|~|~|~|~|~|~|~\n"_s);
}

TEST_P(OdbcDriver, computed_texts_are_strings_and_equal_names_are_told_apart)
{
    const TDataPacket rows = FConnection->Query(u"select 'x' as A, upper('中y') as A, max(N) as Most "
                                                "from (select 5 as N) q"_s);
    EXPECT_EQ(rows.Field(0).Type, ftString);
    EXPECT_EQ(rows.Field(1).Type, ftString);
    EXPECT_EQ(rows.Field(1).Name, u"A_1"_s);
    EXPECT_EQ(TextOfRows(rows, {0}).trimmed(), u"x|中Y|5"_s);
}

TEST_P(OdbcDriver, values_come_back_as_they_went)
{
    Run({u"create table T(ID int not null primary key, A nvarchar(50), F float, N decimal(18,4), B bigint)"_s});
    const QStringList texts{
        u""_s,    u" "_s,         u"it's"_s,         u"'';--"_s, u"\\'\\n{x}?:A"_s, u"中文，“引号”"_s,
        u"𠀀😀"_s, u"a\r\nb\tc"_s, QString(50, u'满')};
    for (qsizetype i = 0; i < texts.size(); ++i) {
        QString doubled = texts[i];
        Run({u"insert into T(ID, A) values(%1, N'%2')"_s.arg(i * 2).arg(doubled.replace(u"'"_s, u"''"_s))});
        EXPECT_EQ(Execute(u"insert into T(ID, A) values(:ID, :A)"_s,
                          {{u"id"_s, int(i * 2 + 1)}, {u"a"_s, texts[i]}}),
                  1);
    }
    const TDataPacket rows = FConnection->Query(u"select A from T order by ID"_s);
    ASSERT_EQ(rows.RowCount(), texts.size() * 2);
    for (qsizetype row = 0; row < rows.RowCount(); ++row) {
        EXPECT_FALSE(rows.Column(0).IsNull(row)) << row;
        EXPECT_EQ(rows.Text(0, row), texts[row / 2]) << row;
    }

    Run({u"delete from T"_s});
    const double floats[] = {0.1 + 0.2, -1e-300, 1.7976931348623157e308, 123456789.0123};
    const qint64 wholes[] = {0, std::numeric_limits<qint64>::max(), std::numeric_limits<qint64>::min(), -1};
    for (int i = 0; i < 4; ++i)
        Execute(u"insert into T(ID, F, B) values(:ID, :F, :B)"_s,
                {{u"ID"_s, i}, {u"F"_s, floats[i]}, {u"B"_s, qlonglong(wholes[i])}});
    const TDataPacket numbers = FConnection->Query(u"select F, B from T order by ID"_s);
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(numbers.Column(0).Doubles()[size_t(i)], floats[i]);
        EXPECT_EQ(numbers.Column(1).Int(i), wholes[i]);
    }
}

TEST_P(OdbcDriver, decimals_lose_no_digit)
{
    Run({u"create table T(ID int not null primary key, N decimal(18,4))"_s,
         u"insert into T values(1, 0.1) insert into T values(2, -12345678901.2345) insert into T values(3, null)"_s});
    EXPECT_EQ(TextOf(FConnection->Query(u"select N from T order by ID"_s)),
              u"N:float(18,4)\n0.1\n-12345678901.2345\n~\n"_s);
    Run({u"insert into T values(4, 12345678901234.5678)"_s});
    EXPECT_EQ(Rows(u"select N from T order by ID"_s), u"0.1 / -12345678901.2345 / ~ / 12345678901234.5678"_s);
}

TEST_P(OdbcDriver, long_values_go_and_come_by_pieces)
{
    Run({u"create table T(ID int not null primary key, M text, I image)"_s});
    const QString text = u"长文本😀x"_s.repeated(150'000);
    const QByteArray bytes = LongBytes(1'200'000);
    Execute(u"insert into T values(:ID, :M, :I)"_s,
            {{u"ID"_s, 1}, {u"M"_s, u"短"_s}, {u"I"_s, QByteArray("")}});
    Execute(u"insert into T values(2, :M, :I)"_s, {{u"M"_s, text}, {u"I"_s, bytes}});
    Execute(u"insert into T values(3, :M, :I)"_s,
            {{u"M"_s, QVariant()}, {u"I"_s, QVariant(QMetaType::fromType<QByteArray>())}});
    Execute(u"update T set I=:I where ID=:ID"_s, {{u"ID"_s, 1}, {u"I"_s, QByteArray("\0\xff'", 3)}});
    const TDataPacket rows = FConnection->Query(u"select * from T order by ID"_s);
    EXPECT_EQ(TextOfRows(rows, {0, 2}).trimmed(), u"1|短|0x00ff27\n3|~|~"_s);
    EXPECT_TRUE(rows.Text(1, 1) == text);
    EXPECT_TRUE(rows.Value(2, 1).toByteArray() == bytes);
}

TEST_P(OdbcDriver, rows_cross_the_borders_of_blocks)
{
    Run({u"create table T(ID int not null primary key, A varchar(40), M text)"_s});
    // Long values stand on both sides of the borders.
    QStringList rows;
    for (int i = 0; i < 4321; ++i)
        rows += u"(%1, %2, '%3')"_s.arg(i).arg(i % 3 ? u"'名%1'"_s.arg(i) : u"null"_s,
                                               QString(i % 500 < 2 ? 3000 : 3, QChar(u'a' + i % 26)));
    for (qsizetype i = 0; i < rows.size(); i += 500)
        Run({u"insert into T values "_s + rows.mid(i, 500).join(u", "_s)});
    const TDataPacket packet = FConnection->Query(u"select * from T order by ID"_s);
    packet.ValidateFull();
    ASSERT_EQ(packet.RowCount(), rows.size());
    for (int i = 0; i < rows.size(); ++i) {
        ASSERT_EQ(packet.Column(0).Int(i), i);
        ASSERT_EQ(packet.Text(1, i), i % 3 ? u"名%1"_s.arg(i) : QString());
        ASSERT_EQ(packet.Column(1).IsNull(i), i % 3 == 0);
        ASSERT_EQ(packet.Text(2, i), QString(i % 500 < 2 ? 3000 : 3, QChar(u'a' + i % 26)));
    }
}

TEST_P(OdbcDriver, affected_rows_and_the_last_rowset_of_a_text_are_given)
{
    Run({u"create table T(A int)"_s});
    EXPECT_EQ(FConnection->Execute(u"insert into T values(1) insert into T values(2)"_s), 2);
    EXPECT_EQ(FConnection->Execute(u"update T set A=A+1"_s), 2);
    EXPECT_EQ(FConnection->Execute(u"delete from T where A>100"_s), 0);
    EXPECT_EQ(FConnection->Execute(u"select A from T"_s), 0);
    EXPECT_EQ(Rows(u"select 1 as X select A from T order by A"_s), u"2 / 3"_s);
    EXPECT_EQ(FConnection->Query(u"update T set A=0"_s).FieldCount(), 0);
}

TEST_P(OdbcDriver, transactions_hold_and_go)
{
    Run({u"create table T(A int not null primary key)"_s});
    FConnection->BeginTrans();
    EXPECT_TRUE(FConnection->InTransaction());
    Run({u"insert into T values(1)"_s});
    FConnection->RollbackTrans();
    EXPECT_FALSE(FConnection->InTransaction());
    EXPECT_EQ(Rows(u"select A from T"_s), u""_s);

    FConnection->BeginTrans();
    Run({u"insert into T values(1)"_s});
    // A statement that fails is undone alone.
    EXPECT_NE(FailureOf(*FConnection, u"insert into T values(1)"_s), u"nothing"_s);
    Run({u"insert into T values(2)"_s});
    FConnection->CommitTrans();
    EXPECT_EQ(Testing::Rows(*FDatabase->Connect(), u"select A from T order by A"_s), u"1 / 2"_s);

    Run({u"insert into T values(3)"_s}); // by itself again
    EXPECT_EQ(Testing::Rows(*FDatabase->Connect(), u"select count(*) as N from T"_s), u"3"_s);
    EXPECT_THROW(FConnection->CommitTrans(), ESqlError);
    {
        const auto leaving = FDatabase->Connect();
        leaving->BeginTrans();
        leaving->Execute(u"delete from T"_s);
    }
    EXPECT_EQ(Rows(u"select count(*) as N from T"_s), u"3"_s);
}

TEST_P(OdbcDriver, failures_are_told_in_the_servers_words)
{
    Run({u"create table T(A int not null primary key, B varchar(3))"_s, u"insert into T values(1, 'a')"_s});
    const QStringList twice = ErrorsOf(u"insert into T values(1, 'a')"_s);
    const QStringList missing = ErrorsOf(u"select * from NIX"_s);
    if (IsPostgres()) {
        EXPECT_EQ(twice, QStringList(u"23505|主键或唯一索引的值重复，记录已存在（ERROR: duplicate key value "
                                     "violates unique constraint \"T_pkey\""_s));
        EXPECT_EQ(missing, QStringList(u"42P01|ERROR: relation \"NIX\" does not exist"_s));
        EXPECT_TRUE(ErrorsOf(u"insert into T values(2, 'long')"_s)[0].startsWith(
            u"22001|数据过长，超出字段的长度（ERROR: "_s));
    } else {
        EXPECT_TRUE(twice[0].startsWith(u"23000|"_s)) << twice[0].toStdString();
        EXPECT_TRUE(missing[0].startsWith(u"42S02|"_s)) << missing[0].toStdString();
        EXPECT_EQ(FConnection->Errors()[0].NativeError, 208);
    }
    EXPECT_EQ(Rows(u"select B from T"_s), u"a"_s) << "the connection goes on";
}

TEST_P(OdbcDriver, a_connect_that_fails_says_why_without_the_password)
{
    const TestServer &server = FDatabase->Server();
    const QString wrong = ConnectFailure(server.ConnectionString(FDatabase->Name(), u"geheim;{x}"_s));
    EXPECT_TRUE(wrong.contains(server.User)) << wrong.toStdString();
    EXPECT_FALSE(wrong.contains(u"geheim"_s)) << wrong.toStdString();
    const QString unknown = ConnectFailure(server.ConnectionString(u"no_such_database"_s));
    EXPECT_TRUE(unknown.contains(u"no_such_database"_s)) << unknown.toStdString();
    TestServer nowhere = server;
    nowhere.Address = IsPostgres() ? u"postgresql://127.0.0.1:1"_s : u"127.0.0.1,1"_s;
    const QString unreachable = ConnectFailure(nowhere.ConnectionString(u"x"_s));
    EXPECT_TRUE(unreachable.startsWith(u"不能连接到 "_s)) << unreachable.toStdString();
}

TEST_P(OdbcDriver, a_lost_connection_is_told_and_leaves_the_session_clean)
{
    Run({u"create table T(A int)"_s});
    FConnection->BeginTrans();
    Run({u"insert into T values(1)"_s});
    CutConnection();
    const QString failure = FailureOf(*FConnection, u"insert into T values(2)"_s);
    EXPECT_TRUE(failure.startsWith(u"与数据库服务器的连接已断开（"_s)) << failure.toStdString();
    EXPECT_FALSE(FConnection->Connected());
    EXPECT_FALSE(FConnection->InTransaction());
    FConnection->SetConnected(false);
    FConnection->SetConnected(true);
    EXPECT_EQ(Rows(u"select A from T"_s), u""_s);
}

TEST_P(OdbcDriver, a_lock_of_another_user_is_waited_for_as_long_as_told)
{
    Run({u"create table T(A int)"_s, u"insert into T values(1)"_s});
    const auto holder = FDatabase->Connect();
    holder->BeginTrans();
    holder->Execute(u"update T set A=2"_s);
    const auto waiter = FDatabase->Connect({}, 1);
    const QString failure = FailureOf(*waiter, u"update T set A=3"_s);
    EXPECT_TRUE(failure.contains(IsPostgres() ? u"数据库正被其他用户锁定，请稍后再试（"_s : u"time"_s))
        << failure.toStdString();
    holder->CommitTrans();
    EXPECT_EQ(waiter->Execute(u"update T set A=3"_s), 1);
}

TEST_P(OdbcDriver, the_catalog_is_told)
{
    Run({u"create table T(ID int not null primary key, A varchar(20) default 'x', N decimal(18,4))"_s,
         u"create unique index IX on T(N, A)"_s, u"create view V as select A from T"_s});
    const auto rowset = [&](TSchemaInfo schema, const QVariantList &restrictions) {
        return FConnection->Driver().OpenSchema(schema, restrictions, {});
    };
    const TDataPacket tables = rowset(siTables, {});
    QStringList found;
    for (qsizetype row = 0; row < tables.RowCount(); ++row)
        if (tables.Text(1, row) != u"SYSTEM TABLE"_s)
            found += tables.Text(0, row) + u' ' + tables.Text(1, row);
    EXPECT_EQ(found, (QStringList{u"T TABLE"_s, u"V VIEW"_s}));

    const TDataPacket columns = rowset(siColumns, QVariantList{u"t"_s});
    QStringList told;
    for (qsizetype row = 0; row < columns.RowCount(); ++row)
        told += u"%1 %2 %3 %4"_s.arg(columns.Text(2, row), columns.Text(1, row), columns.Text(3, row),
                                     columns.Text(5, row));
    EXPECT_EQ(told, (QStringList{u"1 ID int N"_s, u"2 A varchar(20) Y"_s,
                                 IsPostgres() ? u"3 N numeric(18,4) Y"_s : u"3 N decimal(18,4) Y"_s}));
    EXPECT_EQ(
        TextOf(rowset(siIndexes, QVariantList{{}, u"IX"_s})),
        u"TABLE_NAME:string(128)|INDEX_NAME:string(128)|COLUMN_NAME:string(128)|ORDINAL_POSITION:integer|"
        "UNIQUE:string(1)|PRIMARY_KEY:string(1)\nT|IX|N|1|Y|N\nT|IX|A|2|Y|N\n"_s);
}

TEST_P(OdbcDriver, users_are_listed_by_application)
{
    const auto other = FDatabase->Connect(u";Application Name=订单管理"_s);
    const auto padded = FDatabase->Connect(u";Application Name=x订单"_s);
    const TDataPacket users =
        FConnection->Driver().OpenSchema(siProviderSpecific, {}, QLatin1String(UserRosterSchemaId));
    QStringList names;
    for (qsizetype row = 0; row < users.RowCount(); ++row)
        names += users.Text(3, row);
    names.sort();
    EXPECT_EQ(names, (QStringList{u"korvane-test"_s, u"x订单"_s, u"订单管理"_s}));
    for (const QString &name : {u"订单管理"_s, u"x订单"_s}) // on the whole server
        EXPECT_EQ(Rows(u"select count(*) as N from master..sysprocesses where program_name='%1'"_s.arg(name)),
                  u"1"_s)
            << name.toStdString();
}

TEST_P(OdbcDriver, databases_are_made_and_removed_once)
{
    const QString text = FDatabase->ConnectionString();
    EXPECT_TRUE(RaisedBy([&] { CreateCatalog(text); }).startsWith(u"EDatabaseError: "_s));
    EXPECT_TRUE(RaisedBy([&] { RemoveCatalog(text); }).startsWith(u"EDatabaseError: "_s)) << "in use";
    EXPECT_EQ(Rows(u"select 1 as A"_s), u"1"_s);
    const QString second = FDatabase->Name() + u"_Zweite 数据"_s;
    Run({u"create database [%1]"_s.arg(second)});
    EXPECT_NE(ConnectTo(FDatabase->Server().ConnectionString(second)), nullptr);
    Run({u"drop database [%1]"_s.arg(second)});
    EXPECT_NE(ConnectFailure(FDatabase->Server().ConnectionString(second)), u"nothing"_s);
}

} // namespace
