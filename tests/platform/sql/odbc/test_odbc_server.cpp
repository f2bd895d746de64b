// SPDX-License-Identifier: MIT
// What is said to the driver manager, without any server.
#include "platform/sql/odbc/OdbcServer.h"

#include "platform/sql/odbc/OdbcErrors.h"
#include "platform/sql/odbc/OdbcParameters.h"
#include "platform/sql/odbc/OdbcPostgres.h"
#include "support/Packets.h"

#include <gtest/gtest.h>

using namespace Korvane;
using namespace Qt::StringLiterals;

namespace {

TConnectionString To(const QString &dataSource)
{
    TConnectionString connection(
        u"Provider=SQLOLEDB.1;Initial Catalog=orders;User ID=sa;Password=\"a;b}c\";Application Name=订单"_s);
    connection.SetValue(u"Data Source"_s, dataSource);
    return connection;
}

QString TextFor(const QString &dataSource, const QStringList &installed)
{
    const TOdbcServer &server = OdbcServerOf(dataSource);
    return OdbcConnectionText(server, OdbcTargetOf(server, To(dataSource), {}), installed);
}

} // namespace

TEST(OdbcServer, addresses_are_read)
{
    static const struct
    {
        QString Address;
        QString Read; ///< title, host, instance, port
    } rows[] = {
        {u"dbhost"_s, u"SQL Server|dbhost||0"_s},
        {u"dbhost,1500"_s, u"SQL Server|dbhost||1500"_s},
        {u" 10.0.0.7 , 1500 "_s, u"SQL Server|10.0.0.7||1500"_s},
        {u"dbhost\\SQL2005"_s, u"SQL Server|dbhost|SQL2005|0"_s},
        {u"tcp:dbhost\\X,1600"_s, u"SQL Server|dbhost|X|1600"_s},
        {u"."_s, u"SQL Server|localhost||0"_s},
        {u"(LOCAL)"_s, u"SQL Server|localhost||0"_s},
        {u"postgresql://dbhost"_s, u"PostgreSQL|dbhost||5432"_s},
        {u"PostgreSQL://dbhost:6000/"_s, u"PostgreSQL|dbhost||6000"_s},
        {u"postgres://[::1]:6000"_s, u"PostgreSQL|::1||6000"_s},
    };
    for (const auto &row : rows) {
        const TOdbcServer &server = OdbcServerOf(row.Address);
        const TOdbcTarget target = OdbcTargetOf(server, To(row.Address), {});
        EXPECT_EQ(QStringList({server.Title, target.Host, target.Instance, QString::number(target.Port)})
                      .join(u'|'),
                  row.Read)
            << row.Address.toStdString();
    }
}

TEST(OdbcServer, what_is_no_address_is_refused)
{
    for (const QString &address :
         {u"db host"_s, u"dbhost,0"_s, u"dbhost,65536"_s, u"dbhost,port"_s, u"dbhost;Trusted=yes"_s,
          u"postgresql://"_s, u"postgresql://dbhost:0"_s, u"postgresql://dbhost:99999"_s,
          u"postgresql://sa@dbhost"_s, u"postgresql://dbhost/orders"_s, u"postgresql://dbhost;x=1"_s})
        EXPECT_TRUE(RaisedBy([&] {
                        OdbcTargetOf(OdbcServerOf(address), To(address), {});
                    }).contains(u"服务器地址不正确"_s))
            << address.toStdString();
}

TEST(OdbcServer, the_best_installed_driver_is_taken)
{
    const QString login = u"Database={orders};UID={sa};PWD={a;b}}c};APP={订单}"_s;
    const QStringList all{u"FreeTDS"_s, u"ODBC Driver 9 for SQL Server"_s, u"ODBC Driver 18 for SQL Server"_s,
                          u"PostgreSQL ANSI"_s, u"PostgreSQL Unicode"_s};
    static const struct
    {
        QString Address;
        QStringList Installed;
        QString Text;
    } rows[] = {
        {u"h"_s, all, u"Driver={ODBC Driver 18 for SQL Server};Server=h;TrustServerCertificate=yes;"_s},
        {u"h,1500"_s, all,
         u"Driver={ODBC Driver 18 for SQL Server};Server=h,1500;TrustServerCertificate=yes;"_s},
        {u"h\\x"_s, all, u"Driver={ODBC Driver 18 for SQL Server};Server=h\\x;TrustServerCertificate=yes;"_s},
        {u"h"_s, {u"FreeTDS"_s}, u"Driver={FreeTDS};Server=h;Port=1433;ClientCharset=UTF-8;"_s},
        {u"h\\x"_s, {}, u"Driver=libtdsodbc.so;Server=h\\x;ClientCharset=UTF-8;"_s},
        {u"h\\x,1500"_s, {}, u"Driver=libtdsodbc.so;Server=h;Port=1500;ClientCharset=UTF-8;"_s},
    };
    for (const auto &row : rows)
        EXPECT_EQ(TextFor(row.Address, row.Installed), row.Text + login) << row.Address.toStdString();

    const QString postgres = u"Server=h;Port=5432;Database=orders;UID=sa;PWD={a;b}}c};"_s;
    const QString address = u"postgresql://h"_s;
    EXPECT_TRUE(TextFor(address, all).startsWith(u"Driver={PostgreSQL Unicode};"_s + postgres));
    EXPECT_TRUE(TextFor(address, {}).startsWith(u"Driver=psqlodbcw.so;"_s + postgres));
}

