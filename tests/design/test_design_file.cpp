// SPDX-License-Identifier: MIT
// What a design file's rows mean: orders, flags, lookups and their messages.
#include "DesignTesting.h"

using namespace Korvane;
using namespace Korvane::Testing;

using DesignFile = DesignTest;

TEST_F(DesignFile, seven_empty_tables)
{
    Open();
    EXPECT_EQ(File.GetTables().size(), 0);
    EXPECT_EQ(File.GetQuerys().size(), 0);
    EXPECT_EQ(File.GetCommands().size(), 0);
    EXPECT_EQ(File.GetChanges().size(), 0);
    EXPECT_EQ(File.GetTableNames(), "");
    EXPECT_EQ(File.GetMaxChangeNo(), 0);
    EXPECT_EQ(File.CreateScript(dbtAccess, true, true, true), QStringList());
    EXPECT_EQ(File.GetUpgradeSQL(dbtAccess, 0, 99), QStringList());
    EXPECT_EQ(File.GetCheckSQL(), QStringList());
    EXPECT_EQ(File.GetRepairSQL(), QStringList());
}

TEST_F(DesignFile, only_an_exact_Y_is_true)
{
    Store.Table("T");
    const struct
    {
        const char *Text;
        bool Value;
    } rows[] = {{"'Y'", true},   {"'N'", false}, {"'y'", false}, {"'Yes'", false}, {"'Y '", false},
                {"' Y'", false}, {"'1'", false}, {"1", false},   {"''", false},    {"null", false}};
    for (size_t i = 0; i < std::size(rows); ++i)
        Store.Run(QString("insert into Fields(TableCode, FieldNo, FieldCode, IsAuto, IsKey, IsNotNull) "
                          "values('T', %1, 'F', %2, %2, %2)")
                      .arg(i)
                      .arg(rows[i].Text));
    Store.Run("insert into Indexs(TableCode, IsCluster, IsUnique) values('T', 'Y', 'y'), ('T', 'Yes', 'Y')");
    Open();
    const auto fields = File.GetTableFields("T");
    for (size_t i = 0; i < std::size(rows); ++i) {
        EXPECT_EQ(fields[i]->IsAuto, rows[i].Value) << rows[i].Text;
        EXPECT_EQ(fields[i]->IsKey, rows[i].Value) << rows[i].Text;
        EXPECT_EQ(fields[i]->IsNotNull, rows[i].Value) << rows[i].Text;
    }
    EXPECT_EQ(RowsText(File.GetTableIndexs("T")), QStringList({"T||||True|False", "T||||False|True"}));
}

TEST_F(DesignFile, nulls_read_as_zero_or_the_empty_text)
{
    Store.Run("insert into Tables(TableCode) values('T')")
        .Run("insert into Fields(TableCode) values('T')")
        .Run("insert into Indexs(TableCode) values('T')")
        .Run("insert into Querys(QueryCode) values('Q')")
        .Run("insert into Commands(CommandCode) values('C')")
        .Run("insert into Changes(ChangeName) values('x')");
    Open();
    EXPECT_EQ(RowsText(File.GetTables()), QStringList("T|||"));
    EXPECT_EQ(RowsText(File.GetTableFields("T")), QStringList("T|0|||||0|0|False|False|False||"));
    EXPECT_EQ(RowsText(File.GetTableIndexs("T")), QStringList("T||||False|False"));
    EXPECT_EQ(RowsText(File.GetQuerys()), QStringList("Q||||||"));
    EXPECT_EQ(RowsText(File.GetCommands()), QStringList("C||||"));
    EXPECT_EQ(RowsText(File.GetChanges()), QStringList("0||x|||"));
}

TEST_F(DesignFile, trailing_blanks_and_line_ends_are_data)
{
    Store.Run("insert into Tables values('T', 'TThing ', ' 表 ', 'a' || char(13, 10) || 'b' || char(10))");
    Open();
    EXPECT_EQ(RowText(*File.GetTable("T")), "T|TThing | 表 |a\r\nb\n");
    EXPECT_EQ(MessageOf([&] { File.GetTable("TThing"); }), "数据库设计文件中没有定义表信息 TThing");
}

