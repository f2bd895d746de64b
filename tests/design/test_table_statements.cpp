// SPDX-License-Identifier: MIT
#include "DesignTesting.h"

using namespace Korvane;
using namespace Korvane::Testing;

namespace {

class TThing : public TDBObject
{
    Q_GADGET
    Q_PROPERTY(QString ThingCode MEMBER ThingCode)
    Q_PROPERTY(int Line MEMBER Line)
    Q_PROPERTY(QString Name MEMBER Name)
    Q_PROPERTY(int Age MEMBER Age)
    Q_PROPERTY(bool Done MEMBER Done)
    Q_PROPERTY(double Price MEMBER Price)
    Q_PROPERTY(QString Picture MEMBER Picture)

public:
    QString ThingCode;
    int Line = 0;
    QString Name;
    int Age = 0;
    bool Done = false;
    double Price = 0;
    QString Picture;
};

class TableStatements : public DesignTest
{
protected:
    TableStatements()
    {
        RegisterClass<TThing>();
        Store.Table("T", "TThing", "东西")
            .Field("CODE", "varchar(10)", {.Prop = "ThingCode", .Key = true})
            .Field("LINENO", "int", {.Prop = "Line", .Key = true, .Auto = true})
            .Field("NAME", "char(20)", {.Prop = "Name"})
            .Field("AGE", "smallint", {.Prop = "Age"})
            .Field("DONE", "boolean", {.Prop = "Done"})
            .Field("PRICE", "decimal(12,2)", {.Prop = "Price"})
            .Field("PIC", "image", {.Prop = "Picture"});
        Store.Table("TYPES")
            .Field("DAY", "date")
            .Field("MADE", "datetime")
            .Field("NOTE", "text")
            .Field("WEIGHT", "float")
            .Field("PIC", "image")
            .Field("ODD", "money");
        Store.Table("ONE").Field("CODE", "varchar(10)", {.Prop = "ThingCode", .Key = true});
        Store.Table("NOKEY").Field("NAME", "char(20)", {.Prop = "Name"}).Field("AGE", "int", {.Prop = "Age"});
        Store.Table("MISSING").Field("X", "int", {.Prop = "NoSuchProperty"});
        Open();
        Thing.ThingCode = "A1";
        Thing.Line = 3;
        Thing.Name = " O'Brien ";
        Thing.Age = 40;
        Thing.Done = true;
        Thing.Price = 12.5;
        Thing.Picture = ":PIC";
        Thing.KeyValues = QVariantList{"OLD", 2};
    }

    TThing Thing;
};

const QString Insert = "insert into T(CODE, LINENO, NAME, AGE, DONE, PRICE, PIC) "
                       "values('A1', 3, 'O''Brien', 40, 'Y', 12.5, :PIC)";
const QString Sets = "CODE='A1', LINENO=3, NAME='O''Brien', AGE=40, DONE='Y', PRICE=12.5, PIC=:PIC";

} // namespace

