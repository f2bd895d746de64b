// SPDX-License-Identifier: MIT
// The tool's commands from end to end, on real databases.
#include "ToolTesting.h"

#include "design/DBDFile.h"
#include "platform/core/StringList.h"

using namespace Korvane;
using namespace Korvane::Testing;
using namespace Qt::StringLiterals;

namespace {

const QString Orders = QStringLiteral(KORVANE_EXAMPLES_DIR "/orders.dbd");

QByteArray FileBytes(const QString &fileName)
{
    QFile file(fileName);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << qPrintable(fileName);
    return file.readAll();
}

class KorvaneToolTest : public DialectToolTest
{
protected:
    QString Version() const
    {
        return Sql(u"select VerNo from Version"_s, {u"--csv"_s}).Out.section(u"\r\n"_s, 1, 1);
    }

    /// A database of one table with NULLs in an audit column, a number and a picture.
    void MakeGoods() const
    {
        DesignStore(Path(u"goods.dbd"_s))
            .Table(u"GOODS"_s, u"TGoods"_s, u"商品"_s)
            .Field(u"CODE"_s, u"varchar(10)"_s, {.Name = u"编号"_s, .Key = true, .NotNull = true})
            .Field(u"QTY"_s, u"int"_s, {.Name = u"数量"_s, .Default = u"7"_s})
            .Field(u"PIC"_s, u"image"_s, {.Name = u"图片"_s});
        ASSERT_EQ(OnDatabase({u"create"_s, Path(u"goods.dbd"_s)}).Status, 0);
        const QString insert =
            u"insert into GOODS(CREATOR,CREATEDATE,MODIFIER,MODIFYDATE,CREATORGROUP,CODE,QTY) values"_s;
        const ToolRun run = Sql(insert + u"('a','20240101000000','a','20240101000000','g','A1',5)\ngo\n"_s +
                                insert + u"(null,'20240101000000','a','20240101000000','g','A2',null)"_s);
        ASSERT_EQ(run.Out, u"1 行受影响\n1 行受影响\n"_s) << qPrintable(run.Err);
    }

    const QString FNulls = u"表.栏位       | 名称        | 空值行数\n"
                           "--------------+-------------+---------\n"
                           "GOODS.CREATOR | 商品.创建者 |        1\n"
                           "GOODS.QTY     | 商品.数量   |        1\n"
                           "GOODS.PIC     | 商品.图片   |        2\n"_s;
};

} // namespace

INSTANTIATE_TEST_SUITE_P(Dialects, KorvaneToolTest, testing::Values("access", "mssql"), DialectName);

TEST_P(KorvaneToolTest, creates_the_database_of_a_design_at_its_latest_version)
{
    const ToolRun run = OnDatabase({u"create"_s, Orders});
    EXPECT_EQ(run.Status, 0) << qPrintable(run.Err);
    EXPECT_EQ(run.Out, u"已创建数据库 %1：12 个表，版本 6\n"_s.arg(Database().last()));
    EXPECT_EQ(run.Err, QString());
    EXPECT_EQ(Version(), u"6"_s);
    EXPECT_EQ(Sql(u"select CREATOR,WHSCODE,REMARK from WAREHOUSE"_s).Out,
              u"CREATOR | WHSCODE | REMARK\n--------+---------+-------\n"_s);

    const ToolRun upgrade = OnDatabase({u"upgrade"_s, u"--design"_s, Orders});
    EXPECT_EQ(upgrade.Status, 0);
    EXPECT_EQ(upgrade.Out, u"数据库已是最新版本，不需升级\n"_s);
    EXPECT_EQ(upgrade.Err, QString());
    const ToolRun check = OnDatabase({u"check"_s, Orders});
    EXPECT_EQ(check.Status, 0);
    EXPECT_TRUE(check.Out.endsWith(u" 个栏位，0 个有空值\n"_s)) << qPrintable(check.Out);
    EXPECT_EQ(OnDatabase({u"repair"_s, Orders}).Out, u"没有空值，不需填充\n"_s);
}