TEST_F(DesignFile, rows_come_in_order_blind_to_case_and_by_number)
{
    Store.Table("b").Table("A").Table("C").Table("a1");
    Store.Run("insert into Fields(TableCode, FieldNo, FieldCode) values"
              "('b', 10, 'TEN'), ('b', 9, 'NINE'), ('A', 1, 'X'), ('b', 1, 'ONE'), ('b', 9, 'NINE2')");
    Store.Run("insert into Indexs(TableCode, IndexCode) values('b', 'Z'), ('A', 'M'), ('b', 'A')");
    Store.Query("q2", "A|", "A").Query("Q1", "A|", "A").Command("z", "1").Command("M", "1");
    Store.Run("insert into Changes(ChangeNo) values(10), (9), (100), (1)");
    Open();
    EXPECT_EQ(Joined(File.GetTables(), &TTablesObject::TableCode), "A;a1;b;C");
    EXPECT_EQ(Joined(File.GetTableFields("b"), &TFieldsObject::FieldCode), "ONE;NINE;NINE2;TEN");
    EXPECT_EQ(Joined(File.GetTableIndexs("b"), &TIndexsObject::IndexCode), "Z;A")
        << "as they stand in the file";
    EXPECT_EQ(Joined(File.GetQuerys(), &TQuerysObject::QueryCode), "Q1;q2");
    EXPECT_EQ(Joined(File.GetCommands(), &TCommandsObject::CommandCode), "M;z");
    QList<int> numbers;
    for (const auto &change : File.GetChanges())
        numbers.append(change->ChangeNo);
    EXPECT_EQ(numbers, QList<int>({1, 9, 10, 100}));
    EXPECT_EQ(File.GetMaxChangeNo(), 100);
}

TEST_F(DesignFile, table_names_are_filled_by_bytes)
{
    Store.Table("A", {}, "表一")
        .Table("客户", {}, "b")
        .Table("LONGER_THAN_TWENTY_BYTES", {}, "c")
        .Table("TWENTY_BYTES_EXACTLY", {}, "d");
    Open();
    QStringList lines = File.GetTableNames().split("\r\n");
    EXPECT_EQ(lines.takeLast(), "") << "the last line is ended, too";
    lines.sort();
    EXPECT_EQ(lines, QStringList({"A                   表一", "LONGER_THAN_TWENTY_BYTESc",
                                  "TWENTY_BYTES_EXACTLYd", "客户                b"}));
}

TEST_F(DesignFile, tables_and_queries_are_found_by_code_before_class_and_exactly)
{
    Store.Table("A", "B").Field("FA", "int").Index("IA", "FA").Table("B", "C").Field("FB", "int");
    Store.Query("QA", "A|", "A").Column("A.FA", "Fa", "A.FA").Run("update Querys set QueryClass='QB'");
    Store.Query("QB", "A|", "A");
    Open();
    EXPECT_EQ(RowText(*File.GetTable("B")), "B|C||") << "the code goes first";
    EXPECT_EQ(RowText(*File.GetTable("C")), "B|C||");
    EXPECT_EQ(Joined(File.LatestTable().Fields, &TFieldsObject::FieldCode), "FB") << "read by the code";
    EXPECT_EQ(File.LatestTable().KeyFieldStr, "FB");
    EXPECT_EQ(File.LatestTable().Indexs.size(), 0);
    EXPECT_EQ(File.GetQuery("QB")->QueryCode, "QB");
    EXPECT_EQ(File.GetQuery("TQB")->QueryCode, "QB");
    for (const char *code : {"a", "c", "A ", "", "FA"})
        EXPECT_EQ(MessageOf([&] { File.GetTable(code); }), QString("数据库设计文件中没有定义表信息 ") + code);
    for (const char *code : {"qa", "tqb", "QA ", ""})
        EXPECT_EQ(MessageOf([&] { File.GetQuery(code); }),
                  QString("数据库设计文件中没有定义查询信息 ") + code);
}

