// SPDX-License-Identifier: MIT
#include "DesignTesting.h"

#include "general/SessionValues.h"

using namespace Korvane;
using namespace Korvane::Testing;

namespace {

/// A row of the query Q below.
class TMainView : public TDBObject
{
    Q_GADGET
    Q_PROPERTY(QString MainCode MEMBER MainCode)
    Q_PROPERTY(QString TheName MEMBER TheName)
    Q_PROPERTY(double Qty MEMBER Qty)
    Q_PROPERTY(bool Done MEMBER Done)

public:
    QString MainCode;
    QString TheName;
    double Qty = 0;
    bool Done = false;
};

class QueryDefinition : public DesignTest
{
protected:
    QueryDefinition()
    {
        RegisterClass<TMainView>();
        Store.Table("M", "TMain", "主表")
            .Field("CODE", "varchar(10)", {.Prop = "MainCode", .Key = true, .NotNull = true})
            .Field("LINENO", "int", {.Prop = "Line", .Key = true})
            .Field("NAME", "varchar(20)", {.Prop = "Name"})
            .Field("QTY", "decimal(12,3)", {.Prop = "Qty"})
            .Field("DONE", "boolean", {.Prop = "IsDone"})
            .Field("HIDDEN", "int", {.Prop = "Secret"})
            .Index("IX_M", "CODE;NAME", "u");
        Store.Table("S", "TSub")
            .Field("SNO", "int", {.Prop = "Sno", .Key = true})
            .Field("NAME", "varchar(20)", {.Prop = "SName"});
        Store.Query("Q", "M|S", "M left join S on M.CODE=S.SNO", "M, S")
            .Column("M.CODE", "MainCode", "M.CODE")
            .Column("M.NAME", "TheName", "M.NAME")
            .Column("S.NAME", "SubName", "S.NAME")
            .Column("M.QTY*2", "Twice", "M.QTY")
            .Column("M.Qty", "OtherCase", "M.QTY")
            .Column("M.QTY", "Qty", "M.QTY")
            .Column("M.DONE", "Done", "M.DONE");
        Store.Query("TWO", "M|", "M where 1=1", "M")
            .Column("M.CODE", "A", "M.CODE")
            .Column("M.NAME", "B", "M.NAME");
        Store.Query("NOCOLUMNS", "M|", "M");
        Store.Query("COMPUTED", "M|", "M").Column("1", "One", "M.QTY").Column("M.CODE", "MainCode", "M.CODE");
        Store.Query("COMPUTEDONLY", "M|", "M").Column("1", "One", "M.QTY");
        Open();
        View.MainCode = "A1";
        View.TheName = "O'x";
        View.Qty = 1.5;
        View.Done = true;
        View.KeyValues = QVariantList{"OLD", 2};
    }

    TMainView View;
};

/// Sets the session values for as long as it lives.
struct SignedIn
{
    SignedIn(const QString &user, const QString &group, const QString &super)
    {
        AUserCode = user;
        AUserGroup = group;
        AIsSuper = super;
    }
    ~SignedIn()
    {
        AUserCode.clear();
        AUserGroup.clear();
        AIsSuper.clear();
    }
};

} // namespace

TEST_F(QueryDefinition, select)
{
    TDBDQuery *query = File.GetDBDQuery("TWO");
    const QString list = "  M.CODE as A, \r\n  M.NAME as B\r\nfrom";
    const QString audit =
        "  M.CREATOR as CREATOR, \r\n M.CREATEDATE as CREATEDATE, \r\n M.MODIFIER as MODIFIER, \r\n"
        " M.MODIFYDATE as MODIFYDATE, \r\n M.CREATORGROUP as CREATORGROUP, \r\n"
        "  M.CODE as A, \r\n  M.NAME as B\r\nfrom";
    const QString selection = "select 'N' as FSELECTED, * from (\r\n";
    const struct
    {
        bool Selection, Audit;
        QString Script, Tail;
    } rows[] = {{false, false, "select \r\n" + list, ""},
                {false, true, "select \r\n" + audit, ""},
                {true, false, selection + "select \r\n" + list, ") ZZZ"},
                {true, true, selection + "select \r\n" + audit, ") ZZZ"}};
    for (const auto &row : rows) {
        EXPECT_EQ(query->GetScript(row.Selection, row.Audit), row.Script);
        const QString access = row.Script + "\rM where 1=1" + row.Tail;
        const QString mssql = row.Script + "\rM" + row.Tail;
        EXPECT_EQ(query->GetAccessQueryScript(row.Selection, row.Audit), access);
        EXPECT_EQ(query->GetMSSQLQueryScript(row.Selection, row.Audit), mssql);
        EXPECT_EQ(query->GetQueryScript(dbtAccess, row.Selection, row.Audit), access);
        EXPECT_EQ(query->GetQueryScript(dbtMSSQL, row.Selection, row.Audit), mssql);
        EXPECT_EQ(query->GetQueryScript(TDBType(7), row.Selection, row.Audit), "");
        EXPECT_EQ(query->GetSelectSQL(dbtAccess, row.Selection, row.Audit), access);
        EXPECT_EQ(query->GetSelectSQL(dbtMSSQL, row.Selection, row.Audit), mssql);
        EXPECT_EQ(query->GetSelectSQL(dbtMSSQL, "B", "x", ooLikeAnd, row.Selection, row.Audit),
                  "select * from (" + mssql + ") ZZZ where B like '%x%'");
        EXPECT_EQ(query->GetSelectSQL(dbtAccess, "", {}, ooLikeAnd, row.Selection, row.Audit),
                  "select * from (" + access + ") ZZZ where ");
    }
}