TEST_P(KorvaneToolTest, overwrites_a_database_only_when_the_user_agrees)
{
    const bool access = GetParam() == "access"_L1;
    const QString question =
        access ? u"数据库已经存在，是否覆盖现有的数据库？"_s : u"数据库已经存在，是否覆盖现有的数据库?"_s;
    const QString refusal = access ? u"创建数据库失败\n"_s : u"创建数据库已被用户取消\n"_s;
    const QString ask = u" [是/y 否/n]："_s;
    const QString noTerminal = u" 否（没有终端可以询问，选项 --yes 表示同意）\n"_s;
    const struct
    {
        QStringList Options;
        ToolSetting Setting;
        bool Overwrites;
        QString Err;
    } rows[] = {
        {{}, {.Input = u"y\n"_s}, false, question + noTerminal + refusal},
        {{}, {.Input = u"n\n"_s, .HasReader = true}, false, question + ask + refusal},
        {{}, {.Input = u""_s, .HasReader = true}, false, question + ask + refusal},
        {{}, {.Input = u"maybe\n\n 否 \n"_s, .HasReader = true}, false, question + ask + ask + ask + refusal},
        {{}, {.Input = u"Y\n"_s, .HasReader = true}, true, question + ask},
        {{}, {.Input = u"是\n"_s, .HasReader = true}, true, question + ask},
        {{u"--yes"_s}, {}, true, question + u" 是\n"_s},
    };
    DesignStore(Path(u"empty.dbd"_s));
    const QStringList create = {u"create"_s, Path(u"empty.dbd"_s)};
    ASSERT_EQ(OnDatabase(create).Status, 0);
    for (const auto &row : rows) {
        ASSERT_EQ(Sql(u"update Version set VerNo=99"_s).Status, 0);
        const ToolRun run = OnDatabase(create + row.Options, row.Setting);
        EXPECT_EQ(run.Status, row.Overwrites ? 0 : 1);
        EXPECT_EQ(run.Err, row.Err);
        EXPECT_EQ(Version(), row.Overwrites ? u"0"_s : u"99"_s);
    }
}

TEST_P(KorvaneToolTest, upgrades_through_the_changes_that_are_missing)
{
    DesignStore store(Path(u"a.dbd"_s));
    store.Change(1, u"create table T(N int null)"_s);
    ASSERT_EQ(OnDatabase({u"create"_s, store.FileName()}).Status, 0);
    store.Change(2, u"create table T(N int null)\r\ngo\r\n"_s)
        .Change(3, u"insert into T(N) values(1)\r\ngo\r\ninsert into T(N)\r\n  values(2)\r\n"_s);
    const ToolRun run = OnDatabase({u"upgrade"_s, store.FileName()});
    EXPECT_EQ(run.Status, 0) << qPrintable(run.Err);
    EXPECT_EQ(run.Out, u"已从版本 1 升级到版本 3，执行了 3 批语句\n"_s);
    EXPECT_EQ(Version(), u"3"_s);
    EXPECT_EQ(Sql(u"select sum(N) as N from T"_s).Out, u"N\n-\n3\n"_s);
}