TEST_F(DesignFile, fields_are_found_by_code_before_property_and_exactly)
{
    Store.Table("T", "TThing")
        .Field("A", "int", {.Prop = "B"})
        .Field("B", "char(1)", {.Prop = "Text"})
        .Table("U")
        .Field("A", "date");
    Open();
    const struct
    {
        const char *Table, *Field, *Type;
    } found[] = {{"T", "A", "int"}, {"T", "B", "char"}, {"T", "Text", "char"}, {"U", "A", "date"}};
    for (const auto &row : found)
        EXPECT_EQ(File.GetField(row.Table, row.Field)->FieldType, row.Type) << row.Table << "." << row.Field;
    const struct
    {
        const char *Table, *Field, *Message;
    } missing[] = {{"T", "a", "字段没有定义\rT.a"},
                   {"T", "TEXT", "字段没有定义\rT.TEXT"},
                   {"TThing", "A", "字段没有定义\rTThing.A"},
                   {"U", "B", "字段没有定义\rU.B"},
                   {"", "", "字段没有定义\r."},
                   {"%1", "%2", "字段没有定义\r%1.%2"}};
    for (const auto &row : missing)
        EXPECT_EQ(MessageOf([&] { File.GetField(row.Table, row.Field); }), row.Message);
    // Every call makes a new object.
    File.GetField("T", "A")->FieldType = "changed";
    EXPECT_EQ(File.GetField("T", "A")->FieldType, "int");
}

TEST_F(DesignFile, key_fields_are_the_marked_ones_or_else_all)
{
    Store.Table("MARKED").Field("A", "int").Field("B", "int", {.Key = true}).Field("C", "int", {.Key = true});
    Store.Table("NONE").Field("X", "int").Field("Y", "int");
    Open();
    const auto fields = File.GetTableFields("MARKED");
    EXPECT_EQ(File.LatestTable().KeyFieldStr, "B;C");
    EXPECT_EQ(File.LatestTable().KeyFields[0], fields[1]) << "the same objects";
    EXPECT_EQ(File.LatestTable().KeyFields[1], fields[2]);
    EXPECT_EQ(File.GetTableFields("NONE"), File.LatestTable().KeyFields);
    EXPECT_EQ(File.LatestTable().KeyFieldStr, "X;Y");
    EXPECT_EQ(File.GetTableFields("NOPE").size(), 0) << "an unknown table has no fields";
    EXPECT_EQ(File.LatestTable().KeyFieldStr, "");
    EXPECT_EQ(File.LatestTable().KeyFields.size(), 0);
    EXPECT_EQ(File.GetTableIndexs("NOPE").size(), 0);
}

TEST_F(DesignFile, query_fields_are_the_source_fields_under_the_columns_names)
{
    const DesignField all{.Name = "甲",
                          .Prop = "PropA",
                          .Key = true,
                          .NotNull = true,
                          .Auto = true,
                          .Default = "7",
                          .Remark = "注"};
    Store.Table("T")
        .Field("A", "decimal(12,2)", all)
        .Table("U")
        .Field("A", "varchar(9)", all)
        .Field("B.C", "int");
    Store.Query("Q", "T|U", "T,U")
        .Column("T.A", "First", "T.A", "一")
        .Column("U.A", "Second", "U.PropA", "二")
        .Column("1+1", "Third", "U.B.C");
    Store.Query("BARE", "T", "T").Column("T.A", "X", "T.A");
    Open();
    const auto query = File.GetQuery("Q");
    EXPECT_EQ(File.LatestQuery().MainTable, "T");
    EXPECT_EQ(RowsText(File.LatestQuery().Columns),
              QStringList({"Q|1|First|一|T.A|T.A", "Q|2|Second|二|U.A|U.PropA", "Q|3|Third||1+1|U.B.C"}));
    EXPECT_EQ(RowsText(File.LatestQuery().Fields),
              QStringList({"T|1|First|一|First|decimal|2|12|True|True|True|7|A",
                           "U|2|Second|二|Second|varchar|0|9|False|False|False|7|PropA",
                           "U|3|Third||Third|int|0|0|False|False|False||B.C"}));
    File.GetQuery("BARE");
    EXPECT_EQ(File.LatestQuery().MainTable, "") << "no bar, no main table";
    EXPECT_EQ(RowsText(File.LatestQuery().Fields),
              QStringList("T|1|X||X|decimal|2|12|False|False|False|7|A"));
    // Columns alone are read against the main table of the query before.
    File.GetQuery("Q");
    EXPECT_EQ(RowsText(File.GetQueryColumns("BARE")), QStringList("BARE|1|X||T.A|T.A"));
    EXPECT_EQ(RowsText(File.LatestQuery().Fields), QStringList("T|1|X||X|decimal|2|12|True|True|True|7|A"));
    EXPECT_EQ(File.GetQueryColumns("NOPE").size(), 0);
}

