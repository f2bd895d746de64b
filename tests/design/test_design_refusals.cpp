// SPDX-License-Identifier: MIT
// Files that are no design, and databases that cannot be made or written.
#include "DatabaseTesting.h"

#include "support/ScriptedPrompts.h"

#include <QFile>

#include <unistd.h>

using namespace Korvane;
using namespace Korvane::Testing;

namespace {

using DesignRefusals = DesignTest;

class DatabaseRefusals : public DatabaseTest
{
};

void WriteFile(const QString &name, const QByteArray &bytes)
{
    QFile file(name);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

QByteArray ReadFile(const QString &name)
{
    QFile file(name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

constexpr auto ReadableFolder = QFile::ReadOwner | QFile::ExeOwner | QFile::ReadGroup | QFile::ExeGroup |
                                QFile::ReadOther | QFile::ExeOther;

/// Gives up the rights of root for as long as it lives, so that permissions count.
class TPlainUser
{
public:
    TPlainUser() : FWas(geteuid()) { FDone = FWas != 0 || seteuid(65534) == 0; }
    ~TPlainUser()
    {
        if (FDone && FWas == 0 && seteuid(0) != 0)
            std::abort();
    }
    bool Done() const { return FDone; }

private:
    const uid_t FWas;
    bool FDone = false;
};

} // namespace

TEST_F(DesignRefusals, files_that_are_no_design)
{
    WriteFile(Dir.filePath("text.dbd"), "create table Tables(TableCode text);\n这是文本\n");
    WriteFile(Dir.filePath("empty.dbd"), "");
    WriteFile(Dir.filePath("short.dbd"), "SQLite format 3");
    WriteFile(Dir.filePath("header.dbd"), QByteArray("SQLite format 3\0", 16) + QByteArray(84, '\xff'));
    WriteFile(Dir.filePath("jet.dbd"), ReadFile(OrdersDesign).left(5000));
    const struct
    {
        QString Name;
        const char *Message; ///< its start
    } rows[] = {
        {"", "没有指定数据库文件"},
        {Dir.filePath("nowhere.dbd"), "找不到数据库文件："},
        {Dir.filePath("nowhere/a.dbd"), "找不到数据库文件："},
        {Dir.path(), "这是文件夹，不是数据库文件："},
        {Dir.filePath("text.dbd"), "不是有效的数据库文件："},
        {Dir.filePath("empty.dbd"), "不是有效的数据库文件："},
        {Dir.filePath("short.dbd"), "不是有效的数据库文件："},
        {Dir.filePath("header.dbd"), "不是有效的数据库文件："},
        {Dir.filePath("jet.dbd"), ""},
    };
    for (const auto &row : rows) {
        File.SetFileName(row.Name);
        const QString message = MessageOf([&] { File.SetActived(true); });
        EXPECT_NE(message, "nothing") << row.Name.toStdString();
        EXPECT_TRUE(message.startsWith(row.Message)) << message.toStdString();
        EXPECT_TRUE(message.contains(row.Name)) << message.toStdString();
        EXPECT_FALSE(File.Actived());
        EXPECT_EQ(MessageOf([&] { File.GetTables(); }), ClosedMessage);
    }
    Open();
    EXPECT_TRUE(File.Actived());
}

TEST_F(DesignRefusals, a_design_without_one_of_its_tables_or_columns)
{
    Open();
    const struct
    {
        const char *Table;
        QStringList Columns;
    } tables[] = {
        {"Tables", {"TableClass", "TableName", "Remark"}},
        {"Fields",
         {"FieldCode", "FieldName", "FieldProp", "FieldType", "FieldPrecision", "FieldSize", "IsAuto",
          "IsKey", "IsNotNull", "FieldDefault", "Remark"}},
        {"Indexs", {"TableCode", "IndexCode", "IndexName", "IndexFields", "IsCluster", "IsUnique"}},
        {"Querys", {"QueryClass", "QueryName", "Remark", "Tables", "Access", "MSSQL"}},
        {"Columns", {"ColumnName", "Expression", "Alias", "TableField"}},
        {"Commands", {"CommandName", "Remark", "Access", "MSSQL"}},
        {"Changes", {"ChangeDate", "ChangeName", "Remark", "Access", "MSSQL"}},
    };
    const auto expectRefused = [&](const QString &what) {
        const QString message = MessageOf([&] { File.SetActived(true); });
        EXPECT_TRUE(message.startsWith("不是有效的数据库设计文件：" + Store.FileName()))
            << message.toStdString();
        EXPECT_TRUE(message.contains(what)) << message.toStdString();
        EXPECT_EQ(MessageOf([&] { File.GetTables(); }), ClosedMessage) << "all or nothing";
    };
    for (const auto &table : tables) {
        for (const QString &column : table.Columns) {
            Store.Run(QString("alter table %1 rename column %2 to Gone").arg(table.Table, column));
            expectRefused(column);
            Store.Run(QString("alter table %1 rename column Gone to %2").arg(table.Table, column));
        }
        Store.Run(QString("alter table %1 rename to Gone").arg(table.Table));
        expectRefused(table.Table);
        Store.Run(QString("alter table Gone rename to %1").arg(table.Table));
    }
    File.SetActived(true);
    EXPECT_EQ(File.GetTables().size(), 0);
}

TEST_F(DesignRefusals, a_design_cut_at_every_page)
{
    const QString name = Dir.filePath("orders.dbd");
    OrdersStore(name);
    const QByteArray whole = ReadFile(name);
    File.SetFileName(Dir.filePath("cut.dbd"));
    int cuts = 0;
    for (qsizetype size = 4096; size < whole.size(); size += 4096, ++cuts) {
        WriteFile(File.FileName(), whole.left(size));
        EXPECT_THROW(File.SetActived(true), Exception) << size << " of " << whole.size();
    }
    EXPECT_GT(cuts, 5);
    WriteFile(File.FileName(), whole);
    File.SetActived(true);
    EXPECT_EQ(File.GetTables().size(), 12);
}

TEST_F(DesignRefusals, a_file_that_may_not_be_read)
{
    Store.Table("T");
    ASSERT_TRUE(QFile::setPermissions(Dir.path(), ReadableFolder | QFile::WriteOwner));
    ASSERT_TRUE(QFile::setPermissions(Store.FileName(), QFile::ReadOwner | QFile::WriteOwner));
    File.SetFileName(Store.FileName());
    {
        const TPlainUser user;
        if (!user.Done() || QFile(Store.FileName()).isReadable())
            GTEST_SKIP() << "permissions do not count here";
        const QString message = MessageOf([&] { File.SetActived(true); });
        EXPECT_TRUE(message.startsWith("不能打开数据库文件：" + Store.FileName())) << message.toStdString();
    }
    // A file that may be read and not written is a design like any other.
    ASSERT_TRUE(
        QFile::setPermissions(Store.FileName(), QFile::ReadOwner | QFile::ReadGroup | QFile::ReadOther));
    const TPlainUser user;
    File.SetActived(true);
    EXPECT_EQ(File.GetTables().size(), 1);
}

TEST_F(DesignRefusals, a_design_is_only_read)
{
    Open();
    const QByteArray before = ReadFile(Store.FileName());
    File.GetCheckSQL();
    File.Refresh(rtAll);
    File.SetActived(false);
    EXPECT_EQ(ReadFile(Store.FileName()), before);
    EXPECT_EQ(QDir(Dir.path()).entryList(QDir::Files), QStringList("design.dbd"))
        << "nothing is left beside it";
}

TEST_P(DatabaseRefusals, a_folder_that_may_not_be_written)
{
    OpenOrders();
    const QString name = Session.DBName();
    const QString folder = GetParam() == dbtMSSQL ? Dir.filePath("server") : Dir.path();
    ASSERT_TRUE(QFile::setPermissions(folder, ReadableFolder));
    ASSERT_TRUE(QFile::setPermissions(Dir.path(), ReadableFolder));
    {
        const TPlainUser user;
        if (!user.Done())
            GTEST_SKIP() << "permissions do not count here";
        const QString message = MessageOf([&] { Design.CreateDB(Session, true); });
        EXPECT_TRUE(message.contains(folder)) << message.toStdString();
    }
    ASSERT_TRUE(QFile::setPermissions(Dir.path(), ReadableFolder | QFile::WriteOwner));
    ASSERT_TRUE(QFile::setPermissions(folder, ReadableFolder | QFile::WriteOwner));
    EXPECT_EQ(QDir(folder).entryList(QDir::Files), QStringList()) << "nothing is left behind";
    Session.SetDBName(name);
    EXPECT_TRUE(Design.CreateDB(Session, true)) << "later it works";
}

TEST_P(DatabaseRefusals, places_where_no_database_can_be)
{
    OpenOrders();
    const QStringList names = GetParam() == dbtAccess ? QStringList{"", Dir.filePath("nowhere/a.mdb")}
                                                      : QStringList{"", "../escaped", "a/b"};
    for (const QString &name : names) {
        Session.SetDBName(name);
        EXPECT_NE(MessageOf([&] { Design.CreateDB(Session, true); }), "nothing") << name.toStdString();
        EXPECT_FALSE(QFile::exists(Dir.filePath("escaped.db")));
    }
    if (GetParam() == dbtMSSQL) {
        Session.SetDBServer("folder:" + Dir.filePath("nowhere"));
        Session.SetDBName("orders");
        EXPECT_EQ(MessageOf([&] { Design.CreateDB(Session, true); }),
                  "找不到数据库服务器的文件夹：" + Dir.filePath("nowhere"));
    }
}

TEST_P(DatabaseRefusals, a_password_given_at_creation_is_asked_for)
{
    DesignStore store(Dir.filePath("design.dbd"));
    store.Table("T").Field("X", "int");
    Design.SetFileName(store.FileName());
    Design.SetActived(true);
    Session.SetDBPassword("秘密;'\"");
    EXPECT_TRUE(Design.CreateDB(Session, false));
    Session.SetConnected(true);
    EXPECT_EQ(Session.GetVersion(), 0);
    Session.SetConnected(false);
    Session.SetDBPassword("");
    EXPECT_NE(MessageOf([&] { Session.SetConnected(true); }), "nothing");
}

TEST_P(DatabaseRefusals, a_lock_held_by_another_connection)
{
    DesignStore store(Dir.filePath("design.dbd"));
    store.Table("T").Field("X", "int");
    Design.SetFileName(store.FileName());
    Design.SetActived(true);
    Design.CreateDB(Session, false);
    Session.SetConnected(true);
    const QString file = GetParam() == dbtAccess ? Session.DBName() : Dir.filePath("server/orders.db");
    const QString busy = "数据库正被其他用户锁定，请稍后再试：" + file;
    TADOConnection other;
    other.SetConnectionString(GetParam() == dbtAccess
                                  ? AccessConnectionString(Session.DBName(), "Admin", "")
                                  : MSSQLConnectionString(Session.DBServer(), "orders", "sa", "", "design"));
    other.SetCommandTimeout(0);
    other.SetConnected(true);
    Session.BeginTrans();
    Session.Execute(QString("insert into T(X) values(1)"));
    EXPECT_TRUE(MessageOf([&] { other.Execute("insert into T(X) values(2)"); }).startsWith(busy));
    EXPECT_TRUE(MessageOf([&] { other.BeginTrans(); }).startsWith(busy));
    EXPECT_TRUE(MessageOf([&] { other.Execute("create table A1(X int)"); }).startsWith(busy));
    EXPECT_EQ(other.Query("select count(*) from T").Text(0, 0), "0")
        << "reading goes on, as of the last commit";
    Session.CommitTrans();
    other.Execute("insert into T(X) values(2)");
    EXPECT_EQ(Rows("select X from T order by X"), QStringList({"1", "2"}));
}

INSTANTIATE_TEST_SUITE_P(Places, DatabaseRefusals, testing::ValuesIn(EmbeddedPlaces()), PlaceName);
