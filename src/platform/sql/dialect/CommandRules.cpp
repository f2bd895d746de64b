// SPDX-License-Identifier: MIT
#include "platform/sql/dialect/CommandRules.h"

#include "platform/sql/dialect/RowRules.h"
#include "platform/sql/dialect/TableRules.h"

using namespace Qt::StringLiterals;

namespace Korvane {

void TCommandRules::Insert() { TRowRules(C).Insert(); }

void TCommandRules::Update() { TRowRules(C).Update(); }

void TCommandRules::Delete() { TRowRules(C).Delete(); }

void TCommandRules::CreateTable(int first) { TTableRules(C).CreateTable(first); }

void TCommandRules::AlterTable() { TTableRules(C).AlterTable(); }

/// SQLite's index names are unique in the database, the dialects' in their table.
QString TCommandRules::IndexName(const QString &table, const QString &index) const
{
    return QuotedSqlName(table + u'.' + index);
}

void TCommandRules::Truncate(const QString &table) { C.AddStep(u"delete from "_s + table); }

void TCommandRules::Batch()
{
    bool endsOpen = false;
    while (!C.AtEnd()) {
        endsOpen = false;
        if (C.AcceptOperator(";"_L1))
            continue;
        const auto stepsBefore = C.Result.Steps.size();
        Statement();
        // The next statement begins behind a ";" or with its first word.
        if (!C.AtStatementEnd() || C.IsOperator(")"_L1))
            C.Fail();
        endsOpen = C.AtEnd() && C.Result.Steps.size() > stepsBefore;
    }
    TRewrittenStatement &result = C.Result;
    if (result.Command != TServerCommand::None && !result.Steps.isEmpty())
        RefuseSql(u"一批中的 DATABASE 语句和其他语句"_s);
    // What stands behind the last statement stays with it.
    if (endsOpen && !result.Steps.last().Change)
        result.Steps.last().Sql += C.Token().Blanks.toUtf8();
}

/// The statement at the cursor.
void TCommandRules::Statement()
{
    if (FQuery.AtQuery())
        return Select();
    if (C.Is("insert"_L1))
        return Insert();
    if (C.Is("update"_L1))
        return Update();
    if (C.Is("delete"_L1))
        return Delete();
    if (C.Is("create"_L1))
        return Create();
    if (C.Is("drop"_L1))
        return Drop();
    if (C.Is("alter"_L1) && C.Is("table"_L1, 1)) {
        C.Advance(2);
        return AlterTable();
    }
    if (C.Is("truncate"_L1) && C.Is("table"_L1, 1)) {
        C.Advance(2);
        const TSqlNameChain name = C.TableName();
        return Truncate(C.Edits.Trimmed(name.First, name.Last));
    }
    if (C.Is("begin"_L1))
        return Begin();
    if (C.Is("commit"_L1))
        return EndTransaction("commit"_L1);
    if (C.Is("rollback"_L1))
        return EndTransaction("rollback"_L1);
    if (C.Is("set"_L1))
        return Set();
    if (C.Is("backup"_L1) && C.Is("database"_L1, 1) && !C.IsAccess())
        return DatabaseCommand(TServerCommand::BackupDatabase, "to"_L1);
    if (C.Is("restore"_L1) && C.Is("database"_L1, 1) && !C.IsAccess())
        return DatabaseCommand(TServerCommand::RestoreDatabase, "from"_L1);
    Refuse();
}

/// Names the construct by its first words.
void TCommandRules::Refuse()
{
    if (C.Token().Kind != TSqlTokenKind::Word)
        C.Fail();
    QString construct = C.Token().Text.toString().toUpper();
    if (C.IsAnyOf(
            {"create"_L1, "alter"_L1, "drop"_L1, "begin"_L1, "truncate"_L1, "backup"_L1, "restore"_L1}) &&
        C.Token(1).Kind == TSqlTokenKind::Word)
        construct += u' ' + C.Token(1).Text.toString().toUpper();
    if (construct == "EXECUTE"_L1)
        construct = u"EXEC"_s;
    RefuseSql(construct);
}

void TCommandRules::Select()
{
    const int first = C.At;
    TQueryRules query(C);
    query.Query();
    query.PassRest();
    const QString &table = query.IntoTable();
    if (table.isEmpty())
        return C.AddStep(C.Edits.Text(first, C.At - 1));
    const bool isTemporary = table.startsWith(u"\"#") || table.startsWith(u"[#");
    C.AddStep(C.Edits[first].Blanks.toString() +
              (isTemporary ? u"create temp table "_s : u"create table "_s) + table + u" as "_s +
              C.Edits.Trimmed(first, C.At - 1));
}

void TCommandRules::Create()
{
    const int first = C.At;
    int kind = 1;
    while (C.IsAnyOf({"unique"_L1, "clustered"_L1, "nonclustered"_L1}, kind))
        ++kind;
    if (C.Is("index"_L1, kind)) {
        C.Advance();
        CreateIndex(first);
    } else if (C.Is("table"_L1, 1)) {
        C.Advance();
        CreateTable(first);
    } else if (C.Is("view"_L1, 1)) {
        C.Advance();
        CreateView(first);
    } else if (C.Is("database"_L1, 1) && !C.IsAccess()) {
        DatabaseCommand(TServerCommand::CreateDatabase, {});
    } else {
        Refuse();
    }
}

void TCommandRules::CreateIndex(int first)
{
    bool isUnique = false;
    while (!C.Is("index"_L1)) {
        isUnique = isUnique || C.Is("unique"_L1);
        if (C.Is("unique"_L1))
            C.Advance();
        else
            C.Drop();
    }
    const int word = C.At;
    C.Advance();
    const int index = C.Name();
    C.Expect("on"_L1);
    const TSqlNameChain table = C.TableName();
    if (!C.IsOperator("("_L1))
        C.Fail();
    C.Edits.Replace(index, IndexName(SqlName(C.Edits[table.Parts.last()]), SqlName(C.Edits[index])));
    IndexColumns();
    if (C.IsAnyOf({"include"_L1, "where"_L1}))
        RefuseSql(u"CREATE INDEX … "_s + C.Token().Text.toString().toUpper());
    // How the dialects keep an index makes no difference here: with fillfactor=80, on [PRIMARY].
    const int options = C.At;
    while (!C.AtStatementEnd()) {
        if (C.Is("primary"_L1) && C.Edits[C.At - 1].Is("with"_L1) && !isUnique)
            C.Edits.Before(word, u"unique "_s);
        if (C.Is("disallow"_L1))
            RefuseSql(u"WITH DISALLOW NULL"_s);
        if (!C.DropGroup())
            C.Advance();
    }
    C.Edits.Remove(options, C.At - 1);
    C.AddStep(C.Edits.Text(first, C.At - 1));
}

void TCommandRules::CreateView(int first)
{
    C.Expect("view"_L1);
    C.TableName();
    if (C.IsOperator("("_L1))
        C.NameList();
    if (C.Is("with"_L1)) {
        while (!C.Is("as"_L1) && !C.AtStatementEnd())
            C.Drop();
    }
    C.Expect("as"_L1);
    if (!FQuery.AtQuery())
        C.Fail();
    FQuery.Query();
    if (C.Is("with"_L1) && C.Is("check"_L1, 1))
        C.Drop(3);
    FQuery.PassRest();
    C.AddStep(C.Edits.Text(first, C.At - 1));
}

void TCommandRules::Drop()
{
    const int first = C.At;
    if (C.Is("index"_L1, 1)) {
        C.Advance(2);
        return DropIndex();
    }
    if (C.Is("database"_L1, 1) && !C.IsAccess())
        return DatabaseCommand(TServerCommand::DropDatabase, {});
    if (!C.IsAnyOf({"table"_L1, "view"_L1}, 1))
        Refuse();
    C.Advance(2);
    if (C.Is("if"_L1) && C.Is("exists"_L1, 1))
        C.Advance(2);
    const QString words = C.Edits.Written(first, C.At - 1);
    do {
        const TSqlNameChain name = C.TableName();
        C.AddStep(words + u' ' + C.Edits.Trimmed(name.First, name.Last));
    } while (C.AcceptOperator(","_L1));
}

/// "drop index IX on T" and "drop index T.IX".
void TCommandRules::DropIndex()
{
    do {
        const TSqlNameChain chain = C.NameChain();
        if (chain.EndsWithStar)
            C.Fail();
        const QString index = SqlName(C.Edits[chain.Parts.last()]);
        int table = chain.Parts.size() > 1 ? chain.Parts[chain.Parts.size() - 2] : -1;
        if (C.Accept("on"_L1))
            table = C.TableName().Parts.last();
        if (table < 0)
            C.Fail();
        C.AddStep(u"drop index "_s + IndexName(SqlName(C.Edits[table]), index));
    } while (C.AcceptOperator(","_L1));
}

void TCommandRules::Begin()
{
    C.Advance();
    if (!C.IsAnyOf({"tran"_L1, "transaction"_L1}))
        RefuseSql(u"BEGIN … END"_s);
    C.Advance();
    if (C.Token().IsName())
        C.Advance();
    C.AddStep(u"begin"_s);
}

void TCommandRules::EndTransaction(QLatin1StringView engine)
{
    C.Advance();
    if (C.IsAnyOf({"tran"_L1, "transaction"_L1, "work"_L1}))
        C.Advance();
    if (C.Token().IsName())
        C.Advance();
    C.AddStep(engine);
}

/// Settings of the connection that change nothing here are accepted and do nothing.
void TCommandRules::Set()
{
    C.Advance();
    static constexpr std::initializer_list<QLatin1StringView> Settings = {"nocount"_L1,
                                                                          "ansi_nulls"_L1,
                                                                          "ansi_padding"_L1,
                                                                          "ansi_warnings"_L1,
                                                                          "quoted_identifier"_L1,
                                                                          "arithabort"_L1,
                                                                          "concat_null_yields_null"_L1,
                                                                          "xact_abort"_L1};
    if (C.IsAnyOf(Settings) && !C.IsAccess())
        C.Advance();
    else if (C.Is("identity_insert"_L1) && !C.IsAccess()) {
        C.Advance();
        C.TableName();
    } else {
        RefuseSql(u"SET "_s + C.Token().Text.toString().toUpper());
    }
    if (!C.Accept("on"_L1))
        C.Expect("off"_L1);
}

/// create database x, drop database x, backup database x to disk='f', restore database x from disk='f'
void TCommandRules::DatabaseCommand(TServerCommand command, QLatin1StringView fileWord)
{
    if (C.Result.Command != TServerCommand::None)
        RefuseSql(u"一批中的多个 DATABASE 语句"_s);
    C.Advance(2);
    C.Result.Command = command;
    C.Result.CommandDatabase = SqlName(C.Edits[C.Name()]);
    if (!fileWord.isEmpty()) {
        C.Expect(fileWord);
        C.Expect("disk"_L1);
        C.ExpectOperator("="_L1);
        if (C.Token().Kind != TSqlTokenKind::Text)
            C.Fail();
        C.Result.CommandFile = SqlTextValue(C.Token());
        C.Advance();
    }
    // How the server keeps the database and writes the copy: with init, on primary (…), collate …
    if (C.IsAnyOf({"with"_L1, "on"_L1, "collate"_L1})) {
        while (!C.AtEnd() && !C.IsOperator(";"_L1))
            C.Advance();
    }
}

} // namespace Korvane
