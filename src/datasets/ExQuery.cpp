// SPDX-License-Identifier: MIT
#include "datasets/ExQuery.h"

#include "design/DBDFile.h"
#include "platform/core/Format.h"
#include "session/DBSession.h"

namespace Korvane {

TDBDQuery *TExQuery::GetDBDQuery() const { return File().GetDBDQuery(FQuery); }

void TExQuery::CheckDefinition() const
{
    if (FQuery.isEmpty())
        throw Exception(QStringLiteral("没有设置正确的Query属性"));
}

void TExQuery::OpenTable(const QVariantList &args)
{
    OpenStatement([&] { return Format(GetSelectSQL(), args); });
}

void TExQuery::OpenTable(const QVariantList &args, const QString &where, const QString &order)
{
    OpenStatement([&] { return Wrapped(Format(GetSelectSQL(), args), where, order, 0); });
}

QString TExQuery::GetAutoValue()
{
    if (CommitType() != ctCommit)
        return TExCustomDataSet::GetAutoValue();
    TDBDQuery *query = GetDBDQuery();
    return FormatAutoValue(NextNumberInTable(query->GetFieldCode(AutoField())->FieldCode, query->Table()));
}

QString TExQuery::GetSelectSQL()
{
    return GetDBDQuery()->GetSelectSQL(Session().DBType(), AllowSelect(), FSystemFields);
}

QString TExQuery::GetSelectSQL(const QString &field, const QVariant &value, TOpenOption option)
{
    return GetDBDQuery()->GetSelectSQL(Session().DBType(), field, value, option, AllowSelect(),
                                       FSystemFields);
}

QString TExQuery::GetInsertSQL(const TDBObject &object) { return GetDBDQuery()->GetInsertSQL(object); }

QString TExQuery::GetUpdateSQL(const TDBObject &object)
{
    return GetDBDQuery()->GetUpdateSQL(Session().DBType(), object);
}

QString TExQuery::GetUpdateSQL(const TDBObject &object, const QString &field, const QVariant &value)
{
    return GetDBDQuery()->GetUpdateSQL(Session().DBType(), object, field, value);
}

QString TExQuery::GetDeleteSQL(const TDBObject &object)
{
    return GetDBDQuery()->GetDeleteSQL(Session().DBType(), object);
}

QString TExQuery::GetDeleteSQL(const TDBObject &object, const QString &field, const QVariant &value)
{
    return GetDBDQuery()->GetDeleteSQL(Session().DBType(), object, field, value);
}

QString TExQuery::GetDeleteSQL(const QString &field, const QVariant &value)
{
    return GetDBDQuery()->GetDeleteSQL(Session().DBType(), field, value);
}

std::shared_ptr<TFieldsObject> TExQuery::GetField(const QString &name)
{
    return GetDBDQuery()->GetField(name);
}

std::unique_ptr<TDBObject> TExQuery::GetDBObject()
{
    const auto query = GetDBDQuery()->QueryObject();
    return NewRecord(query ? query->QueryClass : QString());
}

TObjectList<TFieldsObject> TExQuery::GetKeyFields() { return GetDBDQuery()->KeyFields(); }

TObjectList<TIndexsObject> TExQuery::GetIndexs() { return GetDBDQuery()->Indexs(); }

QString TExQuery::GetKeyFieldStr() { return GetDBDQuery()->KeyFieldStr(); }

TObjectList<TFieldsObject> TExQuery::GetFields() { return GetDBDQuery()->QueryFields(); }

} // namespace Korvane