TEST_P(KorvaneToolTest, a_broken_upgrade_tells_what_ran_and_leaves_the_version)
{
    DesignStore store(Path(u"a.dbd"_s));
    ASSERT_EQ(OnDatabase({u"create"_s, store.FileName()}).Status, 0);
    store.Change(1, u"create table T(\r\n  N int null)\r\ngo\r\n"_s)
        .Change(
            2,
            u"insert into T(N) values(1)\r\ngo\r\ninsert into NOWHERE(N) values(1)\r\ngo\r\ndrop table T"_s);
    const ToolRun run = OnDatabase({u"upgrade"_s, store.FileName()});
    EXPECT_EQ(run.Status, 1);
    EXPECT_EQ(run.Out, QString());
    EXPECT_TRUE(run.Err.section(u'\n', 0, 0).contains(u"NOWHERE"_s)) << qPrintable(run.Err);
    EXPECT_EQ(run.Err.section(u'\n', 1), u"insert into NOWHERE(N) values(1)\n"
                                         "升级没有完成，数据库版本仍为 0。\n"
                                         "失败之前执行的 2 批语句已经生效：\n"
                                         "   1. create table T(\n"
                                         "      N int null)\n"
                                         "   2. insert into T(N) values(1)\n"_s);
    EXPECT_EQ(Version(), u"0"_s);
    EXPECT_EQ(Sql(u"select N from T"_s).Out, u"N\n-\n1\n"_s);

    // The same again: now the very first batch fails.
    const ToolRun again = OnDatabase({u"upgrade"_s, store.FileName()});
    EXPECT_EQ(again.Status, 1);
    EXPECT_TRUE(again.Err.endsWith(u"升级没有完成，数据库版本仍为 0。\n失败之前没有执行任何语句。\n"_s))
        << qPrintable(again.Err);
}

TEST_P(KorvaneToolTest, check_lists_the_columns_with_nulls)
{
    MakeGoods();
    const ToolRun run = OnDatabase({u"check"_s, Path(u"goods.dbd"_s)});
    EXPECT_EQ(run.Status, 1);
    EXPECT_EQ(run.Out, FNulls + u"检查了 8 个栏位，3 个有空值\n"_s);
    EXPECT_EQ(run.Err, QString());
}

TEST_P(KorvaneToolTest, repair_asks_and_then_fills_what_has_a_value)
{
    MakeGoods();
    const QString question = u"是否填充以上空值？"_s;
    const ToolRun refused =
        OnDatabase({u"repair"_s, Path(u"goods.dbd"_s)}, {.Input = u"n\n"_s, .HasReader = true});
    EXPECT_EQ(refused.Status, 1);
    EXPECT_EQ(refused.Out, FNulls);
    EXPECT_EQ(refused.Err, question + u" [是/y 否/n]：没有填充空值\n"_s);
    EXPECT_EQ(OnDatabase({u"check"_s, Path(u"goods.dbd"_s)}).Out,
              FNulls + u"检查了 8 个栏位，3 个有空值\n"_s);

    const ToolRun run = OnDatabase({u"repair"_s, Path(u"goods.dbd"_s), u"--yes"_s});
    EXPECT_EQ(run.Status, 0) << qPrintable(run.Err);
    EXPECT_EQ(run.Err, question + u" 是\n"_s);
    EXPECT_EQ(run.Out, FNulls + u"GOODS.CREATOR 填充了 1 行\n"
                                "GOODS.QTY 填充了 1 行\n"
                                "共填充 2 个栏位的 2 个空值\n"
                                "以下栏位没有可填充的值，仍有空值：\n"
                                "表.栏位   | 名称      | 空值行数\n"
                                "----------+-----------+---------\n"
                                "GOODS.PIC | 商品.图片 |        2\n"_s);
    EXPECT_EQ(Sql(u"select CREATOR,QTY from GOODS order by CODE"_s).Out,
              u"CREATOR | QTY\n--------+----\na       |   5\nadmin   |   7\n"_s);
}

TEST_P(KorvaneToolTest, a_repair_that_fails_leaves_everything_as_it_was)
{
    MakeGoods();
    ASSERT_EQ(
        Sql(u"create unique index UX on GOODS(QTY)\ngo\nupdate GOODS set QTY=7 where CODE='A1'"_s).Status, 0);
    const ToolRun run = OnDatabase({u"repair"_s, Path(u"goods.dbd"_s), u"--yes"_s});
    EXPECT_EQ(run.Status, 1);
    EXPECT_EQ(run.Out, FNulls);
    EXPECT_TRUE(run.Err.endsWith(u"\nupdate GOODS set QTY = 7 where QTY is null\n"_s)) << qPrintable(run.Err);
    EXPECT_EQ(OnDatabase({u"check"_s, Path(u"goods.dbd"_s)}).Out,
              FNulls + u"检查了 8 个栏位，3 个有空值\n"_s);
}

