// SPDX-License-Identifier: MIT
#include "platform/sql/DriverRegistry.h"

#include "platform/sql/SqlError.h"
#include "support/FailingDriver.h"
#include "support/Packets.h"
#include "support/ScriptedDriver.h"
#include "support/TestDatabase.h"

using namespace Korvane;
using namespace Korvane::Testing;
using namespace Qt::StringLiterals;

TEST(DriverRegistry, an_own_driver_goes_before_the_built_in_ones_until_it_is_taken_back)
{
    const TestDatabase database(TSqlDialect::Access);
    const TConnectionString scripted(u"provider=microsoft.JET.oledb.4.0;Data Source=scripted"_s);
    const TConnectionString file(database.ConnectionString());
    {
        ScriptedServer server(u"Microsoft.Jet.OLEDB.4.0"_s);
        auto driver = CreateDriver(scripted);
        driver->Connect(scripted, {});
        driver->Execute(u"anything"_s);
        EXPECT_EQ(server.Told, (QStringList{u"connect"_s, u"anything"_s}));
        // What it does not serve goes to the next one.
        driver = CreateDriver(file);
        driver->Connect(file, {});
        EXPECT_EQ(server.Told.size(), 3) << "the disconnect only";
    }
    EXPECT_EQ(RaisedBy([&] { CreateDriver(scripted)->Connect(scripted, {}); }),
              u"EDatabaseError: 找不到数据库文件：scripted"_s);
}

TEST(DriverRegistry, what_nobody_serves_is_told)
{
    static const struct
    {
        QString Text;
        QString Message;
    } rows[] = {
        {u"Provider=MSDAORA.1;Data Source=ora"_s, u"没有可用的数据库驱动程序：MSDAORA.1，ora"_s},
        {u"Provider=SQLOLEDB.1;Data Source="_s, u"没有可用的数据库驱动程序：SQLOLEDB.1，"_s},
        {u"Data Source=server1"_s, u"连接字符串没有指定数据提供者"_s},
        {u""_s, u"连接字符串没有指定数据提供者"_s},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(ConnectFailure(row.Text), row.Message) << row.Text.toStdString();
        EXPECT_EQ(RaisedBy([&] { CreateCatalog(row.Text); }), u"EDatabaseError: "_s + row.Message);
    }
}

TEST(DriverRegistry, a_driver_that_makes_no_databases_says_so)
{
    const ScriptedServer server(u"SQLOLEDB.1"_s);
    const QString text = u"Provider=SQLOLEDB.1;Data Source=scripted"_s;
    EXPECT_EQ(RaisedBy([&] { CreateCatalog(text); }),
              u"EDatabaseError: 此驱动程序不能创建数据库：scripted"_s);
    EXPECT_EQ(RaisedBy([&] { RemoveCatalog(text); }),
              u"EDatabaseError: 此驱动程序不能删除数据库：scripted"_s);
    EXPECT_EQ(RaisedBy([&] { CreateDriver(TConnectionString(text))->CopyDatabase(u"a.db"_s); }),
              u"EDatabaseError: 此驱动程序不能复制数据库：a.db"_s);
}

TEST(FailingServer, stands_before_the_real_drivers_and_fails_as_told)
{
    for (const TSqlDialect dialect : BothDialects) {
        const TestDatabase database(dialect);
        FailingServer server;
        const auto connection = database.Connect();
        RunAll(*connection, {u"create table T(A int)"_s});
        server.Ran.clear();
        server.FailAt(2, u"断线"_s);
        connection->BeginTrans();
        connection->Execute(u"insert into T values(1)"_s);
        EXPECT_EQ(FailureOf(*connection, u"insert into T values(2)"_s), u"断线"_s);
        EXPECT_EQ(Rows(*connection, u"select A from T"_s), u"1"_s);
        connection->CommitTrans();
        server.FailAt(1);
        EXPECT_THROW(connection->Query(u"select A from T"_s), ESqlError);
        EXPECT_EQ(server.Ran,
                  (QStringList{u"begin"_s, u"insert into T values(1)"_s, u"select A from T"_s, u"commit"_s}));
        EXPECT_EQ(server.Failed, (QStringList{u"insert into T values(2)"_s, u"select A from T"_s}));
    }
}
