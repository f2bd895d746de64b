// SPDX-License-Identifier: MIT
#include "DatabaseTesting.h"

#include "support/ScriptedPrompts.h"

#include <QFile>

using namespace Korvane;
using namespace Korvane::Testing;

namespace {

class CreateDatabase : public DatabaseTest
{
protected:
    /// The overwrite question, and nothing else, was asked.
    void ExpectQuestion(const ScriptedPrompts &prompts) const
    {
        ASSERT_EQ(prompts.Boxes.size(), 1);
        EXPECT_EQ(prompts.Boxes[0].Text, GetParam() == dbtAccess ? "数据库已经存在，是否覆盖现有的数据库？"
                                                                 : "数据库已经存在，是否覆盖现有的数据库?");
        EXPECT_EQ(prompts.Boxes[0].Flags, 0x40024);
    }
};

/// The type that a field of the design has in a database of the embedded engine, where a flag
/// is a letter however it is created.
QString TypeOf(const TFieldsObject &field)
{
    const QHash<QString, QString> fixed = {
        {"datetime", "char(14)"}, {"date", "char(8)"}, {"boolean", "char(1)"}, {"image", "blob"}};
    if (field.IsAuto)
        return "integer";
    if (field.FieldType == "decimal")
        return QString("decimal(%1,%2)").arg(field.FieldSize).arg(field.FieldPrecision);
    if (field.FieldType == "char" || field.FieldType == "varchar")
        return QString("%1(%2)").arg(field.FieldType).arg(field.FieldSize);
    return fixed.value(field.FieldType, field.FieldType);
}

/// A column of the embedded engine as PostgreSQL tells it.
QString OnPostgres(QString column)
{
    for (const auto &[ours, theirs] : {std::pair{" char(", " varchar("},
                                       {" decimal(", " numeric("},
                                       {" float", " doubleprecision"},
                                       {" blob", " bytea"},
                                       {" integer", " int"},
                                       {"Version.VerNo", "VERSION.VERNO"}})
        column.replace(ours, theirs);
    return column;
}

} // namespace

TEST_P(CreateDatabase, tables_columns_and_indexes_stand_as_designed)
{
    OpenOrders();
    for (const bool boolAsChar : {false, true}) {
        const PromptScript script(boolAsChar ? QList<int>{IDYES} : QList<int>());
        EXPECT_TRUE(Design.CreateDB(Session, boolAsChar));
        EXPECT_FALSE(Session.Connected());
        Session.SetConnected(true);

        QStringList expected = {"Version.VerNo int"};
        for (const auto &table : Design.GetTables()) {
            for (const char *audit : {"CREATOR varchar(10)", "CREATEDATE char(14)", "MODIFIER varchar(10)",
                                      "MODIFYDATE char(14)", "CREATORGROUP varchar(10)"})
                expected.append(table->TableCode + "." + audit);
            for (const auto &field : Design.GetTableFields(table->TableCode))
                expected.append(table->TableCode + "." + field->FieldCode + " " + TypeOf(*field));
        }
        if (GetParam().IsPostgres())
            std::transform(expected.begin(), expected.end(), expected.begin(), OnPostgres);
        expected.sort();
        EXPECT_EQ(LinesOf(Columns(Session)), LinesOf(expected));
        QStringList indexes({"APPUSER.UX_APPUSER_NAME unique(USERNAME)",
                             "APPUSER.key unique(USERCODE)",
                             "CATEGORY.UX_CATEGORY_NAME unique(PARENTCODE,CATENAME)",
                             "CATEGORY.key unique(CATECODE)",
                             "CHANGELOG.IX_CHANGELOG_KEY(TABLECODE,KEYVALUE,LOGTIME)",
                             "CHANGELOG.UX_CHANGELOG_TIME unique(LOGTIME,LOGNO)",
                             "CUSTOMER.IX_CUSTOMER_NAME(CUSTNAME)",
                             "CUSTOMER.key unique(CUSTCODE)",
                             "ITEM.IX_ITEM_CATE(CATECODE,ITEMNAME)",
                             "ITEM.UX_ITEM_BARCODE unique(BARCODE)",
                             "ITEM.key unique(ITEMCODE)",
                             "ORDERHEAD.IX_ORDERHEAD_CUST(CUSTCODE,BILLDATE)",
                             "ORDERHEAD.IX_ORDERHEAD_DATE(BILLDATE)",
                             "ORDERHEAD.key unique(BILLTYPE,BILLCODE)",
                             "ORDERLINE.IX_ORDERLINE_ITEM(ITEMCODE,DELIVERYDATE)",
                             "ORDERLINE.key unique(BILLTYPE,BILLCODE,BILLLINE)",
                             "ORDTE.key unique(TE001,TE002,TE003)",
                             "SCHEME.key unique(FUNCODE,SEARCHNAME)",
                             "SYSMQ.key unique(MQ001)",
                             "UNIT.UX_UNIT_NAME unique(UNITNAME)",
                             "UNIT.key unique(UNITCODE)",
                             "WAREHOUSE.key unique(WHSCODE)"});
        // In the embedded engine an identity column is the row's number and needs no index.
        if (!GetParam().IsEmbedded())
            indexes.append("CHANGELOG.key unique(LOGNO)");
        indexes.append(GetParam().IsPostgres() ? "VERSION.key unique(VERNO)" : "Version.key unique(VerNo)");
        indexes.sort();
        EXPECT_EQ(LinesOf(Indexes(Session)), LinesOf(indexes));
        EXPECT_EQ(Rows("select VerNo from Version"), QStringList("6"));
        EXPECT_EQ(Session.GetVersion(), 6);
        Session.SetConnected(false);
    }
}

