// SPDX-License-Identifier: MIT
#pragma once

#include "datasets/ExCustomDataSet.h"
#include "session/DBSession.h"

namespace Korvane {

/// What the datasets of a table and of a query have in common: their definitions answer the
/// same questions.
template <class TDefinition> class TDefinedDataSet : public TExCustomDataSet
{
public:
    using TExCustomDataSet::TExCustomDataSet;

    QString GetInsertSQL(const TDBObject &object) override { return Definition()->GetInsertSQL(object); }
    QString GetUpdateSQL(const TDBObject &object) override
    {
        return Definition()->GetUpdateSQL(Session().DBType(), object);
    }
    QString GetUpdateSQL(const TDBObject &object, const QString &field, const QVariant &value) override
    {
        return Definition()->GetUpdateSQL(Session().DBType(), object, field, value);
    }
    QString GetDeleteSQL(const TDBObject &object) override
    {
        return Definition()->GetDeleteSQL(Session().DBType(), object);
    }
    QString GetDeleteSQL(const TDBObject &object, const QString &field, const QVariant &value) override
    {
        return Definition()->GetDeleteSQL(Session().DBType(), object, field, value);
    }
    QString GetDeleteSQL(const QString &field, const QVariant &value) override
    {
        return Definition()->GetDeleteSQL(Session().DBType(), field, value);
    }
    std::shared_ptr<TFieldsObject> GetField(const QString &name) override
    {
        return Definition()->GetField(name);
    }
    TObjectList<TFieldsObject> GetKeyFields() override { return Definition()->KeyFields(); }
    TObjectList<TIndexsObject> GetIndexs() override { return Definition()->Indexs(); }
    QString GetKeyFieldStr() override { return Definition()->KeyFieldStr(); }

protected:
    /// Aimed anew by the call; good until the next request.
    virtual TDefinition *Definition() const = 0;
};

} // namespace Korvane