TEST_F(QueryDefinition, a_query_without_columns)
{
    TDBDQuery *query = File.GetDBDQuery("NOCOLUMNS");
    EXPECT_EQ(query->GetScript(false, false), "");
    EXPECT_EQ(query->GetScript(true, false), "");
    EXPECT_EQ(query->GetSelectSQL(dbtAccess, false, false), "\rM");
    EXPECT_EQ(query->GetSelectSQL(dbtAccess, true, false), "\rM) ZZZ");
    EXPECT_EQ(query->GetScript(false, true),
              "select \r\n  M.CREATOR as CREATOR, \r\n M.CREATEDATE as CREATEDATE, \r\n M.MODIFIER as "
              "MODIFIER, \r\n"
              " M.MODIFYDATE as MODIFYDATE, \r\n M.CREATORGROUP as CREATORGROUP\r\nfrom");
    EXPECT_EQ(query->GetInsertSQL(View), "insert into M() values()");
}

TEST_F(QueryDefinition, macros_are_replaced_over_the_whole_statement)
{
    Store
        .Query("MACRO", "M|", "M where A='%USERCODE%' and B='%USERGROUP%%ISSUPER%' and C='%usercode%'",
               "M where '%DATE%'")
        .Column("'%USERCODE%'", "Viewer", "M.NAME");
    File.Refresh(rtQuerys);
    TDBDQuery *query = File.GetDBDQuery("MACRO");
    EXPECT_EQ(query->GetSelectSQL(dbtAccess, false, false),
              "select \r\n  '' as Viewer\r\nfrom\rM where A='' and B='' and C='%usercode%'");
    const SignedIn user("u1", "g1", "Y");
    EXPECT_EQ(query->GetSelectSQL(dbtAccess, false, false),
              "select \r\n  'u1' as Viewer\r\nfrom\rM where A='u1' and B='g1Y' and C='%usercode%'");
    EXPECT_EQ(query->GetSelectSQL(dbtMSSQL, false, false),
              "select \r\n  'u1' as Viewer\r\nfrom\rM where '%DATE%'");
    EXPECT_EQ(query->GetScript(false, false), "select \r\n  '%USERCODE%' as Viewer\r\nfrom")
        << "not in the list alone";
    // One after the other, in that order.
    const SignedIn nested("%USERGROUP%", "%ISSUPER%", "%USERCODE%");
    EXPECT_EQ(query->GetSelectSQL(dbtMSSQL, false, false),
              "select \r\n  '%USERCODE%' as Viewer\r\nfrom\rM where '%DATE%'");
}

TEST_F(QueryDefinition, aiming)
{
    TDBDQuery *query = File.GetDBDQuery("TQ");
    EXPECT_EQ(query->Query(), "TQ");
    EXPECT_EQ(query->QueryObject()->QueryCode, "Q");
    EXPECT_EQ(query->Table(), "M");
    EXPECT_EQ(query->KeyFieldStr(), "MainCode;Line");
    EXPECT_EQ(Joined(query->KeyFields(), &TFieldsObject::FieldCode), "CODE;LINENO");
    EXPECT_EQ(RowsText(query->Indexs()), QStringList("M|IX_M||MainCode;Name|False|True"));
    EXPECT_EQ(query->Columns().size(), query->QueryFields().size());
    // The same table again, its indexes rewritten already.
    File.GetDBDQuery("TWO");
    EXPECT_EQ(RowsText(query->Indexs()), QStringList("M|IX_M||MainCode;Name|False|True"));
    EXPECT_EQ(File.GetDBDTable("M")->Indexs()[0]->IndexFields, "CODE;NAME") << "the shared table has its own";
}