TEST_F(TableStatements, conditions)
{
    const struct
    {
        const char *Table, *Keys;
        QVariant Values;
        TOpenOption Option;
        const char *Access;
        const char *MSSQL; ///< null if it is the same
    } rows[] = {
        {"T", "", {}, ooEqualAnd, "", nullptr},
        {"T", "", QVariantList{"A1"}, ooLikeOr, "", nullptr},
        {"T", "CODE", "A1", ooEqualAnd, "CODE='A1'", nullptr},
        {"T", "CODE", QVariantList{"A1"}, ooEqualAnd, "CODE='A1'", nullptr},
        {"T", "CODE", QVariantList{"A1", "B1"}, ooEqualAnd, "CODE='A1'", nullptr},
        {"T", "CODE;LINENO", QVariantList{"A1", 3}, ooEqualAnd, "CODE='A1' and LINENO=3", nullptr},
        {"T", "CODE;LINENO", QVariantList{"A1", 3}, ooEqualOr, "CODE='A1' or LINENO=3", nullptr},
        {"T", " ThingCode ; Line ", QVariantList{"A1", 3}, ooEqualAnd, "CODE='A1' and LINENO=3", nullptr},
        {"T", "LINENO;CODE", QVariantList{3, "A1"}, ooEqualAnd, "LINENO=3 and CODE='A1'", nullptr},
        {"T", "CODE", "A1", ooLikeOr, "CODE like '*A1*'", "CODE like '%A1%'"},
        {"T", "CODE;NAME", QVariantList{"A", "B"}, ooLikeAnd, "CODE like '*A*' and NAME like '*B*'",
         "CODE like '%A%' and NAME like '%B%'"},
        {"T", "CODE;NAME", QVariantList{"A", "B"}, ooLikeOr, "CODE like '*A*' or NAME like '*B*'",
         "CODE like '%A%' or NAME like '%B%'"},
        {"T", "AGE", "5", ooLikeAnd, "AGE like *5*", "AGE like %5%"},
        {"T", "CODE", "", ooLikeAnd, "CODE like '**'", "CODE like '%%'"},
        {"T", "CODE", "O'x", ooEqualAnd, "CODE='O''x'", nullptr},
        {"T", "CODE", "O'x", ooLikeAnd, "CODE like '*O''x*'", "CODE like '%O''x%'"},
        {"T", "CODE", " A ", ooEqualAnd, "CODE=' A '", nullptr},
        {"T", "CODE", 7, ooEqualAnd, "CODE='7'", nullptr},
        {"T", "CODE", {}, ooEqualAnd, "CODE=''", nullptr},
        {"T", "CODE", VarNull(), ooEqualAnd, "CODE=''", nullptr},
        {"T", "LINENO", VarNull(), ooEqualAnd, "LINENO=", nullptr},
        {"T", "CODE;LINENO", QVariantList{VarNull(), VarNull()}, ooEqualAnd, "CODE='' and LINENO=", nullptr},
        {"T", "DONE", "Y", ooEqualAnd, "DONE='Y'", nullptr},
        {"T", "DONE", true, ooEqualAnd, "DONE='True'", nullptr},
        {"T", "PRICE", 12.5, ooEqualAnd, "PRICE=12.5", nullptr},
        {"T", "PRICE", "12.50", ooEqualAnd, "PRICE=12.50", nullptr},
        {"TYPES", "DAY;MADE", QVariantList{"20240307", "20240307150509"}, ooEqualAnd,
         "DAY='20240307' and MADE='20240307150509'", nullptr},
        {"TYPES", "NOTE;WEIGHT;PIC;ODD", QVariantList{"n", 0.25, "p", 1}, ooEqualAnd,
         "NOTE='n' and WEIGHT=0.25 and PIC=p and ODD='1'", nullptr},
    };
    for (const auto &row : rows) {
        TDBDTable *table = File.GetDBDTable(row.Table);
        const QString select = QString("select * from ") + row.Table;
        for (const TDBType type : {dbtAccess, dbtMSSQL}) {
            const QString where = type == dbtMSSQL && row.MSSQL ? row.MSSQL : row.Access;
            EXPECT_EQ(table->GetWhereSQL(type, row.Keys, row.Values, row.Option), where);
            EXPECT_EQ(table->GetSelectSQL(type, row.Keys, row.Values, row.Option, false),
                      where.isEmpty() ? select : select + " where " + where);
        }
    }
}

TEST_F(TableStatements, conditions_that_cannot_be_written)
{
    TDBDTable *table = File.GetDBDTable("T");
    const auto where = [table](const QString &keys, const QVariant &values) {
        table->GetWhereSQL(dbtAccess, keys, values, ooEqualAnd);
    };
    EXPECT_EQ(MessageOf([&] { where("NOPE", 1); }), "字段没有定义\rT.NOPE");
    EXPECT_EQ(MessageOf([&] { where("CODE;code", QVariantList{1, 2}); }), "字段没有定义\rT.code");
    EXPECT_THROW(where("CODE;LINENO", "A1"), EVariantError) << "two keys and no list";
    EXPECT_THROW(where("CODE;LINENO", {}), EVariantError);
    EXPECT_THROW(where("CODE;LINENO", QVariantList{"A1"}), EVariantError) << "more keys than values";
    EXPECT_THROW(where("CODE", QVariantList{}), EVariantError);
}

TEST_F(TableStatements, select)
{
    TDBDTable *table = File.GetDBDTable("TThing");
    EXPECT_EQ(table->GetSelectSQL(false), "select * from T") << "the code, though aimed by the class";
    EXPECT_EQ(table->GetSelectSQL(true), "select 'N' as FSELECTED, * from T");
    EXPECT_EQ(table->GetSelectSQL(dbtMSSQL, "Name", "x", ooLikeAnd, true),
              "select 'N' as FSELECTED, * from T where NAME like '%x%'");
}

TEST_F(TableStatements, insert_takes_all_fields)
{
    TDBDTable *table = File.GetDBDTable("T");
    EXPECT_EQ(table->GetInsertSQL(Thing), Insert);
    Thing.Name = "50%s %d";
    EXPECT_EQ(table->GetInsertSQL(Thing), QString(Insert).replace("O''Brien", "50%s %d"));
    EXPECT_EQ(table->GetInsertSQL(TThing()), "insert into T(CODE, LINENO, NAME, AGE, DONE, PRICE, PIC) "
                                             "values('', 0, '', 0, 'N', 0, )");
}

