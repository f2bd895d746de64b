// SPDX-License-Identifier: MIT
#include "datasets/ExTable.h"

#include "design/DBDFile.h"
#include "session/DBSession.h"

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

QString TExTable::GetInsertSQL(const TDBObject &object) { return GetDBDTable()->GetInsertSQL(object); }

QString TExTable::GetUpdateSQL(const TDBObject &object)
{
    return GetDBDTable()->GetUpdateSQL(Session().DBType(), object);
}

QString TExTable::GetUpdateSQL(const TDBObject &object, const QString &field, const QVariant &value)
{
    return GetDBDTable()->GetUpdateSQL(Session().DBType(), object, field, value);
}

QString TExTable::GetDeleteSQL(const TDBObject &object)
{
    return GetDBDTable()->GetDeleteSQL(Session().DBType(), object);
}

QString TExTable::GetDeleteSQL(const TDBObject &object, const QString &field, const QVariant &value)
{
    return GetDBDTable()->GetDeleteSQL(Session().DBType(), object, field, value);
}

QString TExTable::GetDeleteSQL(const QString &field, const QVariant &value)
{
    return GetDBDTable()->GetDeleteSQL(Session().DBType(), field, value);
}

std::shared_ptr<TFieldsObject> TExTable::GetField(const QString &name)
{
    return GetDBDTable()->GetField(name);
}

std::unique_ptr<TDBObject> TExTable::GetDBObject()
{
    const auto table = GetDBDTable()->TableObject();
    return NewRecord(table ? table->TableClass : QString());
}

TObjectList<TFieldsObject> TExTable::GetKeyFields() { return GetDBDTable()->KeyFields(); }

TObjectList<TIndexsObject> TExTable::GetIndexs() { return GetDBDTable()->Indexs(); }

QString TExTable::GetKeyFieldStr() { return GetDBDTable()->KeyFieldStr(); }

TObjectList<TFieldsObject> TExTable::GetFields() { return GetDBDTable()->TableFields(); }

} // namespace Korvane
