// SPDX-License-Identifier: MIT
#include "datasets/ExQuery.h"

#include "design/DBDFile.h"
#include "platform/core/Format.h"

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

std::unique_ptr<TDBObject> TExQuery::GetDBObject()
{
    const auto query = GetDBDQuery()->QueryObject();
    return NewRecord(query ? query->QueryClass : QString());
}

TObjectList<TFieldsObject> TExQuery::GetFields() { return GetDBDQuery()->QueryFields(); }

} // namespace Korvane
