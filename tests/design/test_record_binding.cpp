// SPDX-License-Identifier: MIT
// What a definition works out once and keeps, and when it has to work it out anew.
#include "DesignTesting.h"

#include "general/SessionValues.h"

using namespace Korvane;
using namespace Korvane::Testing;

namespace {

class TThing : public TDBObject
{
    Q_GADGET
    Q_PROPERTY(QString Code MEMBER Code)
    Q_PROPERTY(double Price MEMBER Price)

public:
    QString Code = "A1";
    double Price = 12.5;
};

/// A record class of the same columns with other types.
class TTexts : public TDBObject
{
    Q_GADGET
    Q_PROPERTY(QString Price MEMBER Price)
    Q_PROPERTY(int Code MEMBER Code)

public:
    QString Price = " 7 ";
    int Code = 5;
};

class RecordBinding : public DesignTest
{
protected:
    RecordBinding()
    {
        RegisterClass<TThing>();
        RegisterClass<TTexts>();
        Store.Table("T")
            .Field("CODE", "varchar(10)", {.Prop = "Code", .Key = true})
            .Field("PRICE", "decimal(12,2)", {.Prop = "price"});
        Store.Table("S").Field("SIZE", "int", {.Prop = "Size"}).Field("CODE", "char(4)", {.Prop = "Code"});
        Store.Table("NONE");
        Store.Table("HALF%").Field("CODE", "int", {.Prop = "Code"});
        Store.Query("Q", "T|", "T").Column("T.PRICE", "Price", "T.PRICE").Column("T.CODE", "Code", "T.CODE");
        Open();
    }
    ~RecordBinding() override
    {
        UnRegisterClass<TTexts>();
        UnRegisterClass<TThing>();
    }

    static QString BindingText(const TRecordBinding &binding)
    {
        QStringList fields{binding.ClassName()};
        for (const TBoundField &field : binding.Fields())
            fields.append(QString("%1 %2 %3")
                              .arg(field.Code, GetDataTypeName(field.Type),
                                   field.Property ? field.Property->Name : "-"));
        return fields.join('|');
    }
};

} // namespace

TEST_F(RecordBinding, fields_find_their_properties_blind_to_case)
{
    TDBDTable *table = File.GetDBDTable("T");
    EXPECT_EQ(BindingText(table->BindingOf(TThing())), "TThing|CODE varchar Code|PRICE decimal Price");
    EXPECT_EQ(BindingText(table->BindingOf(TTexts())), "TTexts|CODE varchar Code|PRICE decimal Price");
    EXPECT_EQ(BindingText(File.GetDBDQuery("Q")->BindingOf(TThing())),
              "TThing|Price decimal Price|Code varchar Code");
    EXPECT_EQ(table->GetInsertSQL(TTexts()), "insert into T(CODE, PRICE) values('5', 7)");
    EXPECT_EQ(table->GetInsertSQL(TThing()), "insert into T(CODE, PRICE) values('A1', 12.5)");

    table = File.GetDBDTable("S");
    EXPECT_EQ(BindingText(table->BindingOf(TThing())), "TThing|SIZE int -|CODE char Code");
    EXPECT_EQ(MessageOf([&] { table->BindingOf(TThing()).Property(0); }), "类TThing没有属性“Size”");
    EXPECT_EQ(MessageOf([&] { table->GetInsertSQL(TThing()); }), "类TThing没有属性“Size”");
    EXPECT_EQ(MessageOf([&] { table->BindingOf(TDBObject()); }), "没有找到类TDBObject");
}

TEST_F(RecordBinding, another_aim_binds_anew)
{
    const TThing thing;
    EXPECT_EQ(File.GetDBDTable("T")->GetDeleteSQL(dbtAccess, thing, "CODE", 1),
              "delete from T where CODE='1'");
    EXPECT_EQ(File.GetDBDTable("T")->GetInsertSQL(thing), "insert into T(CODE, PRICE) values('A1', 12.5)");
    EXPECT_EQ(File.GetDBDTable("HALF%")->GetDeleteSQL(dbtAccess, thing, "CODE", 1),
              "delete from HALF% where CODE=1");
    EXPECT_EQ(File.GetDBDTable("NONE")->GetInsertSQL(TDBObject()), "insert into NONE() values()")
        << "with nothing to read, an object of any class";
    EXPECT_EQ(File.GetDBDTable("T")->GetInsertSQL(thing), "insert into T(CODE, PRICE) values('A1', 12.5)");
}