TEST_P(CreateDatabase, defaults_and_not_null_work)
{
    DesignStore store(Dir.filePath("design.dbd"));
    store.Table("T")
        .Field("ID", "int", {.Key = true, .NotNull = true, .Auto = true})
        .Field("CODE", "varchar(10)", {.NotNull = true})
        .Field("KIND", "char(1)", {.Default = "B"})
        .Field("BLANK", "varchar(5)", {.Default = "''"})
        .Field("QTY", "decimal(12,3)", {.Default = "1.5"})
        .Field("OK", "boolean", {.Default = "Y"})
        .Field("NO", "boolean", {.Default = "N"})
        .Index("UX_T", "CODE", "cu");
    Design.SetFileName(store.FileName());
    Design.SetActived(true);
    for (const bool boolAsChar : {true, false}) {
        const PromptScript script(boolAsChar ? QList<int>() : QList<int>{IDYES});
        EXPECT_TRUE(Design.CreateDB(Session, boolAsChar));
        Session.SetConnected(true);
        Session.Execute(QString("insert into T(CODE) values('a')"));
        Session.Execute(QString("insert into T(CODE) values('b')"));
        EXPECT_EQ(Rows("select ID, CODE, KIND, BLANK, QTY, OK, NO from T order by ID"),
                  QStringList({"1|a|B||1.5|Y|N", "2|b|B||1.5|Y|N"}))
            << boolAsChar;
        EXPECT_NE(MessageOf([&] { Session.Execute(QString("insert into T(KIND) values('x')")); }), "nothing")
            << "no CODE";
        EXPECT_NE(MessageOf([&] { Session.Execute(QString("insert into T(CODE) values('A')")); }), "nothing")
            << "unique, blind to case";
        EXPECT_EQ(Session.GetVersion(), 0) << "a design without changes";
        // The session stays connected: what it overwrites next is its own database.
    }
}

TEST_P(CreateDatabase, progress_is_told_before_each_table)
{
    OpenOrders();
    const auto tables = Design.GetTables();
    QStringList events;
    Design.OnProgressEvent = [&](int count, int no) {
        const QString code = tables[no - 1]->TableCode;
        events.append(QString("%1/%2 %3 %4")
                          .arg(no)
                          .arg(count)
                          .arg(code, Session.TableExists(code) ? "there" : "not yet"));
        EXPECT_TRUE(no == 1 || Session.TableExists(tables[no - 2]->TableCode));
    };
    Design.CreateDB(Session, true);
    ASSERT_EQ(events.size(), 12);
    EXPECT_EQ(events.first(), "1/12 APPUSER not yet");
    EXPECT_EQ(events[4], "5/12 ITEM not yet");
    EXPECT_EQ(events.last(), "12/12 WAREHOUSE not yet");
}

