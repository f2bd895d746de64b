// SPDX-License-Identifier: MIT
#include "platform/sql/dialect/TableRules.h"

using namespace Qt::StringLiterals;

namespace Korvane {

void TTableRules::CreateTable(int first)
{
    const int word = C.At;
    C.Expect("table"_L1);
    const TSqlNameChain chain = C.TableName();
    const TTable table{C.Edits.Trimmed(chain.First, chain.Last), SqlName(C.Edits[chain.Parts.last()])};
    if (table.Name.startsWith(u'#'))
        C.Edits.Before(word, u"temp "_s);
    if (!C.IsOperator("("_L1))
        C.Fail();
    const int close = C.Edits.Match(C.At);
    QList<TColumn> columns;
    QList<int> keys;
    do {
        C.Advance();
        if (AtConstraint()) {
            const TConstraint constraint = ReadConstraint();
            if (!constraint.KeyColumns.isEmpty())
                keys = constraint.KeyColumns;
        } else {
            columns.append(ReadColumn(true));
            if (columns.back().Key >= 0)
                keys = {columns.back().Name};
        }
    } while (C.IsOperator(","_L1));
    if (C.At != close)
        C.Fail();
    C.Advance();
    DropStorage();
    QStringList steps;
    for (TColumn &column : columns) {
        if (column.IsIdentity)
            WriteIdentity(table, column, keys, steps);
        FurtherSteps(table, column, steps);
    }
    SetKeysNotNull(columns, keys);
    if (!C.AtStatementEnd())
        C.Fail();
    C.AddStep(C.Edits.Text(first, C.At - 1));
    for (const QString &step : steps)
        C.AddStep(step);
}

bool TTableRules::IsKey(const TColumn &column, const QList<int> &keys) const
{
    return std::any_of(keys.begin(), keys.end(), [&](int key) {
        return SqlName(C.Edits[key]).compare(SqlName(C.Edits[column.Name]), Qt::CaseInsensitive) == 0;
    });
}

/// The key's columns take no NULL in either product; SQLite asks for it to be said.
void TTableRules::SetKeysNotNull(const QList<TColumn> &columns, const QList<int> &keys)
{
    for (const TColumn &column : columns) {
        if (!column.IsIdentity && column.Type.Last >= 0 && column.NotNull < 0 && !column.HasNull &&
            IsKey(column, keys))
            C.Edits.After(column.Type.Last, u" not null"_s);
    }
}

/// A numbering column that alone is the key is SQLite's own; any other one is filled by a trigger.
void TTableRules::WriteIdentity(const TTable &table, TColumn &column, const QList<int> &keys,
                                QStringList &furtherSteps)
{
    const bool isOnlyKey = keys.size() == 1 && IsKey(column, keys);
    const QString name = C.Edits.Trimmed(column.Name, column.Name);
    const QString quotedTable = u'\'' + QString(table.Name).replace(u'\'', u"''"_s) + u'\'';
    C.Edits.Replace(column.Type.First, isOnlyKey ? u"integer"_s : u"int"_s);
    C.Edits.Remove(column.Type.First + 1, column.Type.Last);
    if (isOnlyKey) {
        C.Edits.After(column.Key >= 0 ? column.Key : keys[0], u" autoincrement"_s);
        if (!column.Seed.isEmpty())
            furtherSteps.append(u"insert into sqlite_sequence(name, seq) values("_s + quotedTable + u", "_s +
                                column.Seed + u"-1)"_s);
        return;
    }
    if (column.NotNull >= 0)
        C.Edits.Remove(column.NotNull, column.NotNull + 1);
    const QString firstNumber = column.Seed.isEmpty() ? u"1"_s : column.Seed;
    furtherSteps.append(u"create trigger %1 after insert on %2 when new.%3 is null begin update %2 set %3="
                        "(select coalesce(max(%3)+1, %4) from %2) where rowid=new.rowid; end"_s.arg(
                            QuotedSqlName(table.Name + u'.' + SqlName(C.Edits[column.Name]) + u".identity"_s),
                            table.Text, name, firstNumber));
}

void TTableRules::AlterTable()
{
    const TSqlNameChain chain = C.TableName();
    const TTable table{C.Edits.Trimmed(chain.First, chain.Last), SqlName(C.Edits[chain.Parts.last()])};
    const bool isUnchecked = C.Is("with"_L1) && C.Is("nocheck"_L1, 1);
    if (isUnchecked || (C.Is("with"_L1) && C.Is("check"_L1, 1)))
        C.Advance(2);
    if (C.Accept("add"_L1))
        AddItems(table, isUnchecked);
    else if (C.Accept("alter"_L1))
        AlterColumn(table);
    else if (C.Accept("drop"_L1))
        DropItems(table);
    else if (C.Token().Kind == TSqlTokenKind::Word)
        RefuseSql(u"ALTER TABLE … "_s + C.Token().Text.toString().toUpper());
    else
        C.Fail();
    if (!C.AtStatementEnd())
        C.Fail();
}

void TTableRules::AddItems(const TTable &table, bool isUnchecked)
{
    const bool hasBracket = C.IsOperator("("_L1);
    const int close = hasBracket ? C.Edits.Match(C.At) : -1;
    if (hasBracket)
        C.Advance();
    do {
        if (!AtConstraint()) {
            C.Accept("column"_L1);
            AddColumn(table);
            continue;
        }
        TConstraint constraint = ReadConstraint();
        constraint.IsUnchecked = isUnchecked;
        AddConstraint(table, constraint);
    } while (C.AcceptOperator(","_L1));
    if (!hasBracket)
        return;
    if (C.At != close)
        C.Fail();
    C.Advance();
}

void TTableRules::AddConstraint(const TTable &table, const TConstraint &constraint)
{
    const QString text = C.Edits.Trimmed(constraint.First, constraint.Last);
    if (constraint.DefaultColumn >= 0)
        C.AddChange(TTableChange::AlterColumn, table.Name, SqlName(C.Edits[constraint.DefaultColumn]), text);
    else
        C.AddChange(TTableChange::AddConstraint, table.Name, constraint.Name, text);
}

void TTableRules::AddColumn(const TTable &table)
{
    TColumn column = ReadColumn(true);
    const QString name = SqlName(C.Edits[column.Name]);
    QStringList steps;
    if (column.IsIdentity) {
        const QList<int> keys = column.Key >= 0 ? QList<int>{column.Name} : QList<int>();
        WriteIdentity(table, column, keys, steps);
        if (column.Key < 0) {
            const QString nameText = C.Edits.Trimmed(column.Name, column.Name);
            steps.prepend(u"update %1 set %2=rowid"_s.arg(table.Text, nameText));
        }
    }
    const QString text = C.Edits.Trimmed(column.First, column.Last);
    const bool needsValue = column.NotNull >= 0 && !column.IsIdentity && !column.HasDefault;
    if (column.NeedsTable || needsValue || column.Key >= 0 || !column.IsConstantDefault)
        C.AddChange(TTableChange::AddColumn, table.Name, name, text);
    else
        C.AddStep(u"alter table "_s + table.Text + u" add column "_s + text);
    for (const QString &step : steps)
        C.AddStep(step);
}

void TTableRules::ChangeColumn(const TTable &table, int name, const TColumn &definition)
{
    C.AddChange(TTableChange::AlterColumn, table.Name, SqlName(C.Edits[name]),
                definition.First < 0 ? u"default null"_s
                                     : C.Edits.Trimmed(definition.First, definition.Last));
}

void TTableRules::AlterColumn(const TTable &table)
{
    C.Accept("column"_L1);
    const int name = C.Name();
    if (C.Is("drop"_L1) && C.Is("default"_L1, 1)) {
        C.Advance(2);
        ChangeColumn(table, name, {});
        return;
    }
    TColumn definition;
    if (C.Is("set"_L1) && C.Is("default"_L1, 1)) {
        C.Advance();
        definition.First = C.At;
        C.Advance();
        ReadDefault(definition);
        definition.Last = C.At - 1;
    } else {
        definition = ReadColumn(false);
        if (definition.IsIdentity)
            RefuseSql(u"ALTER COLUMN … IDENTITY"_s);
    }
    ChangeColumn(table, name, definition);
}

void TTableRules::DropItem(const TTable &table, const QString &name, bool isColumn)
{
    C.AddChange(isColumn ? TTableChange::DropColumn : TTableChange::DropConstraint, table.Name, name);
}

void TTableRules::DropItems(const TTable &table)
{
    bool isColumn = C.IsAccess();
    do {
        if (C.Accept("column"_L1))
            isColumn = true;
        else if (C.Accept("constraint"_L1))
            isColumn = false;
        DropItem(table, SqlName(C.Edits[C.Name()]), isColumn);
    } while (C.AcceptOperator(","_L1));
}

} // namespace Korvane