TEST_F(TableStatements, update)
{
    TDBDTable *table = File.GetDBDTable("T");
    for (const TDBType type : {dbtAccess, dbtMSSQL}) {
        EXPECT_EQ(table->GetUpdateSQL(type, Thing),
                  "update T set " + Sets + " where CODE='OLD' and LINENO=2");
        EXPECT_EQ(table->GetUpdateSQL(type, Thing, "Name", "x"), "update T set " + Sets + " where NAME='x'");
        EXPECT_EQ(table->GetUpdateSQL(type, Thing, "", {}), "update T set " + Sets + " where ");
    }
    Thing.KeyValues = "B9";
    EXPECT_EQ(File.GetDBDTable("ONE")->GetUpdateSQL(dbtAccess, Thing),
              "update ONE set CODE='A1' where CODE='B9'");
    Thing.KeyValues = QVariantList{"n", 1};
    EXPECT_EQ(File.GetDBDTable("NOKEY")->GetUpdateSQL(dbtAccess, Thing),
              "update NOKEY set NAME='O''Brien', AGE=40 where NAME='n' and AGE=1")
        << "without a key all fields are";
}

TEST_F(TableStatements, a_percent_sign_in_a_key_is_a_placeholder_of_update_alone)
{
    TDBDTable *table = File.GetDBDTable("ONE");
    Thing.ThingCode = "5%s";
    EXPECT_EQ(table->GetUpdateSQL(dbtAccess, Thing, "CODE", "A"), "update ONE set CODE='5%s' where CODE='A'")
        << "the values that are set are safe";
    EXPECT_THROW(table->GetUpdateSQL(dbtAccess, Thing, "CODE", "50%"), EConvertError);
    EXPECT_THROW(table->GetUpdateSQL(dbtAccess, Thing, "CODE", "%s"), EConvertError);
    EXPECT_EQ(table->GetUpdateSQL(dbtAccess, Thing, "CODE", "50%%"),
              "update ONE set CODE='5%s' where CODE='50%'");
    EXPECT_EQ(table->GetUpdateSQL(dbtAccess, Thing, "CODE", "%0:s"),
              "update ONE set CODE='5%s' where CODE='CODE='5%s''");
    Thing.KeyValues = "50%";
    EXPECT_EQ(table->GetDeleteSQL(dbtAccess, Thing), "delete from ONE where CODE='50%'");
    EXPECT_EQ(table->GetSelectSQL(dbtAccess, "CODE", "50%", ooEqualAnd, false),
              "select * from ONE where CODE='50%'");
}

TEST_F(TableStatements, delete_)
{
    TDBDTable *table = File.GetDBDTable("T");
    for (const TDBType type : {dbtAccess, dbtMSSQL}) {
        EXPECT_EQ(table->GetDeleteSQL(type, Thing), "delete from T where CODE='OLD' and LINENO=2");
        EXPECT_EQ(table->GetDeleteSQL(type, Thing, "Line", 9), "delete from T where LINENO=9");
        EXPECT_EQ(table->GetDeleteSQL(type, Thing, "", {}), "delete from T where ");
        EXPECT_EQ(table->GetDeleteSQL(type, "CODE;Line", QVariantList{"x", 1}),
                  "delete from T where CODE='x' and LINENO=1");
        EXPECT_EQ(table->GetDeleteSQL(type, "", {}), "delete from T");
    }
}

TEST_F(TableStatements, an_object_that_does_not_fit)
{
    EXPECT_THROW(File.GetDBDTable("MISSING")->GetInsertSQL(Thing), EPropertyError);
    EXPECT_THROW(File.GetDBDTable("MISSING")->GetUpdateSQL(dbtAccess, Thing, "X", 1), EPropertyError);
    EXPECT_EQ(File.GetDBDTable("MISSING")->GetDeleteSQL(dbtAccess, Thing, "X", 1),
              "delete from MISSING where X=1");
    Thing.KeyValues = QVariant();
    EXPECT_THROW(File.GetDBDTable("T")->GetUpdateSQL(dbtAccess, Thing), EVariantError);
    EXPECT_THROW(File.GetDBDTable("T")->GetDeleteSQL(dbtAccess, Thing), EVariantError);
}

TEST_F(TableStatements, an_unset_definition)
{
    TDBDTable table;
    table.SetDBDFile(&File);
    const std::function<void()> calls[] = {
        [&] { table.CheckTable(); },
        [&] { table.GetField("CODE"); },
        [&] { table.GetSelectSQL(false); },
        [&] { table.GetSelectSQL(dbtAccess, "CODE", 1, ooEqualAnd, false); },
        [&] { table.GetWhereSQL(dbtAccess, "CODE", 1, ooEqualAnd); },
        [&] { table.GetInsertSQL(Thing); },
        [&] { table.GetUpdateSQL(dbtAccess, Thing); },
        [&] { table.GetUpdateSQL(dbtAccess, Thing, "CODE", 1); },
        [&] { table.GetDeleteSQL(dbtAccess, Thing); },
        [&] { table.GetDeleteSQL(dbtAccess, Thing, "CODE", 1); },
        [&] { table.GetDeleteSQL(dbtAccess, "CODE", 1); },
    };
    for (const auto &call : calls)
        EXPECT_EQ(MessageOf(call), "没有设置好Table属性");
    EXPECT_EQ(table.GetWhereSQL(dbtAccess, "", {}, ooEqualAnd), "") << "no key, no look at the definition";
}

#include "test_table_statements.moc"
