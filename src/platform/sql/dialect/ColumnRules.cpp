// SPDX-License-Identifier: MIT
#include "platform/sql/dialect/TableRules.h"

using namespace Qt::StringLiterals;

namespace Korvane {

namespace {

QString QuotedText(const QString &text) { return u'\'' + QString(text).replace(u'\'', u"''"_s) + u'\''; }

} // namespace

TTableRules::TColumn TTableRules::ReadColumn(bool hasName)
{
    TColumn column;
    column.First = C.At;
    if (hasName)
        column.Name = C.Name();
    if (hasName && C.Is("as"_L1) && C.IsOperator("("_L1, 1)) {
        // A computed column.
        ComputedColumn();
        C.Advance();
        FQuery.Group();
        if (C.Is("persisted"_L1)) {
            C.Edits.Replace(C.At, u"stored"_s);
            C.Advance();
            column.NeedsTable = true;
        }
    } else {
        column.Type = ReadSqlType(C);
        column.IsIdentity = column.Type.IsCounter;
        column.Seed = column.Type.Seed;
        WriteType(column);
    }
    while (!AtOptionEnd()) {
        if (!ReadColumnOption(column))
            C.Fail();
    }
    column.Last = C.At - 1;
    EndColumn(column);
    return column;
}

bool TTableRules::AtOptionEnd() const { return C.IsOperator(","_L1) || C.AtStatementEnd(); }

void TTableRules::WriteType(const TColumn &column)
{
    const TSqlType &type = column.Type;
    if (C.Edits.Written(type.First, type.Last) != type.EngineName) {
        C.Edits.Replace(type.First, type.EngineName);
        C.Edits.Remove(type.First + 1, type.Last);
    }
    if (type.Class == TSqlTypeClass::Text || type.Class == TSqlTypeClass::Flag)
        C.Edits.After(type.Last, u" collate nocase"_s);
}

void TTableRules::WriteExactOrder(const TColumn &column)
{
    if (column.IsExact)
        C.Edits.After(C.At - 1, u" collate binary"_s);
}

bool TTableRules::ReadColumnOption(TColumn &column)
{
    if (C.Is("identity"_L1)) {
        const int first = C.At;
        C.Advance();
        column.IsIdentity = true;
        column.Seed = ReadCounterSeed(C);
        C.Edits.Remove(first, C.At - 1);
    } else if (C.Is("not"_L1) && C.Is("for"_L1, 1)) {
        C.Drop(3); // not for replication
    } else if (C.Is("not"_L1) && C.Is("null"_L1, 1)) {
        column.NotNull = C.At;
        C.Advance(2);
    } else if (C.Accept("null"_L1)) {
        column.HasNull = true;
    } else if (C.Accept("default"_L1)) {
        ReadDefault(column);
    } else if (C.Accept("constraint"_L1)) {
        const int name = C.Name();
        if (C.Is("default"_L1))
            column.DefaultName = SqlName(C.Edits[name]);
    } else if (C.Accept("primary"_L1)) {
        column.Key = C.At;
        ReadKey(nullptr);
    } else if (C.Accept("unique"_L1)) {
        column.NeedsTable = true;
        ReadKey(nullptr);
    } else if (C.Accept("check"_L1)) {
        if (!C.IsOperator("("_L1))
            C.Fail();
        FQuery.Group();
    } else if (C.Is("foreign"_L1)) {
        C.Drop(2);
    } else if (C.Accept("references"_L1)) {
        column.NeedsTable = column.NeedsTable || column.HasDefault;
        ReadReferences();
    } else if (C.Is("collate"_L1)) {
        const QString order = SqlName(C.Token(1)).toLower();
        C.Drop(2);
        column.IsExact = order.contains("_cs"_L1) || order.contains("_bin"_L1);
        WriteExactOrder(column);
    } else if (C.Is("with"_L1)) {
        C.Drop(2); // with compression, with values
    } else if (C.IsAnyOf({"rowguidcol"_L1, "sparse"_L1})) {
        C.Drop();
    } else {
        DropStorage();
        return AtOptionEnd();
    }
    return true;
}

/// The words behind "primary" and "unique" and, for a table's constraint, the columns.
void TTableRules::ReadKey(TConstraint *constraint)
{
    C.Accept("key"_L1);
    if (!C.DropWord("clustered"_L1))
        C.DropWord("nonclustered"_L1);
    if (!constraint) {
        if (!C.DropWord("asc"_L1))
            C.DropWord("desc"_L1);
        DropStorage();
        return;
    }
    if (!C.IsOperator("("_L1))
        C.Fail();
    const int close = C.Edits.Match(C.At);
    do {
        C.Advance();
        constraint->KeyColumns.append(C.Name());
        if (!C.DropWord("asc"_L1))
            C.DropWord("desc"_L1);
    } while (C.IsOperator(","_L1));
    if (C.At != close)
        C.Fail();
    C.Advance();
    DropStorage();
}

/// Where and how the MSSQL dialect stores a thing: with fillfactor=80, with (…), on [PRIMARY].
void TTableRules::DropStorage()
{
    for (;;) {
        if (C.Is("with"_L1) && C.IsOperator("("_L1, 1)) {
            C.Drop();
            C.DropGroup();
        } else if (C.Is("with"_L1) && C.IsOperator("="_L1, 2)) {
            C.Drop(4);
        } else if ((C.Is("on"_L1) && C.Token(1).IsQuotedName()) || (C.Is("on"_L1) && C.Is("primary"_L1, 1)) ||
                   C.Is("textimage_on"_L1)) {
            C.Drop(2);
        } else {
            return;
        }
    }
}

bool TTableRules::AtConstraint() const
{
    return C.IsAnyOf({"constraint"_L1, "primary"_L1, "unique"_L1, "check"_L1, "foreign"_L1}) ||
           (C.Is("default"_L1) && C.Token().IsReserved);
}

TTableRules::TConstraint TTableRules::ReadConstraint()
{
    TConstraint constraint;
    constraint.First = C.At;
    if (C.Accept("constraint"_L1))
        constraint.Name = SqlName(C.Edits[C.Name()]);
    if (C.Accept("primary"_L1)) {
        ReadKey(&constraint);
    } else if (C.Accept("unique"_L1)) {
        ReadKey(&constraint);
        constraint.KeyColumns.clear();
    } else if (C.Accept("check"_L1)) {
        if (!C.IsOperator("("_L1))
            C.Fail();
        FQuery.Group();
    } else if (C.Accept("foreign"_L1)) {
        C.Expect("key"_L1);
        if (!C.IsOperator("("_L1))
            C.Fail();
        C.NameList();
        C.Expect("references"_L1);
        ReadReferences();
    } else if (C.Is("default"_L1)) {
        // NOTE: the constraint's name goes: the engine keeps a default without one.
        constraint.First = C.At;
        C.Advance();
        TColumn column;
        ReadDefault(column);
        constraint.Last = C.At - 1;
        C.Expect("for"_L1);
        constraint.DefaultColumn = C.Name();
        return constraint;
    } else {
        C.Fail();
    }
    constraint.Last = C.At - 1;
    return constraint;
}

void TTableRules::ReadReferences()
{
    C.TableName();
    if (C.IsOperator("("_L1))
        C.NameList();
    while (C.Is("on"_L1) && C.IsAnyOf({"delete"_L1, "update"_L1}, 1)) {
        C.Advance(2);
        if (C.IsAnyOf({"set"_L1, "no"_L1}))
            C.Advance();
        C.Advance(); // cascade, null, default, action
    }
    if (C.Is("not"_L1) && C.Is("for"_L1, 1))
        C.Drop(3);
}

/// Where the default that begins at the cursor ends.
int TTableRules::DefaultEnd() const
{
    int end = C.At;
    for (;;) {
        const TSqlToken &token = C.Edits[end];
        const bool isFirst = end == C.At;
        if (token.Kind == TSqlTokenKind::End || token.IsOperator(","_L1) || token.IsOperator(")"_L1) ||
            token.IsOperator(";"_L1))
            return end;
        static constexpr QLatin1StringView Options[] = {
            "not"_L1,        "constraint"_L1, "primary"_L1, "unique"_L1, "check"_L1,
            "references"_L1, "identity"_L1,   "collate"_L1, "with"_L1,   "for"_L1,
            "rowguidcol"_L1, "foreign"_L1,    "null"_L1};
        if (!isFirst &&
            std::any_of(std::begin(Options), std::end(Options), [&](auto o) { return token.Is(o); }))
            return end;
        end = C.Edits.Match(end) > end ? C.Edits.Match(end) + 1 : end + 1;
    }
}

/// 'Y' or 'N' for what means them as a flag's default; empty for anything else.
QString TTableRules::FlagDefault(int token) const
{
    const TSqlToken &t = C.Edits[token];
    const QString value = (t.Kind == TSqlTokenKind::Text ? SqlTextValue(t) : t.Text.toString()).toLower();
    if (value == "1"_L1 || value == "true"_L1 || value == "yes"_L1 || value == "on"_L1 || value == "y"_L1)
        return u"'Y'"_s;
    if (value == "0"_L1 || value == "false"_L1 || value == "no"_L1 || value == "off"_L1 || value == "n"_L1)
        return u"'N'"_s;
    return {};
}

/// The clock is written in functions of SQLite's own, so that any tool may insert into the table.
QString TTableRules::ClockDefault(const TSqlToken &name) const
{
    struct TClock
    {
        QLatin1StringView Name;
        QLatin1StringView Engine;
    };
    static constexpr TClock Clocks[] = {
        {"now"_L1, "(strftime('%Y-%m-%d %H:%M:%f', 'now', 'localtime'))"_L1},
        {"getdate"_L1, "(strftime('%Y-%m-%d %H:%M:%f', 'now', 'localtime'))"_L1},
        {"current_timestamp"_L1, "(strftime('%Y-%m-%d %H:%M:%f', 'now', 'localtime'))"_L1},
        {"getutcdate"_L1, "(strftime('%Y-%m-%d %H:%M:%f', 'now'))"_L1},
        {"date"_L1, "(date('now', 'localtime'))"_L1},
        {"time"_L1, "(time('now', 'localtime'))"_L1}};
    for (const TClock &clock : Clocks) {
        if (name.Is(clock.Name))
            return clock.Engine;
    }
    return {};
}

bool TTableRules::WriteClockDefault(int first, int last)
{
    const bool isCall = last == first + 2 && C.Edits[first + 1].IsOperator("("_L1);
    if (!isCall && (last > first || !C.Edits[first].Is("current_timestamp"_L1)))
        return false;
    const QString clock = ClockDefault(C.Edits[first]);
    if (clock.isEmpty())
        return false;
    C.Edits.Replace(first, clock);
    C.Edits.Remove(first + 1, last);
    return true;
}

void TTableRules::ReadDefault(TColumn &column)
{
    const int end = DefaultEnd();
    int first = C.At;
    int last = end - 1;
    if (last < first)
        C.Fail();
    column.HasDefault = !C.Edits[first].Is("null"_L1);
    column.DefaultFirst = first;
    column.DefaultLast = last;
    while (C.Edits[first].IsOperator("("_L1) && C.Edits.Match(first) == last && last > first + 1) {
        C.Edits.Remove(first, first);
        C.Edits.Remove(last, last);
        ++first;
        --last;
    }
    // What stood in brackets must not touch the word before it.
    if (first > C.At)
        C.Edits.Before(first, u" "_s);
    const TSqlToken &token = C.Edits[first];
    const bool isSigned = last == first + 1 && (token.IsOperator("-"_L1) || token.IsOperator("+"_L1)) &&
                          C.Edits[last].Kind == TSqlTokenKind::Number;
    const bool isNumber = isSigned || (first == last && token.Kind == TSqlTokenKind::Number);
    const bool isText = column.Type.Class == TSqlTypeClass::Text;
    const auto writeText = [&] {
        C.Edits.Replace(first, QuotedText(C.Edits.Written(first, last)));
        C.Edits.Remove(first + 1, last);
    };
    const QString flag =
        column.Type.Class == TSqlTypeClass::Flag && first == last ? FlagDefault(first) : QString();
    const bool isCall = token.Kind == TSqlTokenKind::Word && C.Edits[first + 1].IsOperator("("_L1) &&
                        C.Edits.Match(first + 1) == last;
    if (!flag.isEmpty()) {
        C.Edits.Replace(first, flag);
    } else if (isNumber && C.IsAccess() && isText) {
        writeText(); // NOTE: 0001 of a text is not the number 1.
    } else if (isNumber || (first == last && (token.Kind == TSqlTokenKind::Text ||
                                              token.Kind == TSqlTokenKind::Date || token.Is("null"_L1)))) {
        // a literal stays
    } else if (WriteClockDefault(first, last)) {
        column.IsConstantDefault = false;
    } else if (isCall || !C.IsAccess() || (!isText && first < last)) {
        column.IsConstantDefault = false;
        C.At = first;
        const TSqlOperand value = FQuery.Expression();
        if (!value.IsValid() || C.At != last + 1 || value.Form == TSqlForm::Name)
            C.Fail();
        C.Edits.Before(value.First, u"("_s);
        C.Edits.After(value.Last, u")"_s);
    } else {
        writeText(); // a bare word of the Access dialect
    }
    C.At = end;
}

} // namespace Korvane
