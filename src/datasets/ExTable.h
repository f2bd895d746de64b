// SPDX-License-Identifier: MIT
#pragma once

#include "datasets/DefinedDataSet.h"
#include "design/DBDTable.h"

namespace Korvane {

/// The rows of one table of the design file.
///
///     TExTable customers;
///     customers.SetTable("CUSTOMER");
///     customers.SetDBDFile(&design);
///     customers.SetDBSession(&session);
///     customers.OpenTable("GRADE='A'", "CUSTCODE", 100);
class TExTable : public TDefinedDataSet<TDBDTable>
{
    Q_OBJECT
    Q_PROPERTY(QString Table READ Table WRITE SetTable)

public:
    using TDefinedDataSet::TDefinedDataSet;

    /// The table's code in the design file.
    const QString &Table() const { return FTable; }
    void SetTable(const QString &table) { FTable = table; }
    /// The design file's shared definition, good until the next request.
    TDBDTable *GetDBDTable() const;

    /// In direct mode one more than the highest value in the whole table.
    QString GetAutoValue() override;
    QString GetSelectSQL() override;
    QString GetSelectSQL(const QString &field, const QVariant &value, TOpenOption option) override;
    std::unique_ptr<TDBObject> GetDBObject() override;
    TObjectList<TFieldsObject> GetFields() override;

protected:
    TDBDTable *Definition() const override { return GetDBDTable(); }
    bool HasDefinition() const override { return !FTable.isEmpty(); }
    void CheckDefinition() const override;

private:
    QString FTable;
};

} // namespace Korvane
