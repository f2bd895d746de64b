// SPDX-License-Identifier: MIT
#include "datasets/ExTable.h"

#include "design/DBDFile.h"

namespace Korvane {

TDBDTable *TExTable::GetDBDTable() const { return File().GetDBDTable(FTable); }

void TExTable::CheckDefinition() const
{
    if (FTable.isEmpty())
        throw Exception(QStringLiteral("没有设置正确的Table属性"));
}

QString TExTable::GetAutoValue()
{
    if (CommitType() != ctCommit)
        return TExCustomDataSet::GetAutoValue();
    return FormatAutoValue(NextNumberInTable(GetField(AutoField())->FieldCode, FTable));
}

QString TExTable::GetSelectSQL() { return GetDBDTable()->GetSelectSQL(AllowSelect()); }

QString TExTable::GetSelectSQL(const QString &field, const QVariant &value, TOpenOption option)
{
    return GetDBDTable()->GetSelectSQL(Session().DBType(), field, value, option, AllowSelect());
}

std::unique_ptr<TDBObject> TExTable::GetDBObject()
{
    const auto table = GetDBDTable()->TableObject();
    return NewRecord(table ? table->TableClass : QString());
}

TObjectList<TFieldsObject> TExTable::GetFields() { return GetDBDTable()->TableFields(); }

} // namespace Korvane
