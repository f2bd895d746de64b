// SPDX-License-Identifier: MIT
#include "platform/sql/postgres/PostgresRowRules.h"

using namespace Qt::StringLiterals;

namespace Korvane {

/// Inner joins become conditions beside the table that is changed. That way the engine looks at the
/// conditions again where another user changed a row in between, which it cannot for outer joins.
bool TPostgresRowRules::IsPlain(const TJoined &joined)
{
    const TSqlSourceList &list = joined.Sources;
    return !joined.Source || (!list.HasBrackets && list.AreInner);
}

TPostgresRowRules::TOthers TPostgresRowRules::Others(const TJoined &joined)
{
    const TSqlSourceList &list = joined.Sources;
    if (!joined.Source)
        return {C.Edits.Trimmed(list.First, list.Last), Where()};
    QStringList tables, conditions;
    for (const TSqlSource &source : list.Tables) {
        if (&source != joined.Source)
            tables.append(C.Edits.Trimmed(source.First, source.Last));
    }
    for (const TSqlCondition &condition : list.Conditions)
        conditions.append(C.Edits.Trimmed(condition.First, condition.Last));
    const bool hasWhere = C.Is("where"_L1);
    const QString where = Where();
    if (conditions.isEmpty())
        return {tables.join(u", "_s), where};
    if (!where.isEmpty() && !hasWhere)
        C.Fail();
    if (hasWhere)
        conditions.append(where.mid(qsizetype(std::size(" where") - 1)).trimmed());
    return {tables.join(u", "_s), u" where ("_s + conditions.join(u") and ("_s) + u')'};
}

QString TPostgresRowRules::Target(const TJoined &joined)
{
    return joined.Reference == joined.Name ? joined.Table : joined.Table + u" as "_s + joined.Reference;
}

void TPostgresRowRules::UpdateJoined(const TJoined &joined, const QList<TAssignment> &assignments)
{
    const QString start = C.Edits[FFirst].Blanks.toString() + u"update "_s;
    const bool isPlain = IsPlain(joined);
    QString set, values;
    for (qsizetype i = 0; i < assignments.size(); ++i) {
        const TAssignment &assignment = assignments[i];
        const QString value = C.Edits.Trimmed(assignment.Value.First, assignment.Value.Last);
        const QString read = u"korvane_v%1"_s.arg(i + 1);
        set += (i ? u", "_s : QString()) + NameText(assignment.Column) + u'=' +
               (isPlain ? value : u"korvane_q."_s + read);
        values += u", "_s + value + u" as "_s + read;
    }
    if (isPlain) {
        const TOthers others = Others(joined);
        C.AddStep(start + Target(joined) + u" set "_s + set +
                  (others.Tables.isEmpty() ? QString() : u" from "_s + others.Tables) + others.Where);
        return;
    }
    const QString where = Where();
    C.AddStep(start + joined.Table + u" set "_s + set + u" from (select "_s + joined.Reference +
              u".ctid as korvane_row"_s + values + u" from "_s + joined.From + where +
              u") as korvane_q where "_s + joined.Name + u".ctid=korvane_q.korvane_row"_s);
}

void TPostgresRowRules::DeleteJoined(const TJoined &joined)
{
    const QString start = C.Edits[FFirst].Blanks.toString() + u"delete from "_s;
    if (IsPlain(joined)) {
        const TOthers others = Others(joined);
        C.AddStep(start + Target(joined) +
                  (others.Tables.isEmpty() ? QString() : u" using "_s + others.Tables) + others.Where);
        return;
    }
    const QString where = Where();
    C.AddStep(start + joined.Table + u" where ctid in (select "_s + joined.Reference + u".ctid from "_s +
              joined.From + where + u')');
}

} // namespace Korvane
