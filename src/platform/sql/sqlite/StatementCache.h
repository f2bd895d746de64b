// SPDX-License-Identifier: MIT
#pragma once

#include "platform/sql/sqlite/SqliteDatabase.h"
#include "platform/sql/sqlite/StatementForm.h"
#include "platform/sql/sqlite/StepKind.h"

#include <array>

namespace Korvane {

/// A prepared statement of a form: each place of the form is a parameter.
class TPreparedForm
{
public:
    TPreparedForm(TSqliteDatabase &database, TStatementForm form, const QByteArray &sql, TStepKind kind);

    /// False when the engine does not know a place, or knows a parameter without a name.
    bool IsUsable() const { return FIsUsable; }
    /// NOTE: the literals' texts must last until the statement is reset.
    void Bind(const std::vector<TLiteral> &literals, std::span<const TSqlParameter> parameters);

    const TStatementForm Form;
    TSqliteStatement Statement;
    bool ChangesRows = false; ///< whether the engine then tells how many

private:
    struct TOwnParameter
    {
        QString Name;
        int Index;
    };

    bool FIsUsable = false;
    std::vector<int> FPlaces;                  // of each place the index of its parameter
    std::vector<TOwnParameter> FOwnParameters; // those of the statement itself
};

struct TStatementReset
{
    void operator()(TPreparedForm *form) const { form->Statement.Reset(); }
};

/// A prepared statement with all its values, ready to run. When it is let go it is reset, so
/// that no lock and no value stays.
using TReadyStatement = std::unique_ptr<TPreparedForm, TStatementReset>;

/// Keeps prepared statements, so that a statement that differs from an earlier one in its
/// literals only needs neither rewriting nor preparing: its literals are bound. Results, errors
/// and what is stored are the same as without.
///
/// A form is prepared when it comes for the second time, after it has proven itself: it is
/// rewritten with a parameter at each place, and with literals of each kind there. Unless all of
/// these agree in everything else, a literal has a say in how its statement is rewritten, and the
/// form goes the ordinary way for good. Rewriting never looks at the database; what the engine
/// itself knew when it prepared a statement, it sees to by itself.
///
/// Single inserts, updates, deletes and selects take part that read no catalog table.
class TStatementCache
{
public:
    static constexpr size_t MaxFormCount = 64;

    explicit TStatementCache(TSqlDialect dialect) : FDialect(dialect), FReader(dialect) {}

    /// The prepared statement for a statement, its literals and parameters bound; nothing if its
    /// form is not here. At most one of them may be in use at a time.
    TReadyStatement Find(const QString &statement, std::span<const TSqlParameter> parameters);
    /// To be told each statement that ran the ordinary way and without a failure.
    void Learn(TSqliteDatabase &database, const QString &statement);
    /// Lets go of all prepared statements.
    void Clear();

private:
    enum class TVerdict : quint8 { SeenOnce, Refused };
    struct TSeenForm
    {
        size_t Hash = 0;
        TVerdict Verdict = TVerdict::SeenOnce;
    };

    std::unique_ptr<TPreparedForm> Prepare(TSqliteDatabase &database, const TStatementForm &form) const;

    const TSqlDialect FDialect;
    TLiteralReader FReader;
    std::vector<std::unique_ptr<TPreparedForm>> FForms; // the last used one first
    std::array<TSeenForm, 256> FSeen; // by hash; a form that drives out another costs that one time
};

} // namespace Korvane