TEST_P(CreateDatabase, an_existing_database_is_overwritten_after_a_yes)
{
    OpenOrders();
    Design.CreateDB(Session, true);
    Session.SetConnected(true);
    Session.Execute(QString("insert into UNIT(UNITCODE, UNITNAME) values('PCS', '个')"));
    Session.SetConnected(false);
    const PromptScript script({IDYES});
    EXPECT_TRUE(Design.CreateDB(Session, true));
    ExpectQuestion(*script.operator->());
    Session.SetConnected(true);
    EXPECT_EQ(Rows("select count(*) from UNIT"), QStringList("0"));
}

TEST_P(CreateDatabase, a_database_in_use_is_not_overwritten)
{
    OpenOrders();
    Design.CreateDB(Session, true);
    TDBSession other;
    Aim(other);
    other.SetConnected(true);
    other.Execute(QString("insert into UNIT(UNITCODE, UNITNAME) values('PCS', '个')"));
    const PromptScript script({IDYES});
    const QString message = MessageOf([&] { Design.CreateDB(Session, true); });
    EXPECT_TRUE(message.startsWith("数据库正在使用中，不能删除")) << message.toStdString();
    EXPECT_EQ(other.Open("select UNITNAME from UNIT").Text(0, 0), "个");
}

TEST_P(CreateDatabase, a_no_leaves_the_database)
{
    OpenOrders();
    Design.CreateDB(Session, true);
    Session.SetConnected(true);
    Session.Execute(QString("insert into UNIT(UNITCODE, UNITNAME) values('PCS', '个')"));
    Session.SetConnected(false);
    const QString name = Session.DBName();
    const PromptScript script({IDNO});
    EXPECT_EQ(MessageOf([&] { Design.CreateDB(Session, true); }),
              GetParam() == dbtAccess ? "创建数据库失败" : "创建数据库已被用户取消");
    ExpectQuestion(*script.operator->());
    EXPECT_EQ(Session.DBName(), GetParam() == dbtAccess ? name : "master");
    EXPECT_EQ(Session.Connected(), GetParam() == dbtMSSQL);
    Session.SetDBName(name);
    Session.SetConnected(true);
    EXPECT_EQ(Rows("select UNITNAME from UNIT"), QStringList("个"));
}

TEST_P(CreateDatabase, a_failing_statement_passes_on_and_nothing_is_undone)
{
    DesignStore store(Dir.filePath("design.dbd"));
    store.Table("A")
        .Field("X", "int")
        .Table("B")
        .Field("X", "int")
        .Index("IX_B", "NOPE")
        .Table("C")
        .Field("X", "int");
    Design.SetFileName(store.FileName());
    Design.SetActived(true);
    const QString message = MessageOf([&] { Design.CreateDB(Session, false); });
    EXPECT_TRUE(message.endsWith("\rcreate index IX_B on B(NOPE)")) << message.toStdString();
    EXPECT_TRUE(Session.Connected());
    EXPECT_TRUE(Session.TableExists("B"));
    EXPECT_FALSE(Session.TableExists("C"));
    EXPECT_EQ(Session.GetVersion(), 0);
    EXPECT_TRUE(QFile::exists(Dir.filePath("Error.sql")));
}

TEST_P(CreateDatabase, each_dialect_by_its_own_name)
{
    DesignStore store(Dir.filePath("design.dbd"));
    store.Table("T").Field("X", "int", {.Name = "甲", .Prop = "Prop"}).Change(4, "x");
    Design.SetFileName(store.FileName());
    Design.SetActived(true);
    QStringList statements;
    Session.OnExecute() = [&](const QString &statement) { statements.append(statement); };
    const bool access = GetParam() == dbtAccess;
    const QString name = Session.DBName();
    EXPECT_TRUE(access ? Design.CreateAccessDB(Session, true, true)
                       : Design.CreateMSSQLDB(Session, true, true));
    statements.removeAll(access ? "select now()" : "select @@spid");
    QStringList expected = {
        "create table Version(VerNo Integer not null,constraint PK_Version primary key(VerNo))",
        "insert into Version(VerNo) Values(4)",
        Design.GetDBDTable("T")->GetTableScript(GetParam(), false, true, false)};
    if (!access)
        expected = QStringList({"select 1 from sysdatabases where name='" + name + "'",
                                "create database [" + name + "]"}) +
                   expected;
    EXPECT_EQ(statements, expected);
}

INSTANTIATE_TEST_SUITE_P(Places, CreateDatabase, testing::ValuesIn(AllPlaces()), PlaceName);
