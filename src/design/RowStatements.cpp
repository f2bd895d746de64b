// SPDX-License-Identifier: MIT
#include "design/RowStatements.h"

#include "design/FieldValue.h"
#include "platform/core/Format.h"

namespace Korvane {

namespace {

constexpr QLatin1StringView Separator(", ");
constexpr qsizetype UsualValueLength = 24;

} // namespace

void TRowStatements::Aim(const QString &table, const TObjectList<TFieldsObject> &fields,
                         QList<TWrittenColumn> columns)
{
    FTable = table;
    FColumns = std::move(columns);
    FBindings.SetFields(fields);
    FInsertHead.clear();
}

QString TRowStatements::ColumnNames() const
{
    QString names;
    for (const TWrittenColumn &column : FColumns) {
        // The comma goes by the place of the field, not by what was written so far.
        if (column.Field > 0)
            names += Separator;
        names += column.Code;
    }
    return names;
}

void TRowStatements::AppendValues(QString &statement, const TDBObject &object)
{
    if (FColumns.isEmpty())
        return; // then the object may be of any class
    const TRecordBinding &binding = FBindings.Of(object);
    for (const TWrittenColumn &column : std::as_const(FColumns)) {
        if (column.Field > 0)
            statement += Separator;
        AppendDBFieldValue(statement, object, binding.Property(column.Field),
                           binding.Field(column.Field).Type);
    }
}

void TRowStatements::AppendAssignments(QString &statement, const TDBObject &object)
{
    if (FColumns.isEmpty())
        return;
    const TRecordBinding &binding = FBindings.Of(object);
    for (const TWrittenColumn &column : std::as_const(FColumns)) {
        if (column.Field > 0)
            statement += Separator;
        statement += column.Code;
        statement += u'=';
        AppendDBFieldValue(statement, object, binding.Property(column.Field),
                           binding.Field(column.Field).Type);
    }
}

QString TRowStatements::InsertSQL(const TDBObject &object)
{
    if (FTable.contains(u'%')) {
        QString values;
        AppendValues(values, object);
        return Format(QStringLiteral("insert into ") + FTable + QStringLiteral("(%s) values(%s)"),
                      {ColumnNames(), values});
    }
    if (FInsertHead.isEmpty())
        FInsertHead =
            QStringLiteral("insert into %1(").arg(FTable) + ColumnNames() + QStringLiteral(") values(");
    QString statement;
    statement.reserve(FInsertHead.size() + FColumns.size() * UsualValueLength);
    statement += FInsertHead;
    AppendValues(statement, object);
    statement += u')';
    return statement;
}

QString TRowStatements::UpdateSQL(const TDBObject &object, const QString &conditions)
{
    const QLatin1StringView update("update "), set(" set "), where(" where ");
    QString statement;
    if (FTable.contains(u'%') || conditions.contains(u'%')) {
        AppendAssignments(statement, object);
        return Format(update + FTable + set + QStringLiteral("%s") + where + conditions, {statement});
    }
    statement.reserve(conditions.size() + FColumns.size() * UsualValueLength);
    statement += update;
    statement += FTable;
    statement += set;
    AppendAssignments(statement, object);
    statement += where;
    statement += conditions;
    return statement;
}

} // namespace Korvane
