// SPDX-License-Identifier: MIT
#include "design/DBDQuery.h"

#include "design/AuditColumns.h"
#include "design/ClassText.h"
#include "design/DBDFile.h"
#include "design/FieldValue.h"
#include "design/WhereClause.h"
#include "general/SessionValues.h"
#include "platform/core/Format.h"
#include "platform/core/StringList.h"
#include "platform/core/Text.h"

namespace Korvane {

TDBDQuery::TDBDQuery(QObject *owner) : TDBDObject(owner) {}

void TDBDQuery::SetQuery(const QString &query)
{
    if (query == FQuery)
        return;
    FQuery = query;
    FQueryObject = File().GetQuery(query);
    const TQueryRead &read = File().LatestQuery();
    FColumns = read.Columns;
    FTable = read.MainTable;
    FQueryFields = read.Fields;

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
    return QStringLiteral("select * from (") + GetQueryScript(type, selection, audit) +
           QStringLiteral(") ZZZ where ") + GetWhereSQL(type, keys, values, option);
}

QString TDBDQuery::GetWhereSQL(TDBType type, const QString &keys, const QVariant &values, TOpenOption option)
{
    return WhereClause(type, keys, values, option, [this](const QString &name) {
        const auto field = GetField(name);
        return TConditionColumn{field->FieldProp, field->FieldType};
    });
}

QString TDBDQuery::GetTableWhere(TDBType type, const QString &keys, const QVariant &values,
                                 TOpenOption option)
{
    return WhereClause(type, keys, values, option, [this](const QString &name) {
        const auto field = GetFieldCode(name);
        return TConditionColumn{field->FieldCode, field->FieldType};
    });
}

bool TDBDQuery::IsWritable(qsizetype column) const
{
    return FColumns[column]->Expression == FColumns[column]->TableField &&
           FQueryFields[column]->TableCode == FTable;
}

QString TDBDQuery::GetInsertSQL(const TDBObject &object)
{
    CheckQuery();
    QString codes, values;
    for (qsizetype i = 0; i < FQueryFields.size(); ++i) {
        if (!IsWritable(i))
            continue;
        // The comma goes by the column's place, not by what was written so far.
        if (i > 0) {
            codes += QStringLiteral(", ");
            values += QStringLiteral(", ");
        }
        const TFieldsObject &field = *FQueryFields[i];
        codes += field.Remark; // the source field's code
        values += GetDBFieldValue(object, field.FieldProp, field.FieldType);
    }
    return Format(QStringLiteral("insert into ") + FTable + QStringLiteral("(%s) values(%s)"),
                  {codes, values});
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
    // NOTE: the conditions are part of the format, so that a "%" in a key value is a placeholder.
    const QString pattern = QStringLiteral("update ") + FTable + QStringLiteral(" set %s where ") +
                            GetTableWhere(type, keys, values, ooEqualAnd);
    QString assignments;
    for (qsizetype i = 0; i < FQueryFields.size(); ++i) {
        if (!IsWritable(i))
            continue;
        if (i > 0)
            assignments += QStringLiteral(", ");
        const TFieldsObject &field = *FQueryFields[i];
        assignments +=
            field.Remark + QLatin1Char('=') + GetDBFieldValue(object, field.FieldCode, field.FieldType);
    }
    return Format(pattern, {assignments});
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
