// SPDX-License-Identifier: MIT
#include "design/DBDTable.h"

#include "design/ClassText.h"
#include "design/DBDFile.h"
#include "design/FieldValue.h"
#include "design/WhereClause.h"
#include "platform/core/Format.h"

namespace Korvane {

TDBDTable::TDBDTable(QObject *owner) : TDBDObject(owner) {}

void TDBDTable::SetTable(const QString &table)
{
    if (table == FTable)
        return;
    FTable = table;
    FTableObject = File().GetTable(table);
    const TTableRead &read = File().LatestTable();
    FTableFields = read.Fields;
    FKeyFields = read.KeyFields;
    FKeyFieldStr = read.KeyFieldStr;
    FIndexs = read.Indexs;
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
    return (selection ? QStringLiteral("select 'N' as FSELECTED, * from ")
                      : QStringLiteral("select * from ")) +
           FTableObject->TableCode;
}

QString TDBDTable::GetSelectSQL(TDBType type, const QString &keys, const QVariant &values, TOpenOption option,
                                bool selection)
{
    const QString select = GetSelectSQL(selection);
    const QString where = GetWhereSQL(type, keys, values, option);
    return where.isEmpty() ? select : select + QStringLiteral(" where ") + where;
}

QString TDBDTable::GetWhereSQL(TDBType type, const QString &keys, const QVariant &values, TOpenOption option)
{
    return WhereClause(type, keys, values, option, [this](const QString &name) {
        const auto field = GetField(name);
        return TConditionColumn{field->FieldCode, field->FieldType};
    });
}

QString TDBDTable::GetInsertSQL(const TDBObject &object)
{
    CheckTable();
    QStringList codes, values;
    for (const auto &field : std::as_const(FTableFields)) {
        codes.append(field->FieldCode);
        values.append(GetDBFieldValue(object, *field));
    }
    return Format(QStringLiteral("insert into ") + FTableObject->TableCode +
                      QStringLiteral("(%s) values(%s)"),
                  {codes.join(QStringLiteral(", ")), values.join(QStringLiteral(", "))});
}

QString TDBDTable::GetUpdateSQL(TDBType type, const TDBObject &object)
{
    return GetUpdateSQL(type, object, FKeyFieldStr, object.KeyValues);
}

QString TDBDTable::GetUpdateSQL(TDBType type, const TDBObject &object, const QString &keys,
                                const QVariant &values)
{
    CheckTable();
    // NOTE: the conditions are part of the format, so that a "%" in a key value is a placeholder.
    const QString pattern = QStringLiteral("update ") + FTableObject->TableCode +
                            QStringLiteral(" set %s where ") + GetWhereSQL(type, keys, values, ooEqualAnd);
    QStringList assignments;
    for (const auto &field : std::as_const(FTableFields))
        assignments.append(field->FieldCode + QLatin1Char('=') + GetDBFieldValue(object, *field));
    return Format(pattern, {assignments.join(QStringLiteral(", "))});
}

QString TDBDTable::GetDeleteSQL(TDBType type, const TDBObject &object)
{
    CheckTable();
    return GetDeleteSQL(type, object, FKeyFieldStr, object.KeyValues);
}

QString TDBDTable::GetDeleteSQL(TDBType type, const TDBObject &, const QString &keys, const QVariant &values)
{
    CheckTable();
    return QStringLiteral("delete from ") + FTableObject->TableCode + QStringLiteral(" where ") +
           GetWhereSQL(type, keys, values, ooEqualAnd);
}

QString TDBDTable::GetDeleteSQL(TDBType type, const QString &keys, const QVariant &values)
{
    CheckTable();
    const QString where = GetWhereSQL(type, keys, values, ooEqualAnd);
    const QString statement = QStringLiteral("delete from ") + FTableObject->TableCode;
    return where.isEmpty() ? statement : statement + QStringLiteral(" where ") + where;
}

QString TDBDTable::GetTableClass() const { return RecordClassText(FTableObject->TableClass, FTableFields); }

} // namespace Korvane