TEST_P(KorvaneToolTest, progress_is_told_when_asked_for_or_on_a_terminal)
{
    DesignStore store(Path(u"a.dbd"_s));
    store.Table(u"A"_s).Field(u"X"_s, u"int"_s).Table(u"B"_s).Field(u"X"_s, u"int"_s);
    EXPECT_EQ(OnDatabase({u"create"_s, store.FileName(), u"--progress"_s}).Err,
              u"正在创建表 1/2\n正在创建表 2/2\n"_s);
    EXPECT_EQ(OnDatabase({u"check"_s, store.FileName()}).Err, QString());
    const QString clear = u"\r\x1b[K"_s;
    const ToolRun terminal = OnDatabase({u"check"_s, store.FileName()}, {.ShowsLines = true});
    EXPECT_TRUE(terminal.Err.startsWith(clear + u"正在检查栏位 1/12"_s + clear)) << qPrintable(terminal.Err);
    EXPECT_TRUE(terminal.Err.endsWith(clear + u"正在检查栏位 12/12"_s + clear)) << qPrintable(terminal.Err);
}

TEST_P(KorvaneToolTest, booleans_are_made_as_characters_on_demand)
{
    // A default that is neither Y nor N tells the two apart, whatever the engine makes of bit.
    DesignStore(Path(u"a.dbd"_s))
        .Table(u"T"_s)
        .Field(u"N"_s, u"int"_s)
        .Field(u"B"_s, u"boolean"_s, {.Default = u"X"_s});
    QStringList create = {u"create"_s, Path(u"a.dbd"_s), u"--yes"_s};
    for (const QString &value : {u"N"_s, u"X"_s}) {
        ASSERT_EQ(OnDatabase(create).Status, 0);
        EXPECT_EQ(Sql(u"insert into T(N) values(1)\ngo\nselect B from T"_s).Out,
                  u"1 行受影响\nB\n-\n"_s + value + u'\n');
        create.append(u"--bool-as-char"_s);
    }
}

TEST_F(ToolTest, script_prints_what_the_design_file_generates)
{
    for (const TDBType type : {dbtAccess, dbtMSSQL}) {
        for (int flags = 0; flags < 8; ++flags) {
            TDBDFile design;
            design.SetFileName(Orders);
            design.SetActived(true);
            const QString expected = TextOf(design.CreateScript(type, flags & 1, flags & 2, flags & 4));
            QStringList arguments = {u"script"_s, Orders, u"--dialect"_s,
                                     type == dbtAccess ? u"access"_s : u"mssql"_s};
            if (flags & 1)
                arguments.append(u"--comments"_s);
            if (flags & 2)
                arguments.append(u"--bool-as-char"_s);
            if (flags & 4)
                arguments.append(u"--properties"_s);
            EXPECT_EQ(RunKorvane(arguments).Out, expected);
            const ToolRun file = RunKorvane(arguments + QStringList{u"--output"_s, Path(u"a.sql"_s)});
            EXPECT_EQ(file.Out, QString());
            EXPECT_EQ(FileBytes(Path(u"a.sql"_s)), expected.toUtf8());
        }
    }
}

