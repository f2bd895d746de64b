// SPDX-License-Identifier: MIT
#include "design/DBDTable.h"

#include "design/ClassText.h"
#include "design/DBDFile.h"

namespace Korvane {

namespace {

constexpr QLatin1StringView Select("select * from ");
constexpr QLatin1StringView SelectWithSelection("select 'N' as FSELECTED, * from ");
constexpr QLatin1StringView Delete("delete from ");
constexpr QLatin1StringView Where(" where ");

} // namespace

TDBDTable::TDBDTable(QObject *owner) : TDBDObject(owner) {}

void TDBDTable::SetTable(const QString &table)
{
    if (table == FTable)
        return;
    FTable = table;
    FKeyColumns.Clear();
    FTableObject = File().GetTable(table);
    const TTableRead &read = File().LatestTable();
    FTableFields = read.Fields;
    FKeyFields = read.KeyFields;
    FKeyFieldStr = read.KeyFieldStr;
    FIndexs = read.Indexs;
    QList<TWrittenColumn> columns;
    for (qsizetype i = 0; i < FTableFields.size(); ++i)
        columns.append({i, FTableFields[i]->FieldCode});
    FRowStatements.Aim(FTableObject->TableCode, FTableFields, std::move(columns));
}

void TDBDTable::CheckTable()
{
    if (FTable.isEmpty())
        throw Exception(QStringLiteral("没有设置好Table属性"));
    SetTable(FTable);
}

std::unique_ptr<TFieldsObject> TDBDTable::GetField(const QString &field)
{
    CheckTable();
    return File().GetField(FTableObject->TableCode, field);
}

QString TDBDTable::GetSelectSQL(bool selection)
{
    CheckTable();
    return (selection ? SelectWithSelection : Select) + FTableObject->TableCode;
}

QString TDBDTable::GetSelectSQL(TDBType type, const QString &keys, const QVariant &values, TOpenOption option,
                                bool selection)
{
    QString statement = GetSelectSQL(selection);
    const qsizetype length = statement.size();
    statement += Where;
    AppendWhere(statement, type, keys, values, option);
    if (statement.size() == length + Where.size())
        statement.truncate(length);
    return statement;
}

void TDBDTable::AppendWhere(QString &statement, TDBType type, const QString &keys, const QVariant &values,
                            TOpenOption option)
{
    const TDBDFile *file = DBDFile();
    const auto resolve = [this](const QString &name) {
        const auto field = GetField(name);
        return TConditionColumn{field->FieldCode, GetDataType(field->FieldType)};
    };
    AppendConditions(statement, type, FKeyColumns.Of(keys, file ? file->FieldsReading() : 0, resolve), values,
                     option);
}

QString TDBDTable::GetWhereSQL(TDBType type, const QString &keys, const QVariant &values, TOpenOption option)
{
    QString conditions;
    AppendWhere(conditions, type, keys, values, option);
    return conditions;
}

QString TDBDTable::GetInsertSQL(const TDBObject &object)
{
    CheckTable();
    return FRowStatements.InsertSQL(object);
}

QString TDBDTable::GetUpdateSQL(TDBType type, const TDBObject &object)
{
    return GetUpdateSQL(type, object, FKeyFieldStr, object.KeyValues);
}

QString TDBDTable::GetUpdateSQL(TDBType type, const TDBObject &object, const QString &keys,
                                const QVariant &values)
{
    CheckTable();
    return FRowStatements.UpdateSQL(object, GetWhereSQL(type, keys, values, ooEqualAnd));
}

QString TDBDTable::GetDeleteSQL(TDBType type, const TDBObject &object)
{
    CheckTable();
    return GetDeleteSQL(type, object, FKeyFieldStr, object.KeyValues);
}

QString TDBDTable::GetDeleteSQL(TDBType type, const TDBObject &, const QString &keys, const QVariant &values)
{
    CheckTable();
    QString statement = Delete + FTableObject->TableCode;
    statement += Where;
    AppendWhere(statement, type, keys, values, ooEqualAnd);
    return statement;
}

QString TDBDTable::GetDeleteSQL(TDBType type, const QString &keys, const QVariant &values)
{
    CheckTable();
    const QString where = GetWhereSQL(type, keys, values, ooEqualAnd);
    const QString statement = Delete + FTableObject->TableCode;
    return where.isEmpty() ? statement : statement + Where + where;
}

QString TDBDTable::GetTableClass() const { return RecordClassText(FTableObject->TableClass, FTableFields); }

} // namespace Korvane
