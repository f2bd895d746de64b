// SPDX-License-Identifier: MIT
#include "general/Types.h"

#include <gtest/gtest.h>

using namespace Korvane;

namespace {

struct TypeRow
{
    int Ordinal;
    TDataType Type;
    QString Name;
    QString ColumnType;
    QString ColumnTypeBoolAsChar;
    int FieldType;
    QString PropertyType;
};

const TypeRow Rows[] = {
    {0, dtChar, "char", "char", "char", 1, "string"},
    {1, dtVarchar, "varchar", "varchar", "varchar", 1, "string"},
    {2, dtInt, "int", "int", "int", 3, "Integer"},
    {3, dtSmallint, "smallint", "smallint", "smallint", 2, "SmallInt"},
    {4, dtDecimal, "decimal", "decimal", "decimal", 6, "Double"},
    {5, dtFloat, "float", "float", "float", 6, "Double"},
    {6, dtDateTime, "datetime", "char(14)", "char(14)", 1, "string"},
    {7, dtDate, "date", "char(8)", "char(8)", 1, "string"},
    {8, dtBoolean, "boolean", "bit", "char(1)", 1, "Boolean"},
    {9, dtText, "text", "text", "text", 16, "string"},
    {10, dtImage, "image", "image", "image", 15, "string"},
    // Out of range.
    {11, TDataType(11), "char", "char", "char", 1, "string"},
    {-1, TDataType(-1), "char", "char", "char", 1, "string"},
};

} // namespace

TEST(Types, each_logical_type_has_its_column_field_and_property_type)
{
    for (const TypeRow &row : Rows) {
        SCOPED_TRACE(row.Ordinal);
        EXPECT_EQ(row.Type, row.Ordinal);
        EXPECT_EQ(GetDataTypeName(row.Type), row.Name);
        EXPECT_EQ(GetDBFieldType(row.Type, false), row.ColumnType);
        EXPECT_EQ(GetDBFieldType(row.Type, true), row.ColumnTypeBoolAsChar);
        EXPECT_EQ(GetFieldType(row.Type), row.FieldType);
        EXPECT_EQ(GetPropDataType(row.Type), row.PropertyType);
    }
}

TEST(Types, a_logical_type_is_found_in_any_capitals_and_else_is_char)
{
    const struct
    {
        QString Name;
        TDataType Type;
    } rows[] = {
        {"char", dtChar},       {"VarChar", dtVarchar}, {"INT", dtInt},           {"smallInt", dtSmallint},
        {"DECIMAL", dtDecimal}, {"float", dtFloat},     {"DATETIME", dtDateTime}, {"Date", dtDate},
        {"bOOLEAN", dtBoolean}, {"text", dtText},       {"Image", dtImage},       {"", dtChar},
        {" int", dtChar},       {"int ", dtChar},       {"integer", dtChar},      {QString(), dtChar},
    };
    for (const auto &row : rows)
        EXPECT_EQ(GetDataType(row.Name), row.Type) << qPrintable(row.Name);
}

TEST(Types, a_dialect_is_found_by_its_exact_name_and_else_is_access)
{
    const struct
    {
        QString Name;
        TDBType Type;
    } rows[] = {
        {"Access", dbtAccess}, {"MSSQL", dbtMSSQL}, {"access", dbtAccess}, {"mssql", dbtAccess},
        {"MSSQL ", dbtAccess}, {"", dbtAccess},     {"Oracle", dbtAccess},
    };
    for (const auto &row : rows)
        EXPECT_EQ(GetDBType(row.Name), row.Type) << qPrintable(row.Name);
    EXPECT_EQ(GetDBTypeName(dbtAccess), "Access");
    EXPECT_EQ(GetDBTypeName(dbtMSSQL), "MSSQL");
    EXPECT_EQ(GetDBTypeName(TDBType(2)), "Access");
}
