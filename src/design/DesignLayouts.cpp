// SPDX-License-Identifier: MIT
#include "design/DesignLayouts.h"

namespace Korvane {

namespace {

/// The columns of `Fields`, for the table itself and for the join that adds to it.
template <class Row> QList<TDesignColumn<Row>> FieldColumns()
{
    return {
        {QStringLiteral("TableCode"), &Row::TableCode},
        {QStringLiteral("FieldNo"), &Row::FieldNo},
        {QStringLiteral("FieldCode"), &Row::FieldCode},
        {QStringLiteral("FieldName"), &Row::FieldName},
        {QStringLiteral("FieldProp"), &Row::FieldProp},
        {QStringLiteral("FieldType"), &Row::FieldType},
        {QStringLiteral("FieldPrecision"), &Row::FieldPrecision},
        {QStringLiteral("FieldSize"), &Row::FieldSize},
        {QStringLiteral("IsAuto"), &Row::IsAuto},
        {QStringLiteral("IsKey"), &Row::IsKey},
        {QStringLiteral("IsNotNull"), &Row::IsNotNull},
        {QStringLiteral("FieldDefault"), &Row::FieldDefault},
        {QStringLiteral("Remark"), &Row::Remark},
    };
}

} // namespace

const TDesignLayout<TTablesObject> TablesLayout = {
    QStringLiteral("select * from Tables order by TableCode"),
    {
        {QStringLiteral("TableCode"), &TTablesObject::TableCode},
        {QStringLiteral("TableClass"), &TTablesObject::TableClass},
        {QStringLiteral("TableName"), &TTablesObject::TableName},
        {QStringLiteral("Remark"), &TTablesObject::Remark},
    },
    {&TTablesObject::TableCode},
};

const TDesignLayout<TFieldsObject> FieldsLayout = {
    QStringLiteral("select * from Fields order by TableCode, FieldNo"),
    FieldColumns<TFieldsObject>(),
    {&TFieldsObject::TableCode, &TFieldsObject::FieldNo},
};

const TDesignLayout<TIndexsObject> IndexsLayout = {
    QStringLiteral("select * from Indexs"),
    {
        {QStringLiteral("TableCode"), &TIndexsObject::TableCode},
        {QStringLiteral("IndexCode"), &TIndexsObject::IndexCode},
        {QStringLiteral("IndexName"), &TIndexsObject::IndexName},
        {QStringLiteral("IndexFields"), &TIndexsObject::IndexFields},
        {QStringLiteral("IsCluster"), &TIndexsObject::IsCluster},
        {QStringLiteral("IsUnique"), &TIndexsObject::IsUnique},
    },
    {},
};

const TDesignLayout<TQuerysObject> QuerysLayout = {
    QStringLiteral("select * from Querys order by QueryCode"),
    {
        {QStringLiteral("QueryCode"), &TQuerysObject::QueryCode},
        {QStringLiteral("QueryClass"), &TQuerysObject::QueryClass},
        {QStringLiteral("QueryName"), &TQuerysObject::QueryName},
        {QStringLiteral("Remark"), &TQuerysObject::Remark},
        {QStringLiteral("Tables"), &TQuerysObject::Tables},
        {QStringLiteral("Access"), &TQuerysObject::Access},
        {QStringLiteral("MSSQL"), &TQuerysObject::MSSQL},
    },
    {&TQuerysObject::QueryCode},
};

const TDesignLayout<TColumnsObject> ColumnsLayout = {
    QStringLiteral("select * from Columns order by QueryCode, ColumnNo"),
    {
        {QStringLiteral("QueryCode"), &TColumnsObject::QueryCode},
        {QStringLiteral("ColumnNo"), &TColumnsObject::ColumnNo},
        {QStringLiteral("ColumnName"), &TColumnsObject::ColumnName},
        {QStringLiteral("Expression"), &TColumnsObject::Expression},
        {QStringLiteral("Alias"), &TColumnsObject::Alias},
        {QStringLiteral("TableField"), &TColumnsObject::TableField},
    },
    {&TColumnsObject::QueryCode, &TColumnsObject::ColumnNo},
};

const TDesignLayout<TCommandsObject> CommandsLayout = {
    QStringLiteral("select * from Commands order by CommandCode"),
    {
        {QStringLiteral("CommandCode"), &TCommandsObject::CommandCode},
        {QStringLiteral("CommandName"), &TCommandsObject::CommandName},
        {QStringLiteral("Remark"), &TCommandsObject::Remark},
        {QStringLiteral("Access"), &TCommandsObject::Access},
        {QStringLiteral("MSSQL"), &TCommandsObject::MSSQL},
    },
    {&TCommandsObject::CommandCode},
};

const TDesignLayout<TChangesObject> ChangesLayout = {
    QStringLiteral("select * from Changes order by ChangeNo"),
    {
        {QStringLiteral("ChangeNo"), &TChangesObject::ChangeNo},
        {QStringLiteral("ChangeDate"), &TChangesObject::ChangeDate},
        {QStringLiteral("ChangeName"), &TChangesObject::ChangeName},
        {QStringLiteral("Remark"), &TChangesObject::Remark},
        {QStringLiteral("Access"), &TChangesObject::Access},
        {QStringLiteral("MSSQL"), &TChangesObject::MSSQL},
    },
    {&TChangesObject::ChangeNo},
};

const TDesignLayout<TCheckedField> CheckedFieldsLayout = {
    QStringLiteral("select A.TableName, B.* from Tables A, Fields B where A.TableCode = B.TableCode "
                   "order by B.TableCode, B.FieldNo"),
    FieldColumns<TCheckedField>() +
        QList<TDesignColumn<TCheckedField>>{{QStringLiteral("TableName"), &TCheckedField::TableName}},
    {&TCheckedField::TableCode, &TCheckedField::FieldNo},
};

} // namespace Korvane
