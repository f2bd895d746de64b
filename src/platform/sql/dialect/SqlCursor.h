// SPDX-License-Identifier: MIT
#pragma once

#include "platform/sql/dialect/SqlEdits.h"
#include "platform/sql/dialect/SqlRewriter.h"

#include <initializer_list>

namespace Korvane {

class TSqlEngine;

/// The engine has no equivalent of a construct. The message speaks of the embedded engine.
class ESqlRefused : public ESqlError
{
public:
    explicit ESqlRefused(const QString &construct);

    const QString Construct;
};

/// Raises ESqlRefused.
[[noreturn]] void RefuseSql(const QString &construct);

/// A name of up to four parts as it stands in a statement: server.database.owner.name. Parts may
/// be empty, as in "master..sysobjects".
struct TSqlNameChain
{
    QList<int> Parts; ///< tokens; -1 for an empty part
    int First = -1;
    int Last = -1;
    bool EndsWithStar = false; ///< T.*; Last is the star, which is no part
};

/// The rules' common place in a statement: the tokens, the next of them, and what has come of the
/// statement so far.
class TSqlCursor
{
public:
    /// For SQLite, if no engine is named; an engine must outlive the cursor.
    TSqlCursor(QStringView text, TSqlDialect dialect, TSqlEngine *engine = nullptr);

    const TSqlDialect Dialect;
    TSqlEngine &Engine;
    TSqlEdits Edits;
    TRewrittenStatement Result;
    int At = 0; ///< the next token; stops at the End token

    bool IsAccess() const { return Dialect == TSqlDialect::Access; }
    const TSqlToken &Token(int ahead = 0) const { return Edits[std::min(At + ahead, Edits.Size() - 1)]; }
    bool AtEnd() const { return Token().Kind == TSqlTokenKind::End; }
    void Advance(int count = 1) { At = std::min(At + count, Edits.Size() - 1); }

    bool Is(QLatin1StringView word, int ahead = 0) const { return Token(ahead).Is(word); }
    bool IsAnyOf(std::initializer_list<QLatin1StringView> words, int ahead = 0) const;
    bool IsOperator(QLatin1StringView sign, int ahead = 0) const { return Token(ahead).IsOperator(sign); }
    bool Accept(QLatin1StringView word);
    bool AcceptOperator(QLatin1StringView sign);
    /// Goes past the word or raises ESqlError.
    void Expect(QLatin1StringView word);
    void ExpectOperator(QLatin1StringView sign);
    /// The statement is not understood at the next token.
    [[noreturn]] void Fail() const;

    /// At a ";", the end, a closing bracket or a word that begins a statement.
    bool AtStatementEnd() const;
    /// Drops the next tokens.
    void Drop(int count = 1);
    /// Drops the word if it is the next one.
    bool DropWord(QLatin1StringView word);
    /// Drops a bracket with all it holds, if it is next.
    bool DropGroup();

    /// Goes past the name that begins at the next token. Raises ESqlError if there is none.
    TSqlNameChain NameChain();
    /// The same for a table's name, of which the owner and, before a catalog table, the database
    /// are dropped.
    TSqlNameChain TableName();
    /// Past a single name, an alias or a column; gives its token.
    int Name();
    /// True for the name of one of the catalog's tables.
    bool IsCatalogTable(int name) const;
    /// Past a bracket that holds names.
    void NameList();

    /// Adds a step, as the engine is to run it.
    void AddStep(const QString &sql);
    void AddChange(TTableChange::TKind kind, const QString &table, const QString &column,
                   const QString &text = {});

private:
    void DropTableQualifiers(TSqlNameChain &chain);
};

} // namespace Korvane
