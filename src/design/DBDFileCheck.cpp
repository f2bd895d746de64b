// SPDX-License-Identifier: MIT
// The statements of TDBDFile that find and fill NULLs.
#include "design/DBDFile.h"

#include "design/AuditColumns.h"
#include "platform/core/Format.h"
#include "platform/core/FormatDateTime.h"
#include "platform/core/Text.h"

namespace Korvane {

namespace {

QString CheckStatement(const TCheckedField &field, const QString &column, const QString &label)
{
    return Format(QStringLiteral("select 1 from %0:s where %1:s is null  --%2:s.%3:s"),
                  {field.TableCode, column, field.TableName, label});
}

/// NOTE: the value is part of the format, so that a "%" in a default is a placeholder.
QString RepairStatement(const TCheckedField &field, const QString &column, const QString &value)
{
    return Format(QStringLiteral("update %0:s set %1:s = ") + value + QStringLiteral(" where %1:s is null"),
                  {field.TableCode, column});
}

/// What a missing value is filled with; empty for a column that stays as it is.
QString RepairValue(const TCheckedField &field)
{
    switch (GetDataType(field.FieldType)) {
    case dtInt:
    case dtSmallint:
    case dtDecimal:
    case dtFloat:
        return field.FieldDefault.isEmpty() ? QStringLiteral("0") : field.FieldDefault;
    case dtImage:
        return {};
    default:
        return QuotedStr(field.FieldDefault);
    }
}

} // namespace

std::vector<TCheckedField> TDBDFile::CheckedFields()
{
    TDesignTable<TCheckedField> fields(CheckedFieldsLayout);
    fields.Open(FConnection);
    return fields.Rows();
}

QStringList TDBDFile::GetCheckSQL()
{
    QStringList statements;
    QString table;
    for (const TCheckedField &field : CheckedFields()) {
        if (field.TableCode != table) {
            table = field.TableCode;
            for (const TAuditColumn &column : AuditColumns)
                statements.append(CheckStatement(field, column.Name, column.Label));
        }
        statements.append(CheckStatement(field, field.FieldCode, field.FieldName));
    }
    return statements;
}

QStringList TDBDFile::GetRepairSQL()
{
    QStringList statements;
    QString table;
    for (const TCheckedField &field : CheckedFields()) {
        const QString now = FormatDateTime(QStringLiteral("yyyymmddhhmmss"), Now());
        if (field.TableCode != table) {
            table = field.TableCode;
            for (const TAuditColumn &column : AuditColumns)
                statements.append(RepairStatement(field, column.Name,
                                                  QuotedStr(column.Repair.isEmpty() ? now : column.Repair)));
        }
        const QString value = RepairValue(field);
        if (!field.IsAuto && !value.isEmpty())
            statements.append(RepairStatement(field, field.FieldCode, value));
    }
    return statements;
}

} // namespace Korvane
