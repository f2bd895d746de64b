// SPDX-License-Identifier: MIT
#include "DesignTesting.h"

using namespace Korvane;
using namespace Korvane::Testing;

namespace {

class TableScripts : public DesignTest
{
protected:
    QStringList Script(const QString &table, TDBType type, bool comments = false, bool boolAsChar = false,
                       bool property = false)
    {
        return File.GetDBDTable(table)->GetTableScript(type, comments, boolAsChar, property).split("\r\n");
    }
};

/// A line of a column, for names and types of single bytes.
QString Line(const QString &name, const QString &type, const QString &comment = {})
{
    return "  " + name.leftJustified(25) + type.leftJustified(60) + comment;
}

QStringList AuditLines(bool comments)
{
    const auto line = [comments](const char *name, const char *type, const char *comment) {
        return Line(name, type, comments ? comment : "");
    };
    return {line("CREATOR", "varchar(10) null,", "--创建者"),
            line("CREATEDATE", "char(14) null,", "--创建时间(YYYYMMDDHHMMSS)"),
            line("MODIFIER", "varchar(10) null,", "--修改者"),
            line("MODIFYDATE", "char(14) null,", "--修改时间(YYYYMMDDHHMMSS)"),
            line("CREATORGROUP", "varchar(10) null,", "--创建者组")};
}

} // namespace

TEST_F(TableScripts, a_script_to_the_letter)
{
    Store.Table("T", "TThing", "东西")
        .Field("ID", "int", {.Name = "序号", .Prop = "ThingNo", .Key = true, .NotNull = true})
        .Field("PRICE", "decimal(12,2)",
               {.Name = "单价", .Prop = "Price", .Key = true, .Default = "0", .Remark = "元"});
    Open();
    const QString plain =
        "create table T(\r\n"
        "  CREATOR                  varchar(10) null,                                           \r\n"
        "  CREATEDATE               char(14) null,                                              \r\n"
        "  MODIFIER                 varchar(10) null,                                           \r\n"
        "  MODIFYDATE               char(14) null,                                              \r\n"
        "  CREATORGROUP             varchar(10) null,                                           \r\n"
        "  ID                       int not null,                                               \r\n"
        "  PRICE                    decimal(12, 2) null default 0,                              \r\n"
        "  constraint PK_T primary key(ID,PRICE)\r\n"
        ")";
    TDBDTable *table = File.GetDBDTable("T");
    for (const bool property : {false, true})
        EXPECT_EQ(table->GetTableScript(dbtAccess, false, false, property), plain);
    EXPECT_EQ(table->GetAccessTableScript(false, false, false), plain);
    EXPECT_EQ(table->GetMSSQLTableScript(false, false, false),
              QString(plain).replace("default 0,  ", "default '0',"));
    EXPECT_EQ(table->GetTableScript(dbtMSSQL, false, true, false),
              table->GetMSSQLTableScript(false, true, false));
    EXPECT_EQ(table->GetTableScript(TDBType(7), false, false, false), "");

    const QString key = "  constraint PK_T primary key(ID,PRICE)";
    EXPECT_EQ(Script("T", dbtAccess, true),
              QStringList({"--东西", "create table T("}) + AuditLines(true) +
                  QStringList({Line("ID", "int not null,", "--序号"),
                               Line("PRICE", "decimal(12, 2) null default 0,", "--单价(元)"), key, ")"}));
    EXPECT_EQ(
        Script("T", dbtMSSQL, true, false, true),
        QStringList({"--东西", "create table T("}) + AuditLines(true) +
            QStringList({Line("ID", "int not null,", "--[ThingNo]序号"),
                         Line("PRICE", "decimal(12, 2) null default '0',", "--[Price]单价(元)"), key, ")"}));
}

