// SPDX-License-Identifier: MIT
#pragma once

#include "platform/sql/dialect/QueryRules.h"

namespace Korvane {

/// Rules for insert, update and delete. Each adds its step.
class TRowRules
{
public:
    explicit TRowRules(TSqlCursor &cursor) : C(cursor), FQuery(cursor) {}

    void Insert();
    void Update();
    void Delete();

private:
    struct TAssignment
    {
        int Qualifier = -1; ///< the table before the column's point
        int Column = -1;
        TSqlOperand Value;
    };

    int DeleteTarget();
    void StripColumns(int open);
    QList<TAssignment> Assignments();
    /// The condition at the cursor with its "where" and a blank before it; empty if there is none.
    QString Where();
    const TSqlSource *FindSource(const TSqlSourceList &list, int token) const;
    void UpdateJoined(const TSqlNameChain &table, const QString &reference, const QString &from,
                      const QList<TAssignment> &assignments);
    const TSqlSource &UpdateTarget(const TSqlSourceList &list, const QList<TAssignment> &assignments) const;
    QString TableText(const TSqlNameChain &chain) const;
    QString NameText(int token) const { return C.Edits.Trimmed(token, token); }
    QString SourcesText(const TSqlSourceList &list) const;
    void AliasWithAs(const TSqlSource &source);

    TSqlCursor &C;
    TQueryRules FQuery;
    int FFirst = 0;
};

} // namespace Korvane