TEST_F(RecordBinding, a_percent_sign_in_the_tables_name_is_a_placeholder)
{
    TDBDTable *table = File.GetDBDTable("HALF%");
    EXPECT_EQ(MessageOf([&] { table->GetInsertSQL(TTexts()); }),
              "格式 'insert into HALF%(%s) values(%s)' 无效");
    EXPECT_EQ(MessageOf([&] { table->GetUpdateSQL(dbtAccess, TTexts(), "CODE", 1); }),
              "格式 'update HALF% set %s where CODE=1' 无效");
}

TEST_F(RecordBinding, a_class_that_is_no_longer_registered_is_not_found)
{
    TDBDTable *table = File.GetDBDTable("T");
    const QString statement = table->GetInsertSQL(TThing());
    UnRegisterClass<TThing>();
    EXPECT_EQ(MessageOf([&] { table->GetInsertSQL(TThing()); }), "没有找到类TThing");
    RegisterClass<TThing>();
    EXPECT_EQ(table->GetInsertSQL(TThing()), statement);
}

TEST_F(RecordBinding, keys_follow_the_file_and_not_the_aim)
{
    TDBDTable *table = File.GetDBDTable("T");
    TDBDQuery *query = File.GetDBDQuery("Q");
    const auto conditions = [&](const QString &keys) {
        return MessageOf([&] {
            throw Exception(table->GetWhereSQL(dbtAccess, keys, "1", ooEqualAnd) + " / " +
                            query->GetTableWhere(dbtAccess, keys, "1", ooEqualAnd));
        });
    };
    EXPECT_EQ(conditions("CODE"), "CODE='1' / CODE='1'");
    Store.Run("update Fields set FieldType='int' where TableCode='T'");
    EXPECT_EQ(conditions("CODE"), "CODE='1' / CODE='1'");
    File.Refresh(rtTables);
    EXPECT_EQ(conditions("CODE"), "CODE=1 / CODE=1");
    File.SetActived(false);
    EXPECT_EQ(conditions("CODE"), ClosedMessage);
    EXPECT_EQ(query->GetWhereSQL(dbtAccess, "Code", "1", ooEqualAnd), "Code='1'")
        << "a query's own column asks no file";
    {
        TDBDFile other;
        other.SetFileName(Store.FileName());
        other.SetActived(true);
        table->SetDBDFile(&other);
        EXPECT_EQ(table->GetWhereSQL(dbtAccess, "CODE", "1", ooEqualAnd), "CODE=1");
    }
    EXPECT_EQ(MessageOf([&] { table->GetWhereSQL(dbtAccess, "CODE", "1", ooEqualAnd); }),
              "没有设置正确的DBDFile属性");
}

TEST_F(RecordBinding, more_key_lists_than_are_kept)
{
    TDBDTable *table = File.GetDBDTable("T");
    for (int round = 0; round < 2; ++round) {
        QStringList keys;
        QVariantList values;
        for (int i = 1; i <= 40; ++i) {
            keys.append("CODE");
            values.append(i);
            const QString where = table->GetWhereSQL(dbtAccess, keys.join(';'), values, ooEqualOr);
            EXPECT_EQ(where.count("CODE="), i);
            EXPECT_TRUE(where.endsWith(QString("CODE='%1'").arg(i)));
        }
    }
}

TEST_F(RecordBinding, a_querys_script_is_kept_and_its_macros_are_not)
{
    Store.Query("M", "T|", "T where CODE='%USERCODE%'").Column("T.CODE", "Code", "T.CODE");
    File.Refresh(rtQuerys);
    TDBDQuery *query = File.GetDBDQuery("M");
    for (const char *user : {"a", "b"}) {
        AUserCode = user;
        EXPECT_EQ(query->GetSelectSQL(dbtAccess, false, false),
                  QString("select \r\n  T.CODE as Code\r\nfrom\rT where CODE='%1'").arg(user));
    }
    AUserCode.clear();
    EXPECT_EQ(File.GetDBDQuery("Q")->GetScript(false, false),
              "select \r\n  T.PRICE as Price, \r\n  T.CODE as Code\r\nfrom");
}

#include "test_record_binding.moc"