TEST_F(TableScripts, column_texts)
{
    constexpr const char *Same = nullptr;
    const struct
    {
        const char *Type;
        DesignField Options;
        const char *Access;
        const char *MSSQL;    ///< null if it is the same
        const char *AsChar;   ///< Access with booleans as characters; null if it is the same
        const char *AsCharMS; ///< null if it is as AsChar, or as MSSQL when that is null
    } rows[] = {
        // clang-format off
        {"int", {.NotNull = true}, "int not null,", Same, Same, Same},
        {"INT", {}, "int null,", Same, Same, Same},
        {"int", {.Key = true, .NotNull = true, .Auto = true}, "int identity not null,", Same, Same, Same},
        {"int(8)", {.Default = "0"}, "int null default 0,", "int null default '0',", Same, Same},
        {"smallint(6)", {.NotNull = true, .Default = "1"}, "smallint not null default 1,",
         "smallint not null default '1',", Same, Same},
        {"char(1)", {.Default = "B"}, "char(1) null default B,", "char(1) null default 'B',", Same, Same},
        {"varchar(10)", {.Default = "''"}, "varchar(10) null default '',", Same, Same, Same},
        {"varchar(10)", {.Default = "O'x"}, "varchar(10) null default O'x,",
         "varchar(10) null default 'O''x',", Same, Same},
        {"varchar", {}, "varchar(0) null,", Same, Same, Same},
        {"decimal(12,4)", {}, "decimal(12, 4) null,", Same, Same, Same},
        {"decimal", {}, "decimal(0, 0) null,", Same, Same, Same},
        {"float(8)", {}, "float null,", Same, Same, Same},
        {"datetime(14)", {}, "char(14) null,", Same, Same, Same},
        {"date(20)", {}, "char(8) null,", Same, Same, Same},
        {"text(5)", {}, "text null,", Same, Same, Same},
        {"image(5)", {}, "image null,", Same, Same, Same},
        {"money(5)", {}, "char(5) null,", Same, Same, Same},
        {"boolean(6)", {}, "bit null,", Same, "char(1) null,", Same},
        {"boolean", {.NotNull = true, .Default = "Y"}, "bit not null default 1,", Same,
         "char(1) not null default Y,", "char(1) not null default 'Y',"},
        {"boolean", {.Default = "N"}, "bit null default 0,", Same, "char(1) null default N,",
         "char(1) null default 'N',"},
        {"boolean", {.Default = "y"}, "bit null default 0,", Same, "char(1) null default y,",
         "char(1) null default 'y',"},
        {"boolean", {.Default = "1"}, "bit null default 0,", Same, "char(1) null default 1,",
         "char(1) null default '1',"},
        {"boolean", {.Default = "''"}, "bit null default 0,", Same, "char(1) null default '',", Same},
        // clang-format on
    };
    for (size_t i = 0; i < std::size(rows); ++i)
        Store.Table(QString("T%1").arg(i))
            .Field("F", rows[i].Type, rows[i].Options)
            .Field("K", "int", {.Key = true});
    Store.Table("OTHER");
    Open();
    for (size_t i = 0; i < std::size(rows); ++i) {
        const auto &row = rows[i];
        const char *mssql = row.MSSQL ? row.MSSQL : row.Access;
        const char *asChar = row.AsChar ? row.AsChar : row.Access;
        const char *asCharMS = row.AsCharMS ? row.AsCharMS : row.AsChar ? row.AsChar : mssql;
        const auto line = [&](TDBType type, bool boolAsChar) {
            File.GetDBDTable("OTHER"); // so that the definition is read anew
            return Script(QString("T%1").arg(i), type, false, boolAsChar).value(6);
        };
        EXPECT_EQ(line(dbtAccess, false), Line("F", row.Access));
        EXPECT_EQ(line(dbtMSSQL, false), Line("F", mssql));
        EXPECT_EQ(line(dbtAccess, true), Line("F", asChar));
        EXPECT_EQ(line(dbtMSSQL, true), Line("F", asCharMS));
    }
}

