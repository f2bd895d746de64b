// SPDX-License-Identifier: MIT
#pragma once

#include "datasets/DefinedDataSet.h"
#include "design/DBDQuery.h"

#include <initializer_list>

namespace Korvane {

/// The rows of one query of the design file. Changes go to its main table.
class TExQuery : public TDefinedDataSet<TDBDQuery>
{
    Q_OBJECT
    Q_PROPERTY(QString Query READ Query WRITE SetQuery)
    Q_PROPERTY(bool SystemFields READ SystemFields WRITE SetSystemFields)
    Q_PROPERTY(QString WhereSQL READ WhereSQL WRITE SetWhereSQL)

public:
    using TDefinedDataSet::TDefinedDataSet;

    /// The query's code in the design file.
    const QString &Query() const { return FQuery; }
    void SetQuery(const QString &query) { FQuery = query; }
    /// Whether the audit columns are read too.
    bool SystemFields() const { return FSystemFields; }
    void SetSystemFields(bool systemFields) { FSystemFields = systemFields; }
    /// A condition that the search and filter components read; the dataset itself does not.
    const QString &WhereSQL() const { return FWhereSQL; }
    void SetWhereSQL(const QString &where) { FWhereSQL = where; }
    /// The design file's shared definition, good until the next request.
    TDBDQuery *GetDBDQuery() const;

    using TExCustomDataSet::OpenTable;
    /// The query's text is a format that takes the arguments; a percent sign in it is "%%".
    void OpenTable(const QVariantList &args);
    void OpenTable(std::initializer_list<QVariant> args) { OpenTable(QVariantList(args)); }
    /// The same with a condition and an order over its result.
    void OpenTable(const QVariantList &args, const QString &where, const QString &order);
    void OpenTable(std::initializer_list<QVariant> args, const QString &where, const QString &order)
    {
        OpenTable(QVariantList(args), where, order);
    }

    /// In direct mode one more than the highest value in the whole main table.
    QString GetAutoValue() override;
    QString GetSelectSQL() override;
    QString GetSelectSQL(const QString &field, const QVariant &value, TOpenOption option) override;
    std::unique_ptr<TDBObject> GetDBObject() override;
    TObjectList<TFieldsObject> GetFields() override;

protected:
    TDBDQuery *Definition() const override { return GetDBDQuery(); }
    bool HasDefinition() const override { return !FQuery.isEmpty(); }
    void CheckDefinition() const override;

private:
    QString FQuery;
    bool FSystemFields = false;
    QString FWhereSQL;
};

} // namespace Korvane
