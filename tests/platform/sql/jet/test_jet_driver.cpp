// SPDX-License-Identifier: MIT
#include "JetBuilder.h"
#include "JetTesting.h"

#include "platform/sql/jet/JetDriver.h"

namespace Korvane {
namespace {

using namespace Testing;

/// The rows of a packet, cells with "|" between, NULL as "NULL".
QStringList RowsOf(const TDataPacket &packet)
{
    QStringList rows;
    for (qsizetype row = 0; row < packet.RowCount(); ++row) {
        QStringList cells;
        for (int field = 0; field < packet.FieldCount(); ++field)
            cells.append(packet.Column(field).IsNull(row) ? QStringLiteral("NULL") : packet.Text(field, row));
        rows.append(cells.join(u'|'));
    }
    return rows;
}

class JetDriver : public ::testing::Test
{
protected:
    void Connect(const QString &fileName, const QString &password = {})
    {
        TConnectionString connection;
        connection.SetValue(QStringLiteral("Data Source"), fileName);
        connection.SetValue(QStringLiteral("Jet OLEDB:Database Password"), password);
        FDriver.Connect(connection, {});
    }
    QStringList Rows(const QString &statement) { return RowsOf(FDriver.Query(statement)); }
    /// What is said about a statement that fails.
    template <typename F> static QString ErrorOf(F action)
    {
        try {
            action();
        } catch (const ESqlError &error) {
            return error.Message();
        }
        return {};
    }

