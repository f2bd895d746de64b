// SPDX-License-Identifier: MIT
// A first design out of the old tables, and imports with it.
#include "ImportTesting.h"

#include "design/RecordHeader.h"
#include "import/DesignNames.h"
#include "support/ScriptedPrompts.h"

using namespace Korvane;
using namespace Korvane::Testing;

namespace {

class JetDesign : public ImportTest
{
protected:
    /// The fields of a table as "CODE Prop type(size,precision) flags label".
    QStringList Fields(const QString &table)
    {
        QStringList lines;
        for (const auto &field : Design.GetTableFields(table))
            lines.append(QString("%1 %2 %3(%4,%5)%6%7%8 %9")
                             .arg(field->FieldCode, field->FieldProp, field->FieldType,
                                  QString::number(field->FieldSize), QString::number(field->FieldPrecision),
                                  field->IsKey ? " key" : "", field->IsNotNull ? " required" : "",
                                  field->IsAuto ? " auto" : "", field->FieldName));
        return lines;
    }
};

} // namespace

INSTANTIATE_TEST_SUITE_P(Dialects, JetDesign, testing::ValuesIn(EmbeddedPlaces()), PlaceName);

TEST_P(JetDesign, an_import_with_the_design_of_the_old_tables_takes_in_every_row)
{
    const QString design = Dir.filePath("old.store");
    Import.SetFileName(LegacyDatabase());
    const QStringList lines = Import.WriteDesign(design);
    EXPECT_EQ(lines.first(), "CUSTOMER → CUSTOMER（TCustomer），14 个栏位");
    EXPECT_EQ(lines.last(), "Version → 数据库版本 6");
    Open(design);
    for (const TImportTable &table : Import.Plan().Tables)
        for (const TImportColumn &column : table.Columns)
            EXPECT_EQ(column.Match, TImportMatch::Code) << qPrintable(table.Code + '.' + column.Code);
    Import.Run();
    EXPECT_EQ(Import.Report().RowCount(), 1534);
    EXPECT_EQ(Import.Report().Tables.size(), 8);
    Session.SetConnected(true);
    EXPECT_EQ(Session.GetVersion(), 6);
    TJetFile old(LegacyDatabase());
    for (const TImportedTable &table : Import.Report().Tables) {
        EXPECT_EQ(table.RowCount, RowsOf(old, table.OldName).size());
        EXPECT_EQ(table.ColumnCount, old.Columns(table.OldName).size());
    }
}

TEST_P(JetDesign, types_keys_indexes_and_names_come_from_the_old_file)
{
    using TKind = TJetBuilder::TIndexKind;
    JetStore old;
    old.Table("客户资料", {{"编号", TJetType::LongInteger, 4, true, 0, 0, true, true},
                           TextColumn("客户名称", 60),
                           FixedColumn("等级", 1),
                           {"信用 额度", TJetType::Money, 8, true},
                           {"折扣", TJetType::Single, 4, true},
                           {"建档", TJetType::DateTime, 8, true},
                           {"修改", TJetType::DateTime, 8, true},
                           {"停用", TJetType::Boolean, 1, true},
                           {"照片", TJetType::Ole},
                           {"备注", TJetType::Memo},
                           {"Order", TJetType::Byte, 1, true},
                           {"ORDER_", TJetType::Decimal, 17, true, 12, 3},
                           {"3月", TJetType::Integer, 2, true, 0, 0, true},
                           TextColumn("CREATOR", 10)})
        .Index("PrimaryKey", {0}, TKind::Primary)
        .Index("编号", {0}, TKind::Plain)
        .Index("客户名称", {1, 2}, TKind::Unique)
        .Index("客户资料其他", {1}, TKind::Relation);
    old.Row({Long(1),
             Words("甲"),
             Words("A"),
             Money(12345),
             TJetBuilder::Int(0x3f000000, 4),
             TJetBuilder::DoubleBytes(45322),
             TJetBuilder::DoubleBytes(45322.5),
             QByteArray(),
             {},
             Memo("注"),
             TJetBuilder::Int(5, 1),
             Decimal(1500),
             Short(3),
             Words("u1")});
    old.Table("客户 资料", {TextColumn("a%1", 5)}).Row({Words("x")});
    Import.SetFileName(old.Write(Dir));
    const QString design = Dir.filePath("old.store");
    EXPECT_EQ(LinesOf(Import.WriteDesign(design)),
              LinesOf({"客户资料 → KEHUZILIAO（TKeHuZiLiao），13 个栏位", "  编号 → BIANHAO",
                       "  客户名称 → KEHUMINGCHENG", "  等级 → DENGJI", "  信用 额度 → XINYONGEDU",
                       "  折扣 → ZHEKOU", "  建档 → JIANDANG", "  修改 → XIUGAI", "  停用 → TINGYONG",
                       "  照片 → ZHAOPIAN", "  备注 → BEIZHU", "  Order → ORDER_2", "  3月 → F3YUE",
                       "客户 资料 → KEHUZILIAO2（TKeHuZiLiao2），1 个栏位", "  a%1 → A1"}));
    Open(design);
    EXPECT_EQ(LinesOf(Fields("KEHUZILIAO")),
              LinesOf({"BIANHAO BianHao int(8,0) key required auto 编号",
                       "KEHUMINGCHENG KeHuMingCheng varchar(60,0) 客户名称", "DENGJI DengJi char(1,0) 等级",
                       "XINYONGEDU XinYongEDu decimal(19,4) 信用 额度", "ZHEKOU ZheKou float(8,0) 折扣",
                       "JIANDANG JianDang date(8,0) 建档", "XIUGAI XiuGai datetime(14,0) 修改",
                       "TINGYONG TingYong boolean(1,0) 停用", "ZHAOPIAN ZhaoPian image(0,0) 照片",
                       "BEIZHU BeiZhu text(0,0) 备注", "ORDER_2 Order smallint(6,0) Order",
                       "ORDER_ Order2 decimal(12,3) ORDER_", "F3YUE F3yue smallint(6,0) required 3月"}));
    QStringList indexes;
    for (const auto &index : Design.GetTableIndexs("KEHUZILIAO"))
        indexes.append(RowText(*index));
    EXPECT_EQ(indexes,
              QStringList("KEHUZILIAO|UX_KEHUZILIAO_KEHUMINGCHENG|客户名称|KEHUMINGCHENG;DENGJI|False|True"));
    Import.Run();
    EXPECT_EQ(
        Imported("select CREATOR, BIANHAO, KEHUMINGCHENG, DENGJI, XINYONGEDU, ZHEKOU, JIANDANG, XIUGAI, "
                 "TINGYONG, ZHAOPIAN, BEIZHU, ORDER_2, ORDER_, F3YUE from KEHUZILIAO"),
        QStringList("u1|1|甲|A|1.2345|0.5|20240131|20240131120000|Y|~|注|5|1.5|3"));
    EXPECT_EQ(Imported("select A1 from KEHUZILIAO2"), QStringList("x"));
}

