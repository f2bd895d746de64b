// SPDX-License-Identifier: MIT
#pragma once

#include "platform/sql/dialect/CommandRules.h"
#include "platform/sql/postgres/PostgresEngine.h"

namespace Korvane {

/// Statements as a whole for PostgreSQL.
class TPostgresCommandRules : public TCommandRules
{
public:
    TPostgresCommandRules(TSqlCursor &cursor, TPostgresEngine &engine)
        : TCommandRules(cursor), FEngine(engine)
    {
    }

protected:
    void Insert() override;
    void Update() override;
    void Delete() override;
    void CreateTable(int first) override;
    void AlterTable() override;
    QString IndexName(const QString &table, const QString &index) const override;
    void IndexColumns() override;
    void Truncate(const QString &table) override;

private:
    TPostgresEngine &FEngine;
};

} // namespace Korvane