    TJetDriver FDriver;
    QTemporaryDir FFolder;
};

TEST_F(JetDriver, RunsSelects)
{
    Connect(Sample(QStringLiteral("orders.dbd")));
    EXPECT_EQ(Rows(QStringLiteral("select TableCode, TableName from Tables order by TableCode")).first(2),
              (QStringList{QStringLiteral("APPUSER|系统用户"), QStringLiteral("CATEGORY|物料分类")}));
    EXPECT_EQ(Rows(QStringLiteral("select count(*) from [fields] where FieldDefault is null")),
              Rows(QStringLiteral("select count(*) - count(FieldDefault) from FIELDS")));
    EXPECT_EQ(
        Rows(QStringLiteral("select top 1 t.TableCode, f.FieldCode from Tables t inner join Fields f on "
                            "t.TableCode = f.TableCode where f.FieldNo = 2 order by t.TableCode desc"))
            .size(),
        1);
    const TSqlParameter code{QStringLiteral("code"), QStringLiteral("ITEM")};
    EXPECT_EQ(RowsOf(FDriver.Query(QStringLiteral("select TableName from Tables where TableCode = :code"),
                                   {{code}})),
              QStringList{QStringLiteral("物料资料")});
    // A name within a literal is none.
    EXPECT_EQ(Rows(QStringLiteral("select 'Tables' as Fields")), QStringList{QStringLiteral("Tables")});
}

TEST_F(JetDriver, GivesTypedFields)
{
    Connect(LegacyDatabase());
    const TDataPacket packet = FDriver.Query(QStringLiteral("select * from ITEM"));
    const auto field = [&packet](QStringView name) { return packet.Field(packet.IndexOf(name)); };
    EXPECT_EQ(packet.RowCount(), 200);
    EXPECT_EQ(field(u"ITEMCODE"), (TPacketField{QStringLiteral("ITEMCODE"), ftString, 20, 0}));
    EXPECT_EQ(field(u"CREATEDATE"), (TPacketField{QStringLiteral("CREATEDATE"), ftString, 14, 0}));
    EXPECT_EQ(field(u"LEADDAYS").Type, ftSmallint);
    EXPECT_EQ(field(u"WEIGHT").Type, ftFloat);
    EXPECT_EQ(field(u"PRICE").Precision, 4);
    EXPECT_EQ(field(u"PIC").Type, ftBlob);
    EXPECT_EQ(field(u"REMARK").Type, ftMemo);
    EXPECT_EQ(packet.Value(packet.IndexOf(u"PRICE"), 0).toDouble(), 13.1);
    EXPECT_TRUE(packet.Column(packet.IndexOf(u"PIC")).IsNull(0));
}

TEST_F(JetDriver, RefusesAllThatChangesSomething)
{
    const QString path = Sample(QStringLiteral("orders.dbd"));
    const QString readOnly = QStringLiteral("数据库文件“%1”是只读的，只能执行查询").arg(path);
    Connect(path);
    EXPECT_TRUE(FDriver.HasFeature(TSqlFeature::ReadOnly));
    EXPECT_FALSE(FDriver.HasFeature(TSqlFeature::Transactions));
    EXPECT_EQ(FDriver.Execute(QStringLiteral("select * from Tables")), 0);
    for (const char *statement :
         {"delete from Tables", "update Tables set Remark = ''",
          "insert into Tables (TableCode) values ('X')", "create table T (A int)", "drop table Tables",
          "select 1; delete from Tables", "-- select\r\ndelete from Tables"}) {
        EXPECT_EQ(ErrorOf([&] { FDriver.Execute(QString::fromLatin1(statement)); }), readOnly) << statement;
        EXPECT_EQ(ErrorOf([&] { FDriver.Query(QString::fromLatin1(statement)); }), readOnly) << statement;
    }
    EXPECT_EQ(ErrorOf([&] { FDriver.BeginTransaction(); }), readOnly);
    EXPECT_EQ(Rows(QStringLiteral("select count(*) from Tables")), QStringList{QStringLiteral("12")});
    EXPECT_THROW(FDriver.Query(QStringLiteral("select * from Nowhere")), ESqlError);
}

TEST_F(JetDriver, SeesWhatOthersWrote)
{
    const QString path =
        WriteBytes(FFolder, QStringLiteral("a.dbd"), ReadBytes(Sample(QStringLiteral("orders.dbd"))));
    Connect(path);
    const QString count = QStringLiteral("select count(*) from Tables");
    EXPECT_EQ(Rows(count), QStringList{QStringLiteral("12")});
    WriteBytes(FFolder, QStringLiteral("a.dbd"), ReadBytes(Sample(QStringLiteral("empty.dbd"))));
    EXPECT_EQ(Rows(count), QStringList{QStringLiteral("0")});
    ASSERT_TRUE(QFile::remove(path));
    EXPECT_EQ(ErrorOf([&] { Rows(count); }), QStringLiteral("找不到数据库文件“%1”").arg(path));
}

TEST_F(JetDriver, ListsTablesAndColumns)
{
    Connect(Sample(QStringLiteral("orders.dbd")));
    const QStringList tables = RowsOf(FDriver.OpenSchema(siTables, {}, {}));
    EXPECT_EQ(tables.first(), QStringLiteral("MSysObjects|SYSTEM TABLE|45292"));
    EXPECT_EQ(tables.size(), 8);
    EXPECT_EQ(RowsOf(FDriver.OpenSchema(siTables, {QStringLiteral("changes"), QStringLiteral("TABLE")}, {})),
              QStringList{QStringLiteral("Changes|TABLE|45292")});
    EXPECT_TRUE(RowsOf(FDriver.OpenSchema(siTables, {QString(), QStringLiteral("VIEW")}, {})).isEmpty());
    EXPECT_EQ(RowsOf(FDriver.OpenSchema(siColumns, {QStringLiteral("Changes")}, {})),
              (QStringList{QStringLiteral("Changes|ChangeNo|1|int|NULL|N|NULL"),
                           QStringLiteral("Changes|ChangeDate|2|varchar(8)|8|Y|NULL"),
                           QStringLiteral("Changes|ChangeName|3|varchar(60)|60|Y|NULL"),
                           QStringLiteral("Changes|Remark|4|varchar(200)|200|Y|NULL"),
                           QStringLiteral("Changes|Access|5|text|NULL|Y|NULL"),
                           QStringLiteral("Changes|MSSQL|6|text|NULL|Y|NULL")}));
    EXPECT_TRUE(RowsOf(FDriver.OpenSchema(siIndexes, {}, {})).isEmpty()) << "the file has none";
    EXPECT_THROW(FDriver.OpenSchema(siProviderSpecific, {}, {}), ESqlError);
}

TEST_F(JetDriver, ListsIndexes)
{
    using TKind = TJetBuilder::TIndexKind;
    for (const bool isJet3 : {false, true}) {
        TJetBuilder builder(
            ReadBytes(Sample(isJet3 ? QStringLiteral("orders-jet3.dbd") : QStringLiteral("orders.dbd")))
                .first(4096),
            isJet3);
        builder.BeginTable(QStringLiteral("T"), {{QStringLiteral("A"), TJetType::LongInteger, 4, true},
                                                 {QStringLiteral("B"), TJetType::Text, 20, false},
                                                 {QStringLiteral("C"), TJetType::Text, 20, false}});
        builder.AddIndex(QStringLiteral("PrimaryKey"), {0}, TKind::Primary);
        builder.AddIndex(QStringLiteral("ByName"), {2, 1}, TKind::Unique);
        builder.AddIndex(QStringLiteral("TOther"), {1}, TKind::Relation);
        builder.AddIndex(QStringLiteral("B"), {1}, TKind::Plain);
        Connect(WriteBytes(FFolder, QStringLiteral("indexes.mdb"), builder.Build()));
        EXPECT_EQ(RowsOf(FDriver.OpenSchema(siIndexes, {}, {})),
                  (QStringList{QStringLiteral("T|B|B|1|N|N"), QStringLiteral("T|ByName|C|1|Y|N"),
                               QStringLiteral("T|ByName|B|2|Y|N"), QStringLiteral("T|PrimaryKey|A|1|Y|Y")}))
            << isJet3;
        EXPECT_EQ(
            RowsOf(FDriver.OpenSchema(siIndexes, {QStringLiteral("t"), QStringLiteral("byname")}, {})).size(),
            2);
    }
}

TEST_F(JetDriver, AsksForThePassword)
{
    const QString password = QStringLiteral("密码123");
    for (const char *name : {"orders.dbd", "orders-jet3.dbd"}) {
        // The head is masked by exclusive or, so that a password goes in the same way.
        QByteArray bytes = ReadBytes(Sample(QString::fromLatin1(name)));
        const bool isJet3 = bytes[0x14] == 0;
        const QByteArray mask =
            isJet3 ? QByteArray::fromHex("c3dcc2eb313233")
                   : QByteArray(reinterpret_cast<const char *>(password.utf16()), 2 * password.size());
        for (qsizetype i = 0; i < mask.size(); ++i)
            bytes[0x42 + i] = char(bytes[0x42 + i] ^ mask[i]);
        const QString path = WriteBytes(FFolder, QString::fromLatin1(name), bytes);
        const QString refusal = QStringLiteral("数据库文件“%1”设有密码，给出的密码不正确").arg(path);
        EXPECT_EQ(ErrorOf([&] { Connect(path); }), refusal);
        EXPECT_FALSE(FDriver.IsConnected());
        EXPECT_EQ(ErrorOf([&] { Connect(path, QStringLiteral("123")); }), refusal);
        Connect(path, password);
        EXPECT_EQ(Rows(QStringLiteral("select count(*) from Fields")), QStringList{QStringLiteral("108")});
    }
}

TEST_F(JetDriver, RefusesToConnectToOtherFiles)
{
    EXPECT_EQ(ErrorOf([&] { Connect({}); }), QStringLiteral("没有指定数据库文件"));
    EXPECT_EQ(ErrorOf([&] { Connect(Sample(QStringLiteral("orders.sql"))); }),
              QStringLiteral("“%1”不是有效的数据库文件").arg(Sample(QStringLiteral("orders.sql"))));
    EXPECT_EQ(ErrorOf([&] { Rows(QStringLiteral("select 1")); }), QStringLiteral("数据库没有连接"));
    EXPECT_TRUE(TJetDriver::IsJetFile(LegacyDatabase()));
    EXPECT_FALSE(TJetDriver::IsJetFile(Sample(QStringLiteral("orders.sql"))));
    EXPECT_FALSE(TJetDriver::IsJetFile(FFolder.path()));
    EXPECT_FALSE(TJetDriver::IsJetFile(FFolder.filePath(QStringLiteral("none"))));
}

} // namespace
} // namespace Korvane
