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
    FBeforeValues.clear();
    FAssignments.clear();
}

/// Worked out at the first statement: many definitions never write one.
void TRowStatements::PrepareTexts()
{
    if (!FAssignments.isEmpty())
        return;
    for (const TWrittenColumn &column : std::as_const(FColumns)) {
        // The comma goes by the place of the field, not by what was written so far.
        FBeforeValues.append(column.Field > 0 ? QString(Separator) : QString());
        FAssignments.append(FBeforeValues.last() + column.Code + u'=');
    }
}

QString TRowStatements::ColumnNames() const
{
    QString names;
    for (qsizetype i = 0; i < FColumns.size(); ++i)
        names += FBeforeValues[i] + FColumns[i].Code;
    return names;
}

void TRowStatements::AppendValues(QString &statement, const QStringList &before, const TDBObject &object)
{
    if (FColumns.isEmpty())
        return; // then the object may be of any class
    const TRecordBinding &binding = FBindings.Of(object);
    for (qsizetype i = 0; i < FColumns.size(); ++i) {
        const qsizetype field = FColumns[i].Field;
        statement += before[i];
        AppendDBFieldValue(statement, object, binding.Property(field), binding.Field(field).Type);
    }
}

QString TRowStatements::InsertSQL(const TDBObject &object)
{
    PrepareTexts();
    if (FTable.contains(u'%')) {
        QString values;
        AppendValues(values, FBeforeValues, object);
        return Format(QStringLiteral("insert into ") + FTable + QStringLiteral("(%s) values(%s)"),
                      {ColumnNames(), values});
    }
    if (FInsertHead.isEmpty())
        FInsertHead =
            QStringLiteral("insert into %1(").arg(FTable) + ColumnNames() + QStringLiteral(") values(");
    QString statement;
    statement.reserve(FInsertHead.size() + FColumns.size() * UsualValueLength);
    statement += FInsertHead;
    AppendValues(statement, FBeforeValues, object);
    statement += u')';
    return statement;
}

QString TRowStatements::UpdateSQL(const TDBObject &object, const QString &conditions)
{
    PrepareTexts();
    const QLatin1StringView update("update "), set(" set "), where(" where ");
    QString statement;
    if (FTable.contains(u'%') || conditions.contains(u'%')) {
        AppendValues(statement, FAssignments, object);
        return Format(update + FTable + set + QStringLiteral("%s") + where + conditions, {statement});
    }
    statement.reserve(conditions.size() + FColumns.size() * UsualValueLength);
    statement += update;
    statement += FTable;
    statement += set;
    AppendValues(statement, FAssignments, object);
    statement += where;
    statement += conditions;
    return statement;
}

} // namespace Korvane
