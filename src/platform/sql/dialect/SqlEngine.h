// SPDX-License-Identifier: MIT
#pragma once

#include "platform/sql/dialect/QueryRules.h"
#include "platform/sql/dialect/TypeRules.h"

namespace Korvane {

struct TFunctionRule;

/// The call that turns a value into a type: what stands for the word, behind the value and behind
/// the call.
struct TSqlConversion
{
    QString Function;
    QString Arguments;
    TSqlValueKind Kind = TSqlValueKind::Unknown;
    QString Suffix;
};

/// What the query rules ask an engine where engines differ. These answers are SQLite's; another
/// engine overrides what it does in another way.
class TSqlEngine
{
public:
    virtual ~TSqlEngine();

    /// The token is the name of a table, a column or an alias.
    virtual void WriteName(TSqlCursor &, int) {}
    /// The token is the name of a database before a table.
    virtual void WriteDatabaseName(TSqlCursor &, int) {}
    /// The token is the name of a function; it may have been taken for another name before.
    virtual void WriteFunctionName(TSqlCursor &, int) {}
    /// The token is the name behind "collate".
    virtual void WriteCollation(TSqlCursor &, int) {}
    /// An item of a select ends; alias is its token or -1.
    virtual void WriteItem(TSqlCursor &, const TSqlOperand &, int) {}
    /// Literals that are columns of a select without unions.
    virtual void WriteTextItems(TSqlCursor &, const QList<int> &) {}
    /// The alias before the column, as it is to stand behind it.
    virtual QString AliasText(const TSqlCursor &cursor, int alias) const;
    /// An item of "order by" ends before the cursor.
    virtual void WriteOrderItem(TSqlCursor &, bool) {}
    /// A source that is one of the catalog's tables.
    virtual void WriteCatalogTable(TSqlCursor &, const TSqlSource &) {}
    /// "current_timestamp"; its kind.
    virtual TSqlValueKind WriteClock(TSqlCursor &cursor, int token);
    /// "a like b": the token is that of "like" or of the "not" before it.
    virtual void WriteLike(TSqlCursor &, int, const TSqlOperand &, const TSqlOperand &) {}
    /// A call of a function with a rule, its arguments behind it; the kind of its value.
    virtual TSqlValueKind WriteCall(TSqlCursor &cursor, const TFunctionRule &rule, int name, int close,
                                    const QList<TSqlOperand> &arguments);
    /// The rule for a function's name, whatever the case of its letters; null if there is none.
    virtual const TFunctionRule *FindFunction(QStringView name, TSqlDialect dialect) const;
    virtual TSqlConversion ConversionTo(const TSqlType &type, const QString &style) const;

    /// True where values have types: the engine itself then knows whether "+" joins or adds, and
    /// when a quotient is whole.
    virtual bool KnowsTypes() const { return false; }
    /// True where a union may have selects in brackets.
    virtual bool TakesBracketBranches() const { return false; }
};

} // namespace Korvane