TEST_F(DesignFile, a_column_without_its_source_field_fails_the_query)
{
    Store.Table("T").Field("A", "int");
    Store.Query("NONE", "T|", "T").Column("1", "X", "");
    Store.Query("NODOT", "T|", "T").Column("1", "X", "A");
    Store.Query("UNKNOWN", "T|", "T").Column("T.A", "X", "T.A").Column("T.B", "Y", "T.B");
    Open();
    EXPECT_EQ(MessageOf([&] { File.GetQuery("NONE"); }), "字段没有定义\r.");
    EXPECT_EQ(MessageOf([&] { File.GetQuery("NODOT"); }), "字段没有定义\r.A");
    EXPECT_EQ(MessageOf([&] { File.GetQuery("UNKNOWN"); }), "字段没有定义\rT.B");
}

TEST_F(DesignFile, commands_and_changes_are_found_by_their_key_alone)
{
    Store.Command("C", "a", "m")
        .Run("update Commands set CommandName='名'")
        .Change(-3, "x")
        .Change(7, "a", "m");
    Open();
    EXPECT_EQ(RowText(*File.GetCommand("C")), "C|名||a|m");
    EXPECT_EQ(RowText(*File.GetChange(7)), "7||||a|m");
    EXPECT_EQ(RowText(*File.GetChange(-3)), "-3||||x|x");
    EXPECT_EQ(MessageOf([&] { File.GetCommand("名"); }), "数据库设计文件中没有定义\"名\"命令信息");
    EXPECT_EQ(MessageOf([&] { File.GetCommand("c"); }), "数据库设计文件中没有定义\"c\"命令信息");
    EXPECT_EQ(MessageOf([&] { File.GetChange(8); }), "数据库设计文件中没有定义相关的变更信息8");
    EXPECT_EQ(MessageOf([&] { File.GetChange(-1); }), "数据库设计文件中没有定义相关的变更信息-1");
}

TEST_F(DesignFile, lists_are_new_objects)
{
    Store.Table("T").Field("A", "int");
    Open();
    const auto tables = File.GetTables();
    tables[0]->TableCode = "CHANGED";
    File.GetTableFields("T")[0]->FieldCode = "CHANGED";
    EXPECT_EQ(File.GetTables()[0]->TableCode, "T");
    EXPECT_EQ(File.GetTableFields("T")[0]->FieldCode, "A");
    File.SetActived(false);
    EXPECT_EQ(tables[0]->TableCode, "CHANGED") << "a list handed out stays";
}

TEST_F(DesignFile, upgrade_statements_are_the_lines_of_the_changes_in_a_range)
{
    Store.Change(7, "seven\r\ngo", "7m").Change(5, "five", "5m\n\n go ").Change(6, "six\rgo\r\n", "6m");
    Store.Run("insert into Changes(ChangeNo) values(8)");
    Open();
    const struct
    {
        int From, To;
        QStringList Access, MSSQL;
    } rows[] = {
        {0, 99, {"five", "six", "go", "seven", "go"}, {"5m", "", " go ", "6m", "7m"}},
        {5, 7, {"six", "go", "seven", "go"}, {"6m", "7m"}},
        {4, 5, {"five"}, {"5m", "", " go "}},
        {5, 5, {}, {}},
        {7, 5, {}, {}},
        {7, 8, {}, {}},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(File.GetUpgradeSQL(dbtAccess, row.From, row.To), row.Access)
            << row.From << " to " << row.To;
        EXPECT_EQ(File.GetUpgradeSQL(dbtMSSQL, row.From, row.To), row.MSSQL) << row.From << " to " << row.To;
    }
}
