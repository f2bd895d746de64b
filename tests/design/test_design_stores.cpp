// SPDX-License-Identifier: MIT
// One suite over the kinds of file that a design can stand in: Jet files of both formats, and
// an SQLite file. Whatever the store, the design answers the same.
#include "DesignTesting.h"

#include <QFile>
#include <QRegularExpression>

using namespace Korvane;
using namespace Korvane::Testing;

namespace {

enum class TStore { Jet4, Jet3, Sqlite };

const char *NameOfStore(TStore store)
{
    switch (store) {
    case TStore::Jet4:
        return "jet4";
    case TStore::Jet3:
        return "jet3";
    case TStore::Sqlite:
        return "sqlite";
    }
    return "";
}

class DesignStores : public testing::TestWithParam<TStore>
{
protected:
    static void SetUpTestSuite() { FFolder = new QTemporaryDir; }
    static void TearDownTestSuite()
    {
        delete FFolder;
        FFolder = nullptr;
    }

    void SetUp() override
    {
        File.SetFileName(FileOf(GetParam()));
        File.SetActived(true);
    }

    static QString FileOf(TStore store)
    {
        if (store == TStore::Jet4)
            return OrdersDesign;
        if (store == TStore::Jet3)
            return KORVANE_EXAMPLES_DIR "/orders-jet3.dbd";
        // The name says nothing of the kind.
        const QString name = FFolder->filePath("orders.dbd");
        if (!QFile::exists(name))
            OrdersStore(name);
        return name;
    }

    TDBDFile File;
    static QTemporaryDir *FFolder;
};

QTemporaryDir *DesignStores::FFolder = nullptr;

/// Everything that a design file answers, as lines.
QStringList Answers(TDBDFile &file)
{
    QStringList lines;
    const auto add = [&lines](const QString &title, const QStringList &rows) {
        lines.append("[" + title + "]");
        lines += rows;
    };
    add("tables", RowsText(file.GetTables()));
    add("queries", RowsText(file.GetQuerys()));
    add("commands", RowsText(file.GetCommands()));
    add("changes", RowsText(file.GetChanges()));
    add("names", {file.GetTableNames()});
    for (const auto &row : file.GetTables()) {
        TDBDTable *table = file.GetDBDTable(row->TableCode);
        add(row->TableCode, RowsText(table->TableFields()));
        add("key " + table->KeyFieldStr(), RowsText(table->KeyFields()));
        add("indexes", RowsText(table->Indexs()));
        add("class", {table->GetTableClass()});
    }
    for (const auto &row : file.GetQuerys()) {
        TDBDQuery *query = file.GetDBDQuery(row->QueryCode);
        add(row->QueryCode + " of " + query->Table(), RowsText(query->Columns()));
        add("fields", RowsText(query->QueryFields()));
        add("key " + query->KeyFieldStr(), RowsText(query->KeyFields()));
        add("indexes", RowsText(query->Indexs()));
        for (const TDBType type : {dbtAccess, dbtMSSQL})
            add(GetDBTypeName(type), {query->GetSelectSQL(type, true, true)});
    }
    for (const TDBType type : {dbtAccess, dbtMSSQL}) {
        add("script", file.CreateScript(type, true, false, true));
        add("upgrade", file.GetUpgradeSQL(type, 0, file.GetMaxChangeNo()));
    }
    add("check", file.GetCheckSQL());
    // The clock stands in some of the repair statements.
    add("repair", file.GetRepairSQL().replaceInStrings(QRegularExpression("'20\\d{12}'"), "'now'"));
    return lines;
}

} // namespace

TEST_P(DesignStores, every_store_answers_the_same)
{
    TDBDFile reference;
    reference.SetFileName(FileOf(TStore::Sqlite));
    reference.SetActived(true);
    const QStringList expected = Answers(reference), found = Answers(File);
    ASSERT_GT(expected.size(), 1000);
    for (qsizetype i = 0; i < qMin(expected.size(), found.size()); ++i)
        ASSERT_EQ(found[i], expected[i]) << "line " << i;
    EXPECT_EQ(found.size(), expected.size());
}