TEST_F(TableScripts, filling_counts_bytes)
{
    Store.Table("T")
        .Field("编号", "char(4)", {.Default = "甲"})
        .Field("EXACTLY_TWENTY_FIVE_BYTES", "int")
        .Field("FOUR_AND_TWENTY_LETTERS_", "int")
        .Field("MUCH_LONGER_THAN_TWENTY_FIVE_BYTES", "int", {.Key = true, .Default = QString(60, 'x')});
    Open();
    const QStringList script = Script("T", dbtMSSQL);
    EXPECT_EQ(script[6], "  编号" + QString(21, ' ') + "char(4) null default '甲'," + QString(34, ' '));
    EXPECT_EQ(script[7], "  EXACTLY_TWENTY_FIVE_BYTESint null," + QString(51, ' '));
    EXPECT_EQ(script[8], "  FOUR_AND_TWENTY_LETTERS_ int null," + QString(51, ' '));
    EXPECT_EQ(script[9], "  MUCH_LONGER_THAN_TWENTY_FIVE_BYTESint null default '" + QString(60, 'x') + "',");
}

TEST_F(TableScripts, without_a_key_the_last_comma_goes)
{
    Store.Table("NOFIELDS", {}, "空表");
    Store.Table("NOKEY").Field("A", "int", {.Name = "甲"}).Field("B", "decimal(8,2)", {.Name = "乙"});
    Store.Table("COMMA").Field("A", "int", {.Name = "甲", .Remark = "一,二,三"});
    Open();
    QStringList audit = AuditLines(false);
    audit.last().replace("null,", "null ");
    EXPECT_EQ(Script("NOFIELDS", dbtAccess),
              QStringList("create table NOFIELDS(") + audit + QStringList(")"));
    audit = AuditLines(true);
    audit.last().replace("null,", "null ");
    EXPECT_EQ(Script("NOFIELDS", dbtMSSQL, true),
              QStringList({"--空表", "create table NOFIELDS("}) + audit + QStringList(")"));
    for (const TDBType type : {dbtAccess, dbtMSSQL}) {
        EXPECT_EQ(Script("NOKEY", type).mid(6),
                  QStringList({Line("A", "int null,"), Line("B", "decimal(8, 2) null "), ")"}));
        EXPECT_EQ(Script("COMMA", type, true).mid(7),
                  QStringList({Line("A", "int null,", "--甲(一,二 三)"), ")"}))
            << "the comma in the comment goes, and the one behind the column stays";
    }
}

TEST_F(TableScripts, the_key_is_the_marked_fields_in_order)
{
    Store.Table("T").Field("C", "int", {.Key = true}).Field("A", "int").Field("B", "int", {.Key = true});
    Open();
    EXPECT_EQ(Script("T", dbtAccess).mid(8),
              QStringList({Line("B", "int null,"), "  constraint PK_T primary key(C,B)", ")"}));
}

TEST_F(TableScripts, a_boolean_default_is_rewritten_once_for_good)
{
    Store.Table("T").Field("OK", "boolean", {.Key = true, .Default = "Y"}).Table("U");
    Open();
    EXPECT_EQ(Script("T", dbtAccess, false, true)[6], Line("OK", "char(1) null default Y,")) << "not yet";
    EXPECT_EQ(Script("T", dbtAccess)[6], Line("OK", "bit null default 1,"));
    EXPECT_EQ(Script("T", dbtMSSQL)[6], Line("OK", "bit null default 0,")) << "1 is not Y";
    EXPECT_EQ(Script("T", dbtMSSQL, false, true)[6], Line("OK", "char(1) null default '0',"));
    EXPECT_EQ(File.GetDBDTable("T")->TableFields()[0]->FieldDefault, "0");
    EXPECT_EQ(File.GetField("T", "OK")->FieldDefault, "Y") << "the file itself is as it was";
    File.GetDBDTable("U");
    EXPECT_EQ(Script("T", dbtMSSQL)[6], Line("OK", "bit null default 1,"));
}

