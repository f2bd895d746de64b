// SPDX-License-Identifier: MIT
#pragma once

#include "platform/sql/dialect/QueryRules.h"

namespace Korvane {

/// Rules for insert, update and delete. Each adds its step. What becomes of joins is SQLite's way.
class TRowRules
{
public:
    explicit TRowRules(TSqlCursor &cursor) : C(cursor), FQuery(cursor) {}
    virtual ~TRowRules() = default;

    void Insert();
    void Update();
    void Delete();

protected:
    struct TAssignment
    {
        int Qualifier = -1; ///< the table before the column's point
        int Column = -1;
        TSqlOperand Value;
    };

    /// The table whose rows are changed, and the tables that it is joined with.
    struct TJoined
    {
        const TSqlSourceList &Sources;
        const TSqlSource *Source; ///< the table among them; null where it stands apart
        QString Table;
        QString Name;      ///< the table's own, without its database
        QString Reference; ///< by which columns name it
        QString From;      ///< all tables
    };

    virtual void UpdateJoined(const TJoined &joined, const QList<TAssignment> &assignments);
    virtual void DeleteJoined(const TJoined &joined);

    /// The condition at the cursor with its "where" and a blank before it; empty if there is none.
    QString Where();
    QString NameText(int token) const { return C.Edits.Trimmed(token, token); }

    TSqlCursor &C;
    TQueryRules FQuery;
    int FFirst = 0;

private:
    int DeleteTarget();
    void StripColumns(int open);
    QList<TAssignment> Assignments();
    const TSqlSource *FindSource(const TSqlSourceList &list, int token) const;
    const TSqlSource &UpdateTarget(const TSqlSourceList &list, const QList<TAssignment> &assignments) const;
    QString TableText(const TSqlNameChain &chain) const;
    QString SourcesText(const TSqlSourceList &list) const;
    void AliasWithAs(const TSqlSource &source);
};

} // namespace Korvane