TEST_F(QueryDefinition, fields_are_found_in_the_query_before_the_main_table)
{
    TDBDQuery *query = File.GetDBDQuery("Q");
    EXPECT_EQ(query->GetField("TheName"), query->QueryFields()[1]) << "the object itself";
    EXPECT_EQ(query->GetField("SubName")->Remark, "NAME");
    const auto hidden = query->GetField("HIDDEN");
    EXPECT_EQ(RowText(*hidden), RowText(*File.GetField("M", "HIDDEN")));
    EXPECT_NE(query->GetField("HIDDEN"), hidden) << "a new object";
    EXPECT_EQ(query->GetField("Secret")->FieldCode, "HIDDEN");
    EXPECT_EQ(query->GetField("Qty")->FieldNo, 6) << "the column";
    EXPECT_EQ(query->GetFieldCode("Qty")->FieldCode, "QTY") << "the table's field";
    EXPECT_EQ(MessageOf([&] { query->GetField("thename"); }), "字段没有定义\rM.thename");
    EXPECT_EQ(MessageOf([&] { query->GetField("SNO"); }), "字段没有定义\rM.SNO");
    EXPECT_EQ(MessageOf([&] { query->GetFieldCode("TheName"); }), "字段没有定义\rM.TheName");
}

TEST_F(QueryDefinition, lists_of_names_become_property_names)
{
    TDBDQuery *query = File.GetDBDQuery("Q");
    const struct
    {
        const char *Names, *Properties;
    } rows[] = {{"", ""},
                {"CODE", "MainCode"},
                {"HIDDEN;TheName;LINENO", "Secret;TheName;Line"},
                {"\"HIDDEN\";NAME", "Secret;Name"},
                {" HIDDEN ; NAME ", "Secret;Name"}};
    for (const auto &row : rows)
        EXPECT_EQ(query->SetFieldProp(row.Names), row.Properties) << row.Names;
    EXPECT_EQ(MessageOf([&] { query->SetFieldProp("CODE;;NAME"); }), "字段没有定义\rM.");
}

TEST_F(QueryDefinition, conditions_on_the_result_and_on_the_table)
{
    TDBDQuery *query = File.GetDBDQuery("Q");
    const struct
    {
        const char *Keys;
        QVariant Values;
        TOpenOption Option;
        const char *Result; ///< in the Access dialect
        const char *Table;  ///< null where a name is not the table's
    } rows[] = {
        {"", {}, ooEqualAnd, "", ""},
        {"MainCode", "A", ooEqualAnd, "MainCode='A'", "CODE='A'"},
        {"CODE", "A", ooEqualAnd, "MainCode='A'", "CODE='A'"},
        {"HIDDEN;Line", QVariantList{1, 2}, ooEqualOr, "Secret=1 or Line=2", "HIDDEN=1 or LINENO=2"},
        {"TheName ; SubName", QVariantList{"a", "b"}, ooLikeOr, "TheName like '*a*' or SubName like '*b*'",
         nullptr},
        {"Twice", 1.5, ooEqualAnd, "Twice=1.5", nullptr},
        {"Done", "Y", ooEqualAnd, "Done='Y'", nullptr},
        {"IsDone", "Y", ooEqualAnd, "IsDone='Y'", "DONE='Y'"},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(query->GetWhereSQL(dbtAccess, row.Keys, row.Values, row.Option), row.Result);
        if (row.Table) {
            EXPECT_EQ(query->GetTableWhere(dbtAccess, row.Keys, row.Values, row.Option), row.Table);
        }
    }
    EXPECT_EQ(query->GetWhereSQL(dbtMSSQL, "Qty", "2", ooLikeAnd), "Qty like %2%");
    EXPECT_EQ(query->GetTableWhere(dbtMSSQL, "Qty", "2", ooLikeAnd), "QTY like %2%");
    EXPECT_EQ(MessageOf([&] { query->GetTableWhere(dbtAccess, "SubName", "x", ooEqualAnd); }),
              "字段没有定义\rM.SubName");
    EXPECT_THROW(query->GetWhereSQL(dbtAccess, "MainCode;Line", "x", ooEqualAnd), EVariantError);
}