TEST_F(ToolTest, tables_and_fields_show_the_design)
{
    const QString tables = RunKorvane({u"tables"_s, Orders}).Out;
    EXPECT_TRUE(tables.startsWith(u"表        | 类           | 名称     | 备注\n"
                                  "----------+--------------+----------+-----------------------------------\n"
                                  "APPUSER   | TAppUser     | 系统用户 | 登录用户及其用户组\n"_s))
        << qPrintable(tables);
    EXPECT_EQ(tables.count(u'\n'), 14);
    const QString unit = u"栏位     | 名称     | 属性     | 类型        | 标志      | 默认值 | 备注\n"
                         "---------+----------+----------+-------------+-----------+--------+-----\n"
                         "UNITCODE | 单位编号 | UnitCode | varchar(6)  | 主键 非空 |        | \n"
                         "UNITNAME | 单位     | UnitName | varchar(10) | 非空      |        | \n"
                         "DIGITS   | 小数位数 | Digits   | smallint    |           | 0      | \n"
                         "ISBASE   | 基本单位 | IsBase   | boolean     |           | Y      | \n"_s;
    EXPECT_EQ(RunKorvane({u"fields"_s, Orders, u"UNIT"_s}).Out, unit);
    EXPECT_EQ(RunKorvane({u"fields"_s, u"--design"_s, Orders, u"TUnit"_s}).Out, unit);
    EXPECT_TRUE(RunKorvane({u"fields"_s, Orders, u"ITEM"_s}).Out.contains(u"| decimal(12,4) |"_s));
    EXPECT_TRUE(RunKorvane({u"fields"_s, Orders, u"CHANGELOG"_s}).Out.contains(u"| 主键 非空 自动 |"_s));
    EXPECT_EQ(RunKorvane({u"fields"_s, Orders, u"QMYORDER"_s}).Out,
              u"别名      | 名称     | 类型          | 表达式             | 来源\n"
              "----------+----------+---------------+--------------------+-------------------\n"
              "BillType  | 单别     | char(4)       | ORDERHEAD.BILLTYPE | ORDERHEAD.BILLTYPE\n"
              "BillCode  | 单号     | varchar(12)   | ORDERHEAD.BILLCODE | ORDERHEAD.BILLCODE\n"
              "BillDate  | 单据日期 | date          | ORDERHEAD.BILLDATE | ORDERHEAD.BILLDATE\n"
              "CustCode  | 客户编号 | varchar(10)   | ORDERHEAD.CUSTCODE | ORDERHEAD.CUSTCODE\n"
              "CustName  | 客户名称 | varchar(60)   | CUSTOMER.CUSTNAME  | CUSTOMER.CUSTNAME\n"
              "Amount    | 总金额   | decimal(16,2) | ORDERHEAD.AMOUNT   | ORDERHEAD.AMOUNT\n"
              "IsChecked | 审核     | boolean       | ORDERHEAD.CHECKED  | ORDERHEAD.CHECKED\n"
              "Viewer    | 查看人   | varchar(10)   | '%USERCODE%'       | ORDERHEAD.CHECKER\n"_s);
}

TEST_F(ToolTest, class_prints_record_classes_of_tables_and_queries)
{
    DesignStore store(Path(u"a.dbd"_s));
    store.Table(u"T"_s, u"TThing"_s)
        .Field(u"CODE"_s, u"varchar(10)"_s, {.Prop = u"Code"_s, .Key = true})
        .Query(u"Q"_s, u"T"_s, u"T"_s)
        .Column(u"T.CODE"_s, u"Mark"_s, u"T.CODE"_s);
    const QString table = u"  TThing = class(TDBObject)\r\n"
                          "  private\r\n"
                          "    FCode: string;\r\n"
                          "  published\r\n"
                          "    property Code: string read FCode write FCode;\r\n"
                          "  end;\r\n"_s;
    QString query = table;
    query.replace(u"TThing"_s, u"TQ"_s).replace(u"Code"_s, u"Mark"_s);
    EXPECT_EQ(RunKorvane({u"class"_s, store.FileName(), u"TThing"_s}).Out, table);
    EXPECT_EQ(RunKorvane({u"class"_s, store.FileName(), u"Q"_s}).Out, query);
    EXPECT_EQ(RunKorvane({u"class"_s, store.FileName(), u"--all"_s}).Out, table + u"\r\n"_s + query);
}