TEST_P(DesignStores, lists)
{
    EXPECT_EQ(
        Joined(File.GetTables(), &TTablesObject::TableCode),
        "APPUSER;CATEGORY;CHANGELOG;CUSTOMER;ITEM;ORDERHEAD;ORDERLINE;ORDTE;SCHEME;SYSMQ;UNIT;WAREHOUSE");
    EXPECT_EQ(
        Joined(File.GetQuerys(), &TQuerysObject::QueryCode),
        "QBILLKIND;QCATEGORY;QCUSTOMER;QITEM;QLINECALC;QMYORDER;QORDERCUST;QORDERHEAD;QORDERLINE;QORDERSUM;"
        "QORDTE;QSCHEME;QUNIT;QUSER;QWAREHOUSE");
    EXPECT_EQ(Joined(File.GetCommands(), &TCommandsObject::CommandCode),
              "ADDLOG;CALCORDER;CHECKORDER;CLEARLOG;RAISEPRICE;UNCHECKORDER");
    EXPECT_EQ(Joined(File.GetChanges(), &TChangesObject::ChangeDate),
              "20230110;20230215;20230401;20230620;20231105;20240108");
    EXPECT_EQ(File.GetMaxChangeNo(), 6);
    const QStringList names = File.GetTableNames().split("\r\n");
    EXPECT_EQ(names.size(), 13);
    EXPECT_EQ(names.first(), "APPUSER             系统用户");
    EXPECT_EQ(names[11], "WAREHOUSE           仓库资料");
    EXPECT_EQ(names.last(), "");
}

TEST_P(DesignStores, a_table)
{
    EXPECT_EQ(RowText(*File.GetTable("CATEGORY")),
              "CATEGORY|TCategory|物料分类|树形结构，顶层分类的上级分类为空白");
    EXPECT_EQ(RowText(*File.GetTable("TBillKind")), "SYSMQ|TBillKind|单据性质|单别及其编码规则");
    EXPECT_EQ(RowsText(File.GetTableFields("UNIT")),
              QStringList({"UNIT|1|UNITCODE|单位编号|UnitCode|varchar|0|6|False|True|True||",
                           "UNIT|2|UNITNAME|单位|UnitName|varchar|0|10|False|False|True||",
                           "UNIT|3|DIGITS|小数位数|Digits|smallint|0|6|False|False|False|0|",
                           "UNIT|4|ISBASE|基本单位|IsBase|boolean|0|6|False|False|False|Y|"}));
    EXPECT_EQ(Joined(File.GetTableFields("ORDERHEAD"), &TFieldsObject::FieldCode),
              "BILLTYPE;BILLCODE;BILLDATE;CUSTCODE;LINKMAN;SHIPADDR;CURRCODE;RATE;TOTALQTY;AMOUNT;PRINTCOUNT;"
              "CHECKED;CHECKER;CHECKDATE;REMARK");
    EXPECT_EQ(File.LatestTable().KeyFieldStr, "BILLTYPE;BILLCODE");
    EXPECT_EQ(RowsText(File.GetTableIndexs("ORDERHEAD")),
              QStringList({"ORDERHEAD|IX_ORDERHEAD_DATE|单据日期|BILLDATE|True|False",
                           "ORDERHEAD|IX_ORDERHEAD_CUST|客户及日期|CUSTCODE;BILLDATE|False|False"}));
}

TEST_P(DesignStores, lookups_are_exact)
{
    EXPECT_EQ(File.GetField("SYSMQ", "MQ005")->Remark, "1日 2月 3年 4流水号 5手工");
    EXPECT_EQ(File.GetField("SYSMQ", "CodeKind")->FieldCode, "MQ005");
    EXPECT_EQ(File.GetField("CHANGELOG", "LOGNO")->IsAuto, true);
    EXPECT_EQ(MessageOf([&] { File.GetTable("Customer"); }), "数据库设计文件中没有定义表信息 Customer");
    EXPECT_EQ(MessageOf([&] { File.GetTable("tcustomer"); }), "数据库设计文件中没有定义表信息 tcustomer");
    EXPECT_EQ(MessageOf([&] { File.GetTable("CUSTOMER "); }), "数据库设计文件中没有定义表信息 CUSTOMER ");
    EXPECT_EQ(MessageOf([&] { File.GetField("UNIT", "unitcode"); }), "字段没有定义\rUNIT.unitcode");
    EXPECT_EQ(MessageOf([&] { File.GetField("unit", "UNITCODE"); }), "字段没有定义\runit.UNITCODE");
    EXPECT_EQ(MessageOf([&] { File.GetQuery("qunit"); }), "数据库设计文件中没有定义查询信息 qunit");
    EXPECT_EQ(MessageOf([&] { File.GetCommand("addlog"); }), "数据库设计文件中没有定义\"addlog\"命令信息");
    EXPECT_EQ(MessageOf([&] { File.GetChange(7); }), "数据库设计文件中没有定义相关的变更信息7");
}