TEST_F(QueryDefinition, only_plain_columns_of_the_main_table_are_written)
{
    TDBDQuery *query = File.GetDBDQuery("Q");
    EXPECT_EQ(query->GetInsertSQL(View),
              "insert into M(CODE, NAME, QTY, DONE) values('A1', 'O''x', 1.5, 'Y')");
    const QString update = "update M set CODE='A1', NAME='O''x', QTY=1.5, DONE='Y' where ";
    for (const TDBType type : {dbtAccess, dbtMSSQL}) {
        EXPECT_EQ(query->GetUpdateSQL(type, View), update + "CODE='OLD' and LINENO=2");
        EXPECT_EQ(query->GetUpdateSQL(type, View, "Name", "x"), update + "NAME='x'");
        EXPECT_EQ(query->GetDeleteSQL(type, View), "delete from M where CODE='OLD' and LINENO=2");
        EXPECT_EQ(query->GetDeleteSQL(type, View, "", {}), "delete from M where ");
        EXPECT_EQ(query->GetDeleteSQL(type, View, "Name", "x"), "delete from M where NAME='x'");
        EXPECT_EQ(query->GetDeleteSQL(type, "Secret", 1), "delete from M where HIDDEN=1");
        EXPECT_EQ(query->GetDeleteSQL(type, "", {}), "delete from M");
    }
    EXPECT_THROW(query->GetUpdateSQL(dbtAccess, View, "Name", "50%"), EConvertError);
    EXPECT_EQ(query->GetDeleteSQL(dbtAccess, "Name", "50%"), "delete from M where NAME='50%'");
}

TEST_F(QueryDefinition, a_computed_first_column_leaves_its_comma)
{
    TDBDQuery *query = File.GetDBDQuery("COMPUTED");
    EXPECT_EQ(query->GetInsertSQL(View), "insert into M(, CODE) values(, 'A1')");
    EXPECT_EQ(query->GetUpdateSQL(dbtAccess, View), "update M set , CODE='A1' where CODE='OLD' and LINENO=2");
    query = File.GetDBDQuery("COMPUTEDONLY");
    EXPECT_EQ(query->GetInsertSQL(View), "insert into M() values()");
}

TEST_F(QueryDefinition, without_a_bar_there_is_no_main_table)
{
    Store.Query("BARE", "M", "M").Column("M.CODE", "A", "M.CODE");
    File.Refresh(rtQuerys);
    File.GetDBDQuery("Q");
    EXPECT_EQ(MessageOf([&] { File.GetDBDQuery("BARE"); }), "数据库设计文件中没有定义表信息 ");
}

TEST_F(QueryDefinition, an_unset_definition)
{
    TDBDQuery query;
    query.SetDBDFile(&File);
    const std::function<void()> calls[] = {
        [&] { query.CheckQuery(); },
        [&] { query.GetField("CODE"); },
        [&] { query.GetSelectSQL(dbtAccess, false, false); },
        [&] { query.GetSelectSQL(dbtAccess, "", {}, ooEqualAnd, false, false); },
        [&] { query.GetWhereSQL(dbtAccess, "CODE", 1, ooEqualAnd); },
        [&] { query.GetInsertSQL(View); },
        [&] { query.GetUpdateSQL(dbtAccess, View); },
        [&] { query.GetUpdateSQL(dbtAccess, View, "CODE", 1); },
        [&] { query.GetDeleteSQL(dbtAccess, View); },
        [&] { query.GetDeleteSQL(dbtAccess, View, "CODE", 1); },
        [&] { query.GetDeleteSQL(dbtAccess, "CODE", 1); },
    };
    for (const auto &call : calls)
        EXPECT_EQ(MessageOf(call), "没有设置好Query属性");
    EXPECT_EQ(MessageOf([&] { query.SetQuery("BAD"); }), "数据库设计文件中没有定义查询信息 BAD");
}

TEST_F(QueryDefinition, class_text_uses_the_aliases)
{
    EXPECT_EQ(File.GetDBDQuery("TWO")->GetQueryClass(), "  TTWO = class(TDBObject)\r\n"
                                                        "  private\r\n"
                                                        "    FA: string;\r\n"
                                                        "    FB: string;\r\n"
                                                        "  published\r\n"
                                                        "    property A: string read FA write FA;\r\n"
                                                        "    property B: string read FB write FB;\r\n"
                                                        "  end;\r\n");
    EXPECT_TRUE(File.GetDBDQuery("Q")->GetQueryClass().contains(
        "    property Twice: Double read FTwice write FTwice;\r\n"));
    EXPECT_EQ(File.GetDBDQuery("NOCOLUMNS")->GetQueryClass(),
              "  TNOCOLUMNS = class(TDBObject)\r\n  private\r\n  published\r\n  end;\r\n");
}

#include "test_query_definition.moc"