TEST_F(ToolTest, class_writes_a_header_of_the_librarys_record_classes)
{
    const auto classesOf = [](const QString &header) {
        QStringList names;
        for (const QString &line : header.split(u'\n'))
            if (line.startsWith(u"class "_s))
                names.append(line.section(u' ', 1, 1));
        return names.join(u' ');
    };
    const QString all = RunKorvane({u"class"_s, Orders, u"--cpp"_s}).Out;
    EXPECT_TRUE(all.startsWith(u"// Generated by korvane class --cpp from orders.dbd; do not edit.\n"_s));
    EXPECT_EQ(classesOf(all),
              u"TAppUser TCategory TChangeLog TCustomer TItem TOrderHead TOrderLine TOrderChange TScheme "
              "TBillKind TUnit TWarehouse TBillKindView TCategoryView TCustomerView TItemView TLineCalcView "
              "TMyOrderView TOrderCustView TOrderHeadView TOrderLineView TOrderSumView TOrderChangeView "
              "TSchemeView TUnitView TUserView TWarehouseView"_s);
    EXPECT_EQ(RunKorvane({u"class"_s, Orders, u"--cpp"_s, u"--all"_s}).Out, all);
    const QStringList three = {u"class"_s, Orders, u"--cpp"_s, u"QUNIT"_s, u"TUnit"_s, u"UNIT"_s};
    const QString some = RunKorvane(three).Out;
    EXPECT_EQ(classesOf(some), u"TUnitView TUnit"_s);

    const QStringList toFile = three + QStringList{u"--output"_s, Path(u"a.h"_s)};
    EXPECT_EQ(RunKorvane(toFile).Out, QString());
    EXPECT_EQ(FileBytes(Path(u"a.h"_s)), some.toUtf8());
    const QDateTime before = QDateTime::fromSecsSinceEpoch(1000000000);
    QFile file(Path(u"a.h"_s));
    ASSERT_TRUE(file.open(QIODevice::ReadWrite) && file.setFileTime(before, QFile::FileModificationTime));
    file.close();
    EXPECT_EQ(RunKorvane(toFile).Status, 0);
    EXPECT_EQ(QFileInfo(file).lastModified(), before) << "the same text is not written again";
    EXPECT_EQ(RunKorvane(toFile + QStringList{u"--namespace"_s, u"Orders"_s}).Status, 0);
    EXPECT_TRUE(FileBytes(Path(u"a.h"_s)).contains("\nnamespace Orders {\n"));
}

TEST_F(ToolTest, a_header_that_cannot_be_made_leaves_the_file_alone)
{
    DesignStore(Path(u"a.dbd"_s))
        .Table(u"T"_s, u"TThing"_s, u"东西"_s)
        .Field(u"NEW"_s, u"int"_s, {.Prop = u"new"_s});
    const QStringList arguments = {u"class"_s, Path(u"a.dbd"_s), u"--cpp"_s, u"--output"_s, Path(u"a.h"_s)};
    const ToolRun run = RunKorvane(arguments);
    EXPECT_EQ(run.Status, 1);
    EXPECT_EQ(run.Err, u"不能生成类“TThing”（T 东西）：栏位 NEW 的属性名“new”是 C++ 或 Qt 的保留字\n"_s);
    EXPECT_FALSE(QFile::exists(Path(u"a.h"_s)));
    const struct
    {
        QStringList Arguments;
        int Status;
        QString Part;
    } rows[] = {
        {{u"--namespace"_s, u"A"_s, u"T"_s}, 2, u"选项 --namespace 只能与 --cpp 一起用"_s},
        {{u"--output"_s, u"a"_s, u"T"_s}, 2, u"选项 --output 只能与 --cpp 一起用"_s},
        {{u"--cpp"_s, u"--all"_s, u"UNIT"_s}, 2, u"多余的参数 UNIT"_s},
        {{u"--cpp"_s, u"UNIT"_s, u"NOPE"_s}, 1, u"没有定义表信息 NOPE"_s},
        {{u"--cpp"_s, u"--namespace=a-b"_s}, 1, u"名字空间“a-b”不是合法的 C++ 标识符"_s},
        {{u"--cpp"_s, u"--output"_s, Path(u"none/a.h"_s)}, 1, u"none/a.h"_s},
    };
    for (const auto &row : rows) {
        const ToolRun refused = RunKorvane(QStringList{u"class"_s, Orders} + row.Arguments);
        EXPECT_EQ(refused.Status, row.Status);
        EXPECT_TRUE(refused.Err.contains(row.Part)) << qPrintable(refused.Err);
    }
}

