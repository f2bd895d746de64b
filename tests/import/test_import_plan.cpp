// SPDX-License-Identifier: MIT
// What goes where: the mapping of tables and columns, and the plan as it is printed.
#include "ImportTesting.h"

using namespace Korvane;
using namespace Korvane::Testing;

namespace {

class ImportPlan : public DesignTest
{
protected:
    QStringList Plan(const JetStore &old)
    {
        Open();
        TDatabaseImport import;
        import.SetFileName(old.Write(Dir));
        import.SetDBDFile(&File);
        return import.Plan().Lines();
    }
};

} // namespace

TEST_F(ImportPlan, is_printed_with_all_that_has_no_place)
{
    Store.Table("CUSTOMER", "TCustomer", "客户资料")
        .Field("CUSTCODE", "varchar(10)",
               {.Name = "客户编号", .Prop = "CustCode", .Key = true, .NotNull = true})
        .Field("CONTACT", "varchar(20)", {.Name = "联系人", .Prop = "LinkMan"})
        .Field("LIMIT", "decimal(14,2)", {.Name = "信用额度", .NotNull = true})
        .Field("GRADE", "char(1)", {.Name = "等级", .NotNull = true, .Default = "B"})
        .Field("OPENDATE", "date", {.Name = "建档日期"})
        .Table("ITEM", "TItem", "物料资料")
        .Field("ITEMCODE", "varchar(20)")
        .Table("WAREHOUSE", "TWarehouse", "仓库资料")
        .Field("WHSCODE", "varchar(6)")
        .Change(3, "x");
    JetStore old;
    old.Table("customer", {TextColumn("custcode", 10),
                           TextColumn("LinkMan", 20),
                           {"信用额度", TJetType::Money, 8, true},
                           {"电话", TJetType::Memo},
                           FixedColumn("CREATOR", 10)})
        .Row({Words("C1"), {}, {}, {}, Words("u1", 10)})
        .Table("物料资料", {TextColumn("ItemCode", 20)})
        .Table("Version", {LongColumn("VerNo")})
        .Row({Long(2)})
        .Row({Long(1)})
        .Table("Log%1", {LongColumn("ID")});
    EXPECT_EQ(
        LinesOf(Plan(old)),
        LinesOf({"从 old.mdb 导入到 design.dbd 的设计（版本 3）", "旧数据库的版本为 2",
                 "customer → CUSTOMER 客户资料，约 1 行",
                 "  CREATOR 定长文本(10) → CREATOR varchar(10) 创建者",
                 "  custcode 文本(10) → CUSTCODE varchar(10) 客户编号",
                 "  LinkMan 文本(20) → CONTACT varchar(20) 联系人（按属性名）",
                 "  信用额度 货币 → LIMIT decimal(14,2) 信用额度（按名称）",
                 "  （没有旧列）→ GRADE char(1) 等级，填入默认值“B”",
                 "  （没有旧列）→ OPENDATE date 建档日期，留空",
                 "  导入时填写：CREATEDATE、MODIFIER、MODIFYDATE、CREATORGROUP",
                 "  电话 备注 → 设计中没有对应的栏位，不导入", "物料资料 → ITEM 物料资料，约 0 行",
                 "  ItemCode 文本(20) → ITEMCODE varchar(20)",
                 "  导入时填写：CREATOR、CREATEDATE、MODIFIER、MODIFYDATE、CREATORGROUP",
                 "设计中没有位置的旧表，不导入：Log%1", "没有旧表、将保持空白的表：WAREHOUSE 仓库资料"}));
}

TEST_F(ImportPlan, a_code_goes_before_a_property_and_a_property_before_a_label)
{
    // A is the property of the first field, the code of the second and the label of the third.
    Store.Table("T")
        .Field("F1", "int", {.Name = "X", .Prop = "A"})
        .Field("A", "int", {.Name = "Y", .Prop = "B"})
        .Field("F3", "int", {.Name = "A", .Prop = "C"});
    EXPECT_EQ(Plan(JetStore().Table("T", {LongColumn("a"), LongColumn("x"), LongColumn("c")})).mid(2, 3),
              QStringList({"  x 长整型 → F1 int X（按名称）", "  a 长整型 → A int Y",
                           "  c 长整型 → F3 int A（按属性名）"}));
}

TEST_F(ImportPlan, says_why_an_import_cannot_begin)
{
    Store.Table("T").Field("ID", "varchar(5)", {.Name = "编号", .Key = true}).Field("N", "int");
    JetStore old;
    old.Table("T", {LongColumn("N")}).Row({Long(1)}).Row({Long(2)});
    EXPECT_EQ(Plan(old).last(), "不能导入：表 T 的主键栏位 ID（编号）在旧表中没有对应的列");
    EXPECT_EQ(Plan(JetStore().Table("U", {LongColumn("N")})).last(),
              "不能导入：旧数据库中没有一个表在设计中有位置");
}