TEST_F(TableScripts, indexes)
{
    Store.Table("T")
        .Field("A", "int")
        .Index("I1", "A;B")
        .Index("I2", "A", "u")
        .Index("I3", "A; B;C", "c")
        .Index("I4", "B", "cu")
        .Table("U");
    Open();
    const QStringList expected = {"create index I1 on T(A,B)", "create unique index I2 on T(A)",
                                  "create clustered index I3 on T(A, B,C)",
                                  "create unique clustered index I4 on T(B)"};
    const auto indexs = File.GetTableIndexs("T");
    TDBDTable *other = File.GetDBDTable("U"); // the table's name is the index's own
    for (qsizetype i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(other->GetIndexScript(dbtAccess, *indexs[i]), expected[i]);
        EXPECT_EQ(other->GetIndexScript(dbtMSSQL, *indexs[i]), expected[i]);
        EXPECT_EQ(other->GetAccessIndexScript(*indexs[i]), expected[i]);
        EXPECT_EQ(other->GetMSSQLIndexScript(*indexs[i]), expected[i]);
        EXPECT_EQ(other->GetIndexScript(TDBType(7), *indexs[i]), "");
    }
}

TEST_F(TableScripts, a_whole_script_has_go_behind_each_statement)
{
    Store.Table("B").Field("X", "int", {.Key = true}).Index("IB2", "X").Index("IB1", "X", "u");
    Store.Table("A").Field("Y", "int", {.Key = true});
    Open();
    for (const bool comments : {false, true}) {
        const QString a = File.GetDBDTable("A")->GetTableScript(dbtMSSQL, comments, true, true);
        const QString b = File.GetDBDTable("B")->GetTableScript(dbtMSSQL, comments, true, true);
        EXPECT_EQ(File.CreateScript(dbtMSSQL, comments, true, true),
                  QStringList({a, "go", "", b, "go", "create index IB2 on B(X)", "go",
                               "create unique index IB1 on B(X)", "go", ""}));
    }
    EXPECT_EQ(File.GetDBDTable("B")->Table(), "B");
}

TEST_F(TableScripts, class_text)
{
    Store.Table("T", "TThing");
    QString privates, published;
    const struct
    {
        const char *Type, *Class;
    } rows[] = {{"char(1)", "string"},    {"varchar(9)", "string"},   {"INT", "Integer"},
                {"smallint", "SmallInt"}, {"decimal(8,2)", "Double"}, {"float", "Double"},
                {"datetime", "string"},   {"date", "string"},         {"Boolean", "Boolean"},
                {"text", "string"},       {"image", "string"},        {"money", "string"}};
    for (size_t i = 0; i < std::size(rows); ++i) {
        const QString name = QString("Name%1").arg(i);
        Store.Field(QString("F%1").arg(i), rows[i].Type, {.Prop = name});
        privates += "    F" + name + ": " + rows[i].Class + ";\r\n";
        published +=
            "    property " + name + ": " + rows[i].Class + " read F" + name + " write F" + name + ";\r\n";
    }
    Store.Table("EMPTY", "TEmpty");
    Store.Table("ONE", "TOne").Field("X", "char(1)", {.Prop = "Name"});
    Open();
    EXPECT_EQ(File.GetDBDTable("T")->GetTableClass(), "  TThing = class(TDBObject)\r\n  private\r\n" +
                                                          privates + "  published\r\n" + published +
                                                          "  end;\r\n");
    EXPECT_EQ(File.GetDBDTable("EMPTY")->GetTableClass(),
              "  TEmpty = class(TDBObject)\r\n  private\r\n  published\r\n  end;\r\n");
    EXPECT_EQ(File.GetDBDTable("ONE")->GetTableClass(),
              "  TOne = class(TDBObject)\r\n"
              "  private\r\n"
              "    FName: string;\r\n"
              "  published\r\n"
              "    property Name: string read FName write FName;\r\n"
              "  end;\r\n");
}