TEST_F(ToolTest, a_failure_is_told_in_the_librarys_words)
{
    QFile text(Path(u"text.dbd"_s));
    ASSERT_TRUE(text.open(QIODevice::WriteOnly));
    text.write("this is no design file, and it is long enough to be looked at\n");
    text.close();
    const struct
    {
        QStringList Arguments;
        QString Part; ///< of the message
    } rows[] = {
        {{u"tables"_s, Path(u"none.dbd"_s)}, u"none.dbd"_s},
        {{u"tables"_s, u"--"_s, u"--help"_s}, u"--help"_s},
        {{u"script"_s, Path(u"text.dbd"_s)}, u"text.dbd"_s},
        {{u"fields"_s, Orders, u"NOPE"_s}, u"数据库设计文件中没有定义表信息 NOPE\n"_s},
        {{u"class"_s, Orders, u"nope"_s}, u"数据库设计文件中没有定义表信息 nope\n"_s},
        {{u"script"_s, Orders, u"--output"_s, Path(u"none/a.sql"_s)}, u"none/a.sql"_s},
        {{u"create"_s, Orders, u"--database"_s, Path(u"none/a.db"_s)}, u"none/a.db"_s},
        {{u"upgrade"_s, Orders, u"--database"_s, Path(u"none.db"_s)}, u"none.db"_s},
        {{u"check"_s, Orders, u"--database"_s, Path(u"none.db"_s)}, u"none.db"_s},
        {{u"sql"_s, u"select 1"_s, u"--database"_s, Path(u"none.db"_s)}, u"none.db"_s},
        {{u"sql"_s, u"--file"_s, Path(u"none.sql"_s), u"--database"_s, Path(u"none.db"_s)}, u"none.sql"_s},
        {{u"sql"_s, u"select 1"_s, u"--password-file"_s, Path(u"none.txt"_s), u"--database"_s,
          Path(u"none.db"_s)},
         u"none.txt"_s},
    };
    for (const auto &row : rows) {
        const ToolRun run = RunKorvane(row.Arguments);
        EXPECT_EQ(run.Status, 1) << qPrintable(row.Arguments.join(u' '));
        EXPECT_EQ(run.Out, QString());
        EXPECT_TRUE(run.Err.contains(row.Part)) << qPrintable(row.Arguments.join(u' ') + u'\n' + run.Err);
    }
    EXPECT_EQ(QDir().entryList(QDir::Files), QStringList{u"text.dbd"_s});
}

TEST_F(ToolTest, a_password_closes_the_database_and_may_stand_in_a_file)
{
    QFile file(Path(u"password.txt"_s));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("秘密;'\nsecond line\n");
    file.close();
    const QStringList database = {u"--database"_s, Path(u"a.db"_s)};
    const QStringList sql = QStringList{u"sql"_s, u"select VerNo from Version"_s} + database;
    const ToolRun create =
        RunKorvane(QStringList{u"create"_s, Orders, u"--password-file"_s, file.fileName()} + database);
    ASSERT_EQ(create.Status, 0) << qPrintable(create.Err);
    const QString rows = u"VerNo\n-----\n    6\n"_s;
    EXPECT_EQ(RunKorvane(sql + QStringList{u"--password"_s, u"秘密;'"_s}).Out, rows);
    EXPECT_EQ(RunKorvane(sql + QStringList{u"--password-file"_s, file.fileName()}).Out, rows);
    EXPECT_EQ(RunKorvane(sql + QStringList{u"--password"_s, u"秘密"_s}).Status, 1);
    EXPECT_EQ(RunKorvane(sql).Status, 1);
}
