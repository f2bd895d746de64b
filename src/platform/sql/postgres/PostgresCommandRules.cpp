// SPDX-License-Identifier: MIT
#include "platform/sql/postgres/PostgresCommandRules.h"

#include "platform/sql/postgres/PostgresNames.h"
#include "platform/sql/postgres/PostgresRowRules.h"
#include "platform/sql/postgres/PostgresTableRules.h"

using namespace Qt::StringLiterals;

namespace Korvane {

void TPostgresCommandRules::Insert()
{
    FEngine.IsInserting = true;
    TPostgresRowRules(C).Insert();
    FEngine.IsInserting = false;
}

void TPostgresCommandRules::Update() { TPostgresRowRules(C).Update(); }

void TPostgresCommandRules::Delete() { TPostgresRowRules(C).Delete(); }

void TPostgresCommandRules::CreateTable(int first) { TPostgresTableRules(C).CreateTable(first); }

void TPostgresCommandRules::AlterTable() { TPostgresTableRules(C).AlterTable(); }

/// Names of indexes are unique in the schema, the dialect's in their table.
QString TPostgresCommandRules::IndexName(const QString &table, const QString &index) const
{
    return JoinedPostgresName(table + u'.' + index);
}

/// NULL stands where "order by" looks for it.
void TPostgresCommandRules::IndexColumns()
{
    const int close = C.Edits.Match(C.At);
    do {
        C.Advance();
        C.Name();
        const bool isDown = !C.Accept("asc"_L1) && C.Accept("desc"_L1);
        FEngine.WriteOrderItem(C, isDown);
    } while (C.IsOperator(","_L1));
    if (C.At != close)
        C.Fail();
    C.Advance();
}

void TPostgresCommandRules::Truncate(const QString &table)
{
    C.AddStep(u"truncate table "_s + table + u" restart identity"_s);
}

} // namespace Korvane