TEST_P(DesignStores, a_query)
{
    TDBDQuery *query = File.GetDBDQuery("TOrderCustView");
    EXPECT_EQ(RowText(*query->QueryObject()),
              "QORDERCUST|TOrderCustView|客户的订单|参数：客户编号|ORDERHEAD|CUSTOMER|"
              "ORDERHEAD left join CUSTOMER on ORDERHEAD.CUSTCODE=CUSTOMER.CUSTCODE\r\n"
              "where ORDERHEAD.CUSTCODE='%s'|"
              "ORDERHEAD left join CUSTOMER on ORDERHEAD.CUSTCODE=CUSTOMER.CUSTCODE\r\n"
              "where ORDERHEAD.CUSTCODE='%s'");
    EXPECT_EQ(query->Table(), "ORDERHEAD");
    EXPECT_EQ(query->KeyFieldStr(), "BillType;BillCode");
    EXPECT_EQ(RowsText(query->QueryFields()),
              QStringList({"ORDERHEAD|1|BillType|单别|BillType|char|0|4|False|True|True||BILLTYPE",
                           "ORDERHEAD|2|BillCode|单号|BillCode|varchar|0|12|False|True|True||BILLCODE",
                           "ORDERHEAD|3|BillDate|单据日期|BillDate|date|0|8|False|False|True||BILLDATE",
                           "CUSTOMER|4|CustName|客户名称|CustName|varchar|0|60|False|False|False||CUSTNAME",
                           "ORDERHEAD|5|Amount|总金额|Amount|decimal|2|16|False|False|False|0|AMOUNT",
                           "ORDERHEAD|6|IsChecked|审核|IsChecked|boolean|0|6|False|False|True|N|CHECKED"}));
}

TEST_P(DesignStores, commands_and_changes)
{
    EXPECT_EQ(RowText(*File.GetCommand("RAISEPRICE")),
              "RAISEPRICE|按分类调价|参数：倍数、分类编号的开头；两种方言的通配符不同|"
              "update ITEM set PRICE=PRICE*%s where CATECODE like '%s*'|"
              "update ITEM set PRICE=PRICE*%s where CATECODE like '%s%%'");
    EXPECT_EQ(File.GetUpgradeSQL(dbtAccess, 3, 5),
              QStringList({"alter table ORDERHEAD add CURRCODE char(3) null", "go",
                           "alter table ORDERHEAD add RATE float null", "go",
                           "update ORDERHEAD set CURRCODE='CNY', RATE=1 where CURRCODE is null", "  Go  ",
                           "drop index IX_CUSTOMER_PHONE on CUSTOMER", "go", "go"}));
    const QStringList access = File.GetUpgradeSQL(dbtAccess, 1, 2),
                      mssql = File.GetUpgradeSQL(dbtMSSQL, 1, 2);
    ASSERT_EQ(access.size(), mssql.size());
    for (qsizetype i = 0; i < access.size(); ++i)
        EXPECT_EQ(mssql[i], QString(access[i]).replace("default U", "default 'U'"));
    EXPECT_TRUE(mssql.contains("  ACTKIND      char(1) not null default 'U',"));
}

TEST_P(DesignStores, check_statements)
{
    const QStringList statements = File.GetCheckSQL();
    EXPECT_EQ(statements.size(), 12 * 5 + 108) << "five a table and one a field";
    EXPECT_EQ(statements.mid(0, 6),
              QStringList({"select 1 from APPUSER where CREATOR is null  --系统用户.创建者",
                           "select 1 from APPUSER where CREATEDATE is null  --系统用户.创建时间",
                           "select 1 from APPUSER where MODIFIER is null  --系统用户.修改者",
                           "select 1 from APPUSER where MODIFYDATE is null  --系统用户.修改时间",
                           "select 1 from APPUSER where CREATORGROUP is null  --系统用户.创建者组",
                           "select 1 from APPUSER where USERCODE is null  --系统用户.用户编号"}));
    EXPECT_EQ(statements.last(), "select 1 from WAREHOUSE where REMARK is null  --仓库资料.备注");
}

INSTANTIATE_TEST_SUITE_P(Stores, DesignStores, testing::Values(TStore::Jet4, TStore::Jet3, TStore::Sqlite),
                         [](const auto &store) { return NameOfStore(store.param); });

TEST(EmptyDesign, a_jet_file_of_seven_empty_tables)
{
    TDBDFile file;
    file.SetFileName(KORVANE_EXAMPLES_DIR "/empty.dbd");
    file.SetActived(true);
    EXPECT_EQ(file.GetTables().size(), 0);
    EXPECT_EQ(file.GetQuerys().size(), 0);
    EXPECT_EQ(file.GetCommands().size(), 0);
    EXPECT_EQ(file.GetChanges().size(), 0);
    EXPECT_EQ(file.GetTableNames(), "");
    EXPECT_EQ(file.GetMaxChangeNo(), 0);
    EXPECT_EQ(file.GetCheckSQL(), QStringList());
    EXPECT_EQ(file.GetRepairSQL(), QStringList());
    EXPECT_EQ(file.CreateScript(dbtMSSQL, true, true, true), QStringList());
    EXPECT_EQ(MessageOf([&] { file.GetTable("T"); }), "数据库设计文件中没有定义表信息 T");
}
