// SPDX-License-Identifier: MIT
#pragma once

#include "platform/sql/dialect/TableRules.h"

namespace Korvane {

/// Create table and alter table for PostgreSQL.
class TPostgresTableRules : public TTableRules
{
public:
    using TTableRules::TTableRules;

protected:
    void WriteType(const TColumn &column) override;
    void WriteExactOrder(const TColumn &) override {}
    void EndColumn(TColumn &column) override;
    void ComputedColumn() override;
    QString ClockDefault(const TSqlToken &name) const override;
    void WriteIdentity(const TTable &table, TColumn &column, const QList<int> &keys,
                       QStringList &furtherSteps) override;
    void FurtherSteps(const TTable &table, const TColumn &column, QStringList &steps) override;
    void AddColumn(const TTable &table) override;
    void AddConstraint(const TTable &table, const TConstraint &constraint) override;
    void ChangeColumn(const TTable &table, int name, const TColumn &definition) override;
    void DropItem(const TTable &table, const QString &name, bool isColumn) override;

private:
    QString NameText(int token) const { return C.Edits.Trimmed(token, token); }
    void NameDefault(const TTable &table, int column, const QString &name, QStringList &steps);
};

} // namespace Korvane
