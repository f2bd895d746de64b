// SPDX-License-Identifier: MIT
#include "DesignTesting.h"

#include "design/FieldValue.h"

using namespace Korvane;
using namespace Korvane::Testing;

namespace {

/// A record with a property of each kind, two of them no columns.
class TKinds : public TDBObject
{
    Q_GADGET
    Q_PROPERTY(QString Text MEMBER Text)
    Q_PROPERTY(int Whole MEMBER Whole)
    Q_PROPERTY(qint16 Small MEMBER Small)
    Q_PROPERTY(qint64 Large MEMBER Large)
    Q_PROPERTY(double Number MEMBER Number)
    Q_PROPERTY(bool Flag MEMBER Flag)
    Q_PROPERTY(TMood Mood MEMBER Mood)
    Q_PROPERTY(TMarks Marks READ GetMarks WRITE SetMarks)
    Q_PROPERTY(Korvane::TFieldsObject *Child MEMBER Child)

public:
    enum TMood { mdCalm, mdGlad };
    Q_ENUM(TMood)
    enum TMark { mkFirst = 1, mkSecond = 2 };
    Q_DECLARE_FLAGS(TMarks, TMark)
    Q_FLAG(TMarks)

    TMarks GetMarks() const { return Marks; }
    void SetMarks(TMarks marks) { Marks = marks; }

    QString Text;
    int Whole = 0;
    qint16 Small = 0;
    qint64 Large = 0;
    double Number = 0;
    bool Flag = false;
    TMood Mood = mdCalm;
    TMarks Marks;
    TFieldsObject *Child = nullptr;
};

/// Inherits the columns of another record and adds one.
class TMoreFields : public TTablesQuery
{
    Q_GADGET
    Q_PROPERTY(QString Extra MEMBER Extra)

public:
    QString Extra;
};

class RecordObjects : public testing::Test
{
protected:
    RecordObjects()
    {
        RegisterClass<TKinds>();
        RegisterClass<TMoreFields>();
    }
    ~RecordObjects() override
    {
        UnRegisterClass<TMoreFields>();
        UnRegisterClass<TKinds>();
    }
};

} // namespace

TEST_F(RecordObjects, columns_are_the_properties_in_declared_order_without_sets_and_objects)
{
    EXPECT_EQ(TKinds().GetClassProperties(),
              QStringList({"Text", "Whole", "Small", "Large", "Number", "Flag", "Mood"}));
    EXPECT_EQ(TMoreFields().GetClassProperties(),
              QStringList({"ObjectType", "TableCode", "TableClass", "TableName", "Extra"}));
}

TEST_F(RecordObjects, the_base_has_no_columns_and_clearing_it_does_nothing)
{
    TDBObject object;
    object.KeyValues = 5;
    EXPECT_EQ(object.GetClassProperties(), QStringList());
    object.Clear();
    EXPECT_EQ(object.KeyValues, QVariant(5));
}

TEST_F(RecordObjects, clear_resets_the_columns_and_nothing_else)
{
    TFieldsObject child;
    TKinds object;
    object.Text = "x";
    object.Whole = -1;
    object.Small = 2;
    object.Large = Q_INT64_C(5000000000);
    object.Number = 0.5;
    object.Flag = true;
    object.Mood = TKinds::mdGlad;
    object.Marks = TKinds::mkSecond;
    object.Child = &child;
    object.KeyValues = QVariantList{"x", 1};
    object.Clear();
    EXPECT_EQ(RowText(object), "|0|0|0|0|False|mdCalm");
    EXPECT_EQ(object.Marks, TKinds::mkSecond);
    EXPECT_EQ(object.Child, &child);
    EXPECT_EQ(object.KeyValues, QVariant(QVariantList{"x", 1}));
}

TEST_F(RecordObjects, a_new_object_is_empty_and_has_no_key)
{
    EXPECT_EQ(RowText(TFieldsObject()), "|0|||||0|0|False|False|False||");
    EXPECT_TRUE(VarIsEmpty(TFieldsObject().KeyValues));
}