TEST_P(JetDesign, an_existing_design_is_overwritten_only_when_the_user_agrees)
{
    const QString design = Dir.filePath("old.store");
    Import.SetFileName(JetStore().Table("T", {LongColumn("N")}).Write(Dir));
    Import.WriteDesign(design);
    const QByteArray before = ReadBytes(design);
    Import.SetFileName(JetStore().Table("U", {LongColumn("N")}).Write(Dir));
    for (const int answer : {IDNO, IDYES}) {
        const PromptScript script({answer});
        EXPECT_EQ(MessageOf([&] { Import.WriteDesign(design); }),
                  answer == IDNO ? "没有写入设计文件：" + design : "nothing");
        EXPECT_EQ(ReadBytes(design) == before, answer == IDNO);
    }
    EXPECT_EQ(MessageOf([&] { Import.WriteDesign(Import.FileName()); }),
              "设计文件不能是旧数据库文件本身：" + Import.FileName());
    const QString nowhere = Dir.filePath("none/old.store");
    EXPECT_NE(MessageOf([&] { Import.WriteDesign(nowhere); }), "nothing");
    EXPECT_EQ(QDir(Dir.path()).entryList({"*.part"}), QStringList());
}

TEST(DesignNames, are_valid_and_differ)
{
    const struct
    {
        const char *Name;
        const char *Code;
        const char *Property;
    } rows[] = {
        {"CUST_CODE", "CUST_CODE", "CustCode"},
        {"cust_code", "CUST_CODE2", "CustCode2"},
        {"Order Date", "ORDERDATE", "OrderDate"},
        {"订单日期", "DINGDANRIQI", "DingDanRiQi"},
        {"定单日期", "DINGDANRIQI2", "DingDanRiQi2"},
        {"unitPrice", "UNITPRICE", "UnitPrice"},
        {"select", "SELECT_", "Select"},
        {"Key Values", "KEYVALUES", "KeyValuesField"},
        {"单价(元)", "DANJIAYUAN", "DanJiaYuan"},
        {"%", "F", "F"},
        {"_x", "X", "X"},
        {"2nd", "F2ND", "F2nd"},
        {"客户", "KEHU2", "KeHu2"},
        {"KeHu", "KEHU", "KeHu"},
    };
    TDesignNames names({"or der", "KeHu", "客户"});
    for (const auto &row : rows) {
        EXPECT_EQ(names.Code(row.Name), row.Code);
        EXPECT_EQ(names.Property(row.Name), row.Property);
    }
    const QString longName = QString("很长的名称").repeated(9);
    EXPECT_EQ(names.Code(longName).size(), 40);
    EXPECT_TRUE(names.Code(longName).endsWith('2'));
}