TEST(OdbcServer, names_that_psqlodbc_cannot_be_told_are_refused)
{
    TConnectionString connection = To(u"postgresql://h"_s);
    connection.SetValue(u"User ID"_s, u"sa;Server=other"_s);
    const TOdbcServer &server = PostgresOverOdbc();
    EXPECT_EQ(RaisedBy([&] { OdbcConnectionText(server, OdbcTargetOf(server, connection, {}), {}); }),
              u"EDatabaseError: 数据库名称和用户名不能含有此符号：sa;Server=other"_s);
}

TEST(OdbcServer, the_servers_own_database_stands_for_none_and_for_master)
{
    TConnectionString connection = To(u"postgresql://h"_s);
    for (const QString &name : {u""_s, u"master"_s, u"MASTER"_s}) {
        connection.SetValue(u"Initial Catalog"_s, name);
        EXPECT_EQ(OdbcTargetOf(PostgresOverOdbc(), connection, {}).Database, u"postgres"_s);
    }
    connection.SetValue(u"Initial Catalog"_s, u"Orders"_s);
    EXPECT_EQ(OdbcTargetOf(PostgresOverOdbc(), connection, {}).Database, u"Orders"_s);
    EXPECT_EQ(OdbcTargetOf(SqlServerOverOdbc(), TConnectionString(u"Data Source=h"_s), {}).Database,
              u"master"_s);
}

TEST(OdbcServer, any_application_name_fits_a_postgres_session)
{
    static const struct
    {
        QString Name;
        QString Kept;
    } rows[] = {
        {u""_s, u""_s},
        {u"Orders 2.0"_s, u"Orders 2.0"_s},
        {QString(70, u'x'), QString(63, u'x')},
        {u"订单"_s, u"b64:6K6i5Y2V"_s},
        {u"b64:x"_s, u"b64:YjY0Ong="_s},
        {QString(20, u'订'), u"b64:"_s + QString::fromLatin1(QString(14, u'订').toUtf8().toBase64())},
    };
    for (const auto &row : rows)
        EXPECT_EQ(PostgresApplicationName(row.Name), row.Kept) << row.Name.toStdString();
}

TEST(OdbcParameters, names_become_marks_outside_of_literals_and_comments)
{
    const QList<TSqlParameter> given{{u"A"_s, 1}, {u"内容"_s, u"x"_s}};
    static const struct
    {
        QString Sql;
        QString Marked;
        std::vector<int> Values;
    } rows[] = {
        {u"update T set A=:a, B=:内容, C=:A"_s, u"update T set A=?, B=?, C=?"_s, {0, 1, 0}},
        {u"select ':A', \":A\", [:A] /* :A */ -- :A\n, :A"_s,
         u"select ':A', \":A\", [:A] /* :A */ -- :A\n, ?"_s,
         {0}},
        {u"select 'it''s :A', :A"_s, u"select 'it''s :A', ?"_s, {0}},
        {u"select '1'::int, :A::text"_s, u"select '1'::int, ?::text"_s, {0}},
        {u"select :other, ?"_s, u"select ?, ?"_s, {-1, -1}},
        {u"select 'open :A"_s, u"select 'open :A"_s, {}},
        {u"select 12:30, :"_s, u"select 12:30, :"_s, {}},
    };
    for (const auto &row : rows) {
        const TOdbcMarkedSql marked = MarkOdbcParameters(row.Sql, {given.constData(), size_t(given.size())});
        EXPECT_EQ(marked.Sql, row.Marked);
        EXPECT_EQ(marked.Values, row.Values) << row.Sql.toStdString();
    }
    EXPECT_EQ(MarkOdbcParameters(u"select :A, ?"_s, {}).Sql, u"select :A, ?"_s);
}

TEST(OdbcErrors, the_servers_words_stand_without_the_drivers)
{
    static const struct
    {
        QString Message;
        QString Words;
    } rows[] = {
        {u"[FreeTDS][SQL Server]Invalid object name 'x'."_s, u"Invalid object name 'x'."_s},
        {u"[Microsoft][ODBC Driver 18 for SQL Server][SQL Server]对象名 [x] 无效。"_s,
         u"对象名 [x] 无效。"_s},
        {u"ERROR: no table;\nError while executing the query"_s, u"ERROR: no table"_s},
        {u"[open"_s, u"[open"_s},
        {u"[only]"_s, u"[only]"_s},
    };
    for (const auto &row : rows)
        EXPECT_EQ(OdbcServerWords(PostgresOverOdbc(), row.Message), row.Words);
    const auto described = DescribeOdbcErrors(
        PostgresOverOdbc(), {{u"ERROR: twice"_s, 1, u"23505"_s}, {u"ERROR: other"_s, 2, u"42601"_s}});
    EXPECT_EQ(described[0].Description, u"主键或唯一索引的值重复，记录已存在（ERROR: twice）"_s);
    EXPECT_EQ(described[1].Description, u"ERROR: other"_s);
    EXPECT_EQ(described[0].NativeError, 1);
}