TEST_F(RecordObjects, the_nine_classes_are_there_by_name_from_the_start)
{
    const struct
    {
        const char *Name;
        const char *Properties;
    } rows[] = {
        {"TFieldsQuery",
         "TableCode;FieldNo;FieldCode;FieldName;FieldProp;FieldType;FieldPrecision;FieldSize;IsAuto;"
         "IsKey;IsNotNull;FieldDefault;Remark"},
        {"TTablesQuery", "ObjectType;TableCode;TableClass;TableName"},
        {"TChangesObject", "ChangeNo;ChangeDate;ChangeName;Remark;Access;MSSQL"},
        {"TColumnsObject", "QueryCode;ColumnNo;Alias;ColumnName;Expression;TableField"},
        {"TCommandsObject", "CommandCode;CommandName;Remark;Access;MSSQL"},
        {"TFieldsObject",
         "TableCode;FieldNo;FieldCode;FieldName;FieldProp;FieldType;FieldPrecision;FieldSize;IsAuto;"
         "IsKey;IsNotNull;FieldDefault;Remark"},
        {"TIndexsObject", "TableCode;IndexCode;IndexName;IndexFields;IsCluster;IsUnique"},
        {"TQuerysObject", "QueryCode;QueryClass;QueryName;Remark;Tables;Access;MSSQL"},
        {"TTablesObject", "TableCode;TableClass;TableName;Remark"},
    };
    QStringList names;
    for (const auto &row : rows) {
        const auto object = FindClass(row.Name).Create();
        const auto *record = dynamic_cast<const TDBObject *>(object.get());
        ASSERT_TRUE(record) << row.Name;
        EXPECT_EQ(record->GetClassProperties().join(';'), row.Properties) << row.Name;
        names.append(row.Name);
    }
    QStringList registered = RegisteredClasses();
    registered.removeIf([&names](const QString &name) { return !names.contains(name); });
    EXPECT_EQ(registered, names) << "the order of registration";
}

TEST_F(RecordObjects, taking_the_registration_back_and_giving_it_again)
{
    UnRegisterDesignClasses();
    EXPECT_EQ(GetClass("TFieldsObject"), nullptr);
    RegisterDesignClasses();
    RegisterDesignClasses();
    EXPECT_EQ(RegisteredClasses().count("TFieldsObject"), 1);
    // Put the classes of this test behind them again.
    UnRegisterClass<TKinds>();
    UnRegisterClass<TMoreFields>();
}

TEST_F(RecordObjects, literals_of_field_values)
{
    const struct
    {
        const char *Property;
        QVariant Value;
        const char *FieldType;
        const char *Literal;
    } rows[] = {
        {"Text", "O'Brien", "char", "'O''Brien'"},
        {"Text", "''", "varchar", "''''''"},
        {"Text", "  ", "varchar", "''"},
        {"Text", "", "text", "''"},
        {"Text", "\t 中 文\r\n", "text", "'中 文'"},
        {"Text", "　甲　", "char", "'　甲　'"},
        {"Text", "20240307", "date", "'20240307'"},
        {"Text", "20240307150509", "DateTime", "'20240307150509'"},
        {"Text", " 12 ", "int", "12"},
        {"Text", "", "int", ""},
        {"Text", " :PIC ", "image", ":PIC"},
        {"Text", "", "image", ""},
        {"Text", "yes", "boolean", "'N'"},
        {"Text", "Y", "boolean", "'N'"},
        {"Text", " tRuE ", "BOOLEAN", "'Y'"},
        {"Text", "", "boolean", "'N'"},
        {"Text", "x", "money", "'x'"},
        {"Text", "5", " int", "'5'"},
        {"Text", "5", "", "'5'"},
        {"text", "a", "char", "'a'"},
        {"Whole", -7, "int", "-7"},
        {"Whole", 7, "char", "'7'"},
        {"Whole", 1, "boolean", "'N'"},
        {"Small", 12, "smallint", "12"},
        {"Large", Q_INT64_C(5000000000), "int", "5000000000"},
        {"Number", 0.1, "decimal", "0.1"},
        {"Number", 1234567.891, "float", "1234567.891"},
        {"Number", 0.0, "decimal", "0"},
        {"Number", -2.5, "varchar", "'-2.5'"},
        {"Flag", true, "boolean", "'Y'"},
        {"Flag", false, "boolean", "'N'"},
        {"Flag", true, "char", "'True'"},
        {"Flag", false, "int", "False"},
        {"Mood", TKinds::mdGlad, "char", "'mdGlad'"},
    };
    for (const auto &row : rows) {
        TKinds object;
        SetPropValue(object, QString(row.Property), row.Value);
        EXPECT_EQ(GetDBFieldValue(object, row.Property, row.FieldType), row.Literal)
            << row.Property << " as " << row.FieldType;
        TFieldsObject field;
        field.FieldCode = "ANOTHER";
        field.FieldProp = row.Property;
        field.FieldType = row.FieldType;
        EXPECT_EQ(GetDBFieldValue(object, field), row.Literal);
    }
    EXPECT_THROW(GetDBFieldValue(TKinds(), "Nope", "char"), EPropertyError);
}

#include "test_record_objects.moc"
