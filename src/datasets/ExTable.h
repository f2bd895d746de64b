// SPDX-License-Identifier: MIT
#pragma once

#include "datasets/ExCustomDataSet.h"

namespace Korvane {

class TDBDTable;

/// The rows of one table of the design file.
///
///     TExTable customers;
///     customers.SetTable("CUSTOMER");
///     customers.SetDBDFile(&design);
///     customers.SetDBSession(&session);
///     customers.OpenTable("GRADE='A'", "CUSTCODE", 100);
class TExTable : public TExCustomDataSet
{
    Q_OBJECT
    Q_PROPERTY(QString Table READ Table WRITE SetTable)

public:
    using TExCustomDataSet::TExCustomDataSet;

    /// The table's code in the design file.
    const QString &Table() const { return FTable; }
    void SetTable(const QString &table) { FTable = table; }
    /// The design file's shared definition, good until the next request.
    TDBDTable *GetDBDTable() const;

    /// In direct mode one more than the highest value in the whole table.
    QString GetAutoValue() override;
    QString GetSelectSQL() override;
    QString GetSelectSQL(const QString &field, const QVariant &value, TOpenOption option) override;
    QString GetInsertSQL(const TDBObject &object) override;
    QString GetUpdateSQL(const TDBObject &object) override;
    QString GetUpdateSQL(const TDBObject &object, const QString &field, const QVariant &value) override;
    QString GetDeleteSQL(const TDBObject &object) override;
    QString GetDeleteSQL(const TDBObject &object, const QString &field, const QVariant &value) override;
    QString GetDeleteSQL(const QString &field, const QVariant &value) override;
    std::shared_ptr<TFieldsObject> GetField(const QString &name) override;
    std::unique_ptr<TDBObject> GetDBObject() override;
    TObjectList<TFieldsObject> GetKeyFields() override;
    TObjectList<TIndexsObject> GetIndexs() override;
    QString GetKeyFieldStr() override;
    TObjectList<TFieldsObject> GetFields() override;

protected:
    bool HasDefinition() const override { return !FTable.isEmpty(); }
    void CheckDefinition() const override;

private:
    QString FTable;
};

} // namespace Korvane
