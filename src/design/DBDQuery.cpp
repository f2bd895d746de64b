// SPDX-License-Identifier: MIT
#include "design/DBDQuery.h"

#include "design/AuditColumns.h"
#include "design/ClassText.h"
#include "design/DBDFile.h"
#include "general/SessionValues.h"
#include "platform/core/StringList.h"
#include "platform/core/Text.h"

namespace Korvane {

TDBDQuery::TDBDQuery(QObject *owner) : TDBDObject(owner) {}

void TDBDQuery::SetQuery(const QString &query)
{
    if (query == FQuery)
        return;
    FQuery = query;
    FResultKeys.Clear();
    FTableKeys.Clear();
    for (std::optional<QString> &script : FScripts)
        script.reset();
    FQueryObject = File().GetQuery(query);
    const TQueryRead &read = File().LatestQuery();
    FColumns = read.Columns;
    FTable = read.MainTable;
    FQueryFields = read.Fields;
    FRowStatements.Aim(FTable, FQueryFields, WrittenColumns());

    FDBDTable.SetDBDFile(&File());
    FDBDTable.SetTable(FTable);
    FKeyFields = FDBDTable.KeyFields();
    QStringList properties;
    for (const auto &field : std::as_const(FKeyFields))
        properties.append(field->FieldProp);
    FKeyFieldStr = properties.join(QLatin1Char(';'));
    FIndexs = FDBDTable.Indexs();
    // The objects are the table's own. When they come round again the fields are property
    // names already, which the lookup takes too.
    for (const auto &index : std::as_const(FIndexs))
        index->IndexFields = SetFieldProp(index->IndexFields);
}

void TDBDQuery::CheckQuery()
{
    if (FQuery.isEmpty())
        throw Exception(QStringLiteral("没有设置好Query属性"));
    SetQuery(FQuery);
}

std::shared_ptr<TFieldsObject> TDBDQuery::GetField(const QString &name)
{
    CheckQuery();
    for (const auto &field : std::as_const(FQueryFields))
        if (field->FieldCode == name || field->FieldProp == name)
            return field;
    return FDBDTable.GetField(name);
}

std::unique_ptr<TFieldsObject> TDBDQuery::GetFieldCode(const QString &name)
{
    return FDBDTable.GetField(name);
}

QString TDBDQuery::SetFieldProp(const QString &fields)
{
    QStringList names;
    SetDelimitedText(names, fields, QLatin1Char(';'));
    for (QString &name : names)
        name = GetField(name)->FieldProp;
    return DelimitedText(names, QLatin1Char(';'));
}

QString TDBDQuery::GetScript(bool selection, bool audit) const
{
    std::optional<QString> &script = FScripts[size_t(selection) * 2 + size_t(audit)];
    if (!script)
        script = SelectList(selection, audit);
    return *script;
}

QString TDBDQuery::SelectList(bool selection, bool audit) const
{
    QStringList lines;
    if (audit)
        for (const TAuditColumn &column : AuditColumns)
            lines.append(QStringLiteral(" %1.%2 as %2, ").arg(FTable, column.Name));
    for (const auto &column : FColumns)
        lines.append(QStringLiteral("  %1 as %2, ").arg(column->Expression, column->Alias));
    QString list = Trim(TextOf(lines));
    list.chop(1); // the last line's comma
    if (list.isEmpty())
        return {};
    QStringList script;
    if (selection)
        script.append(QStringLiteral("select 'N' as FSELECTED, * from ("));
    script += {QStringLiteral("select "), QStringLiteral("  ") + list, QStringLiteral("from "), QString()};
    return Trim(TextOf(script));
}

QString TDBDQuery::DialectScript(const QString &text, bool selection, bool audit) const
{
    QString script = GetScript(selection, audit) + QLatin1Char('\r') + text;
    if (selection)
        script += QStringLiteral(") ZZZ");
    if (!script.contains(u'%'))
        return script;
    return script.replace(QStringLiteral("%USERCODE%"), AUserCode)
        .replace(QStringLiteral("%USERGROUP%"), AUserGroup)
        .replace(QStringLiteral("%ISSUPER%"), AIsSuper);
}

QString TDBDQuery::GetAccessQueryScript(bool selection, bool audit) const
{
    return DialectScript(FQueryObject->Access, selection, audit);
}

QString TDBDQuery::GetMSSQLQueryScript(bool selection, bool audit) const
{
    return DialectScript(FQueryObject->MSSQL, selection, audit);
}

QString TDBDQuery::GetQueryScript(TDBType type, bool selection, bool audit) const
{
    switch (type) {
    case dbtAccess:
        return GetAccessQueryScript(selection, audit);
    case dbtMSSQL:
        return GetMSSQLQueryScript(selection, audit);
    }
    return {};
}

QString TDBDQuery::GetSelectSQL(TDBType type, bool selection, bool audit)
{
    CheckQuery();
    return GetQueryScript(type, selection, audit);
}

QString TDBDQuery::GetSelectSQL(TDBType type, const QString &keys, const QVariant &values, TOpenOption option,
                                bool selection, bool audit)
{
    CheckQuery();
    QString statement = QLatin1StringView("select * from (") + GetQueryScript(type, selection, audit) +
                        QLatin1StringView(") ZZZ where ");
    AppendConditions(statement, type, ResultKeys(keys), values, option);
    return statement;
}

const QList<TConditionColumn> &TDBDQuery::ResultKeys(const QString &keys)
{
    return FResultKeys.Of(keys, FieldsReading(), [this](const QString &name) {
        const auto field = GetField(name);
        return TConditionColumn{field->FieldProp, GetDataType(field->FieldType)};
    });
}

const QList<TConditionColumn> &TDBDQuery::TableKeys(const QString &keys)
{
    return FTableKeys.Of(keys, FieldsReading(), [this](const QString &name) {
        const auto field = GetFieldCode(name);
        return TConditionColumn{field->FieldCode, GetDataType(field->FieldType)};
    });
}

quint64 TDBDQuery::FieldsReading() const
{
    const TDBDFile *file = FDBDTable.DBDFile();
    return file ? file->FieldsReading() : 0;
}

QString TDBDQuery::GetWhereSQL(TDBType type, const QString &keys, const QVariant &values, TOpenOption option)
{
    QString conditions;
    AppendConditions(conditions, type, ResultKeys(keys), values, option);
    return conditions;
}

QString TDBDQuery::GetTableWhere(TDBType type, const QString &keys, const QVariant &values,
                                 TOpenOption option)
{
    QString conditions;
    AppendConditions(conditions, type, TableKeys(keys), values, option);
    return conditions;
}

QList<TWrittenColumn> TDBDQuery::WrittenColumns() const
{
    QList<TWrittenColumn> columns;
    for (qsizetype i = 0; i < FQueryFields.size(); ++i)
        if (FColumns[i]->Expression == FColumns[i]->TableField && FQueryFields[i]->TableCode == FTable)
            columns.append({i, FQueryFields[i]->Remark}); // the source field's code
    return columns;
}

QString TDBDQuery::GetInsertSQL(const TDBObject &object)
{
    CheckQuery();
    return FRowStatements.InsertSQL(object);
}

QString TDBDQuery::GetUpdateSQL(TDBType type, const TDBObject &object)
{
    CheckQuery();
    return GetUpdateSQL(type, object, FKeyFieldStr, object.KeyValues);
}

QString TDBDQuery::GetUpdateSQL(TDBType type, const TDBObject &object, const QString &keys,
                                const QVariant &values)
{
    CheckQuery();
    return FRowStatements.UpdateSQL(object, GetTableWhere(type, keys, values, ooEqualAnd));
}

QString TDBDQuery::GetDeleteSQL(TDBType type, const TDBObject &object)
{
    CheckQuery();
    return FDBDTable.GetDeleteSQL(type, object);
}

QString TDBDQuery::GetDeleteSQL(TDBType type, const TDBObject &object, const QString &keys,
                                const QVariant &values)
{
    CheckQuery();
    return FDBDTable.GetDeleteSQL(type, object, keys, values);
}

QString TDBDQuery::GetDeleteSQL(TDBType type, const QString &keys, const QVariant &values)
{
    CheckQuery();
    return FDBDTable.GetDeleteSQL(type, keys, values);
}

QString TDBDQuery::GetQueryClass() const { return RecordClassText(FQueryObject->QueryClass, FQueryFields); }

} // namespace Korvane
