// SPDX-License-Identifier: MIT
#include "platform/sql/dialect/RowRules.h"

#include "platform/sql/dialect/SqlEngine.h"

using namespace Qt::StringLiterals;

namespace Korvane {

void TRowRules::Insert()
{
    FFirst = C.At;
    C.Expect("insert"_L1);
    const bool hasInto = C.Accept("into"_L1);
    const TSqlNameChain table = C.TableName();
    if (!hasInto)
        C.Edits.Before(table.First, u"into "_s);
    if (C.Is("in"_L1))
        RefuseSql(u"INSERT INTO … IN"_s);
    if (C.IsOperator("("_L1)) {
        if (FQuery.AtQuery())
            FQuery.Query();
        else
            StripColumns(C.At);
    }
    if (C.IsAnyOf({"exec"_L1, "execute"_L1}))
        RefuseSql(u"INSERT … EXEC"_s);
    if (C.Is("output"_L1))
        RefuseSql(u"OUTPUT"_s);
    if (C.Accept("values"_L1)) {
        do {
            if (!C.IsOperator("("_L1))
                C.Fail();
            FQuery.Group();
        } while (C.AcceptOperator(","_L1));
    } else if (C.Is("default"_L1) && C.Is("values"_L1, 1)) {
        C.Advance(2);
    } else if (FQuery.AtQuery()) {
        FQuery.Query();
    }
    FQuery.PassRest();
    C.AddStep(C.Edits.Text(FFirst, C.At - 1));
}

/// The engine takes bare names only: (T.A, T.B) becomes (A, B).
void TRowRules::StripColumns(int open)
{
    const int close = C.Edits.Match(open);
    C.At = open + 1;
    while (C.At < close) {
        const TSqlNameChain column = C.NameChain();
        if (column.First < column.Last) {
            C.Edits.Replace(column.First, QString());
            C.Edits.Remove(column.First + 1, column.Last - 1);
        }
        if (C.At < close)
            C.ExpectOperator(","_L1);
    }
    C.At = close + 1;
}

QList<TRowRules::TAssignment> TRowRules::Assignments()
{
    QList<TAssignment> result;
    do {
        const TSqlNameChain column = C.NameChain();
        if (column.EndsWithStar)
            C.Fail();
        TAssignment assignment;
        assignment.Column = column.Last;
        if (column.First < column.Last) {
            assignment.Qualifier = column.Parts[column.Parts.size() - 2];
            C.Edits.Replace(column.First, QString());
            C.Edits.Remove(column.First + 1, column.Last - 1);
        }
        C.ExpectOperator("="_L1);
        if (C.Is("default"_L1))
            RefuseSql(u"SET … = DEFAULT"_s);
        assignment.Value = FQuery.Expression();
        if (!assignment.Value.IsValid())
            C.Fail();
        result.append(assignment);
    } while (C.AcceptOperator(","_L1));
    return result;
}

QString TRowRules::Where()
{
    const int first = C.At;
    if (C.Accept("where"_L1))
        FQuery.Expression();
    FQuery.PassRest();
    return C.At > first ? u' ' + C.Edits.Trimmed(first, C.At - 1) : QString();
}

void TRowRules::AliasWithAs(const TSqlSource &source)
{
    if (source.Alias >= 0 && !source.HasAs)
        C.Edits.Before(source.Alias, u"as "_s);
}

QString TRowRules::TableText(const TSqlNameChain &chain) const
{
    return C.Edits.Trimmed(chain.First, chain.Last);
}

QString TRowRules::SourcesText(const TSqlSourceList &list) const
{
    return C.Edits.Trimmed(list.First, list.Last);
}

/// The source that a table's name or alias means; null if there is none.
const TSqlSource *TRowRules::FindSource(const TSqlSourceList &list, int token) const
{
    const QString name = SqlName(C.Edits[token]);
    const auto isNamed = [&](int other) {
        return SqlName(C.Edits[other]).compare(name, Qt::CaseInsensitive) == 0;
    };
    // An alias goes before a table's own name.
    for (const TSqlSource &source : list.Tables) {
        if (!source.Name.Parts.isEmpty() && isNamed(source.Reference()))
            return &source;
    }
    for (const TSqlSource &source : list.Tables) {
        if (!source.Name.Parts.isEmpty() && isNamed(source.Name.Parts.last()))
            return &source;
    }
    return nullptr;
}

void TRowRules::Update()
{
    FFirst = C.At;
    C.Expect("update"_L1);
    if (C.Is("top"_L1))
        RefuseSql(u"UPDATE TOP"_s);
    if (C.IsAccess())
        C.DropWord("distinctrow"_L1);
    const TSqlSourceList targets = FQuery.Sources();
    C.Expect("set"_L1);
    const QList<TAssignment> assignments = Assignments();
    if (!C.IsAccess() && C.Accept("from"_L1)) {
        const TSqlSourceList sources = FQuery.Sources();
        if (!targets.IsOneTable())
            C.Fail();
        const int target = targets.Tables[0].Name.Parts.last();
        const TSqlSource *source = FindSource(sources, target);
        const TSqlNameChain table = source ? source->Name : targets.Tables[0].Name;
        const QString reference = NameText(source ? source->Reference() : target);
        // A table that the from clause does not name joins its tables by the condition.
        const QString from =
            source ? SourcesText(sources) : TableText(table) + u", "_s + SourcesText(sources);
        UpdateJoined({sources, source, TableText(table), NameText(table.Parts.last()), reference, from},
                     assignments);
    } else if (targets.IsOneTable()) {
        AliasWithAs(targets.Tables[0]);
        Where();
        C.AddStep(C.Edits.Text(FFirst, C.At - 1));
    } else {
        const TSqlSource &target = UpdateTarget(targets, assignments);
        UpdateJoined({targets, &target, TableText(target.Name), NameText(target.Name.Parts.last()),
                      NameText(target.Reference()), SourcesText(targets)},
                     assignments);
    }
}

/// The one table of a join whose columns are set.
const TSqlSource &TRowRules::UpdateTarget(const TSqlSourceList &list,
                                          const QList<TAssignment> &assignments) const
{
    const TSqlSource *target = nullptr;
    for (const TAssignment &assignment : assignments) {
        const TSqlSource *source =
            assignment.Qualifier < 0 ? &list.Tables.first() : FindSource(list, assignment.Qualifier);
        if (!source || source->Name.Parts.isEmpty())
            RefuseSql(u"UPDATE … JOIN"_s);
        if (target && target != source)
            RefuseSql(u"UPDATE 多个数据表"_s);
        target = source;
    }
    return *target;
}

/// The values are read from the join first, by the row numbers of the table; the update then takes
/// them from there.
void TRowRules::UpdateJoined(const TJoined &joined, const QList<TAssignment> &assignments)
{
    QString set;
    QString values = joined.Reference + u".rowid as korvane_rowid"_s;
    for (qsizetype i = 0; i < assignments.size(); ++i) {
        const TAssignment &assignment = assignments[i];
        const QString value = u"korvane_v%1"_s.arg(i + 1);
        set += (i ? u", "_s : QString()) + NameText(assignment.Column) + u"=korvane_q."_s + value;
        values +=
            u", "_s + C.Edits.Trimmed(assignment.Value.First, assignment.Value.Last) + u" as "_s + value;
    }
    const QString where = Where();
    C.AddStep(C.Edits[FFirst].Blanks.toString() + u"update "_s + joined.Table + u" set "_s + set +
              u" from (select "_s + values + u" from "_s + joined.From + where + u") as korvane_q where "_s +
              joined.Name + u".rowid=korvane_q.korvane_rowid"_s);
}

void TRowRules::Delete()
{
    FFirst = C.At;
    C.Expect("delete"_L1);
    if (C.Is("top"_L1))
        RefuseSql(u"DELETE TOP"_s);
    C.DropWord("distinctrow"_L1);
    int target = DeleteTarget();
    bool isJoined = false;
    C.Accept("from"_L1);
    TSqlSourceList sources = FQuery.Sources();
    if (!C.IsAccess() && target < 0 && C.Accept("from"_L1)) {
        if (!sources.IsOneTable())
            C.Fail();
        target = sources.Tables[0].Name.Parts.last();
        isJoined = true;
        sources = FQuery.Sources();
    }
    const TSqlSource *source = target >= 0 ? FindSource(sources, target) : &sources.Tables.first();
    if (!isJoined && source && sources.IsOneTable()) {
        AliasWithAs(*source);
        Where();
        C.AddStep(C.Edits.Text(FFirst, C.At - 1));
        return;
    }
    if ((source && source->Name.Parts.isEmpty()) || (!source && C.IsAccess()))
        RefuseSql(u"DELETE … JOIN"_s);
    const QString name = C.Engine.AliasText(C, source ? source->Name.Parts.last() : target);
    const QString table = source ? TableText(source->Name) : name;
    const QString reference = source ? NameText(source->Reference()) : table;
    const QString from = source ? SourcesText(sources) : table + u", "_s + SourcesText(sources);
    DeleteJoined({sources, source, table, name, reference, from});
}

void TRowRules::DeleteJoined(const TJoined &joined)
{
    const QString where = Where();
    C.AddStep(C.Edits[FFirst].Blanks.toString() + u"delete from "_s + joined.Table +
              u" where rowid in (select "_s + joined.Reference + u".rowid from "_s + joined.From + where +
              u')');
}

/// What stands between "delete" and "from" and is not wanted there: "*", "T.*", "T". Gives the
/// token of the table; -1 if none is named.
int TRowRules::DeleteTarget()
{
    if (C.Is("from"_L1))
        return -1;
    if (C.IsOperator("*"_L1)) {
        C.Drop();
        return -1;
    }
    const int first = C.At;
    const TSqlNameChain chain = C.NameChain();
    if (C.Is("from"_L1)) {
        C.Edits.Remove(first, C.At - 1);
        return chain.Parts.last();
    }
    // MSSQL: delete T where …
    C.At = first;
    C.Edits.Before(first, u"from "_s);
    return -1;
}

} // namespace Korvane
