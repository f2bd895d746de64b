// SPDX-License-Identifier: MIT
#include "platform/sql/sqlite/StatementCache.h"

#include <sqlite3.h>

using namespace Qt::StringLiterals;

namespace Korvane {

namespace {

/// A literal that would make the engine refuse a longer text as a statement is not to pass as a
/// value: such statements go the ordinary way.
constexpr qsizetype MaxStatementSize = 64 * 1024;

constexpr auto PlacePrefix = "korvane_"_L1;

/// All of the same length, so that none is the beginning of another.
QString PlaceName(qsizetype place) { return u":korvane_%1"_s.arg(place, 3, 10, QLatin1Char('0')); }

struct TSingleStep
{
    QByteArray Sql;
    TStepKind Kind = TStepKind::Other;
};

/// The one step that a text becomes; nothing if it becomes something else.
std::optional<TSingleStep> SingleStepOf(const QString &text, TSqlDialect dialect)
{
    const TRewrittenStatement rewritten = RewriteForSqlite(text, dialect);
    const QList<TStepKind> kinds = KindsOf(rewritten);
    const bool isSuitable = kinds.size() == 1 &&
                            (kinds[0] == TStepKind::Selects || kinds[0] == TStepKind::ChangesRows) &&
                            rewritten.CatalogTables.isEmpty() && rewritten.Command == TServerCommand::None;
    if (!isSuitable)
        return std::nullopt;
    return TSingleStep{rewritten.Steps[0].Sql, kinds[0]};
}

/// The step with a parameter at each place, if no literal has a say in what becomes of the rest.
std::optional<TSingleStep> ProvenStepOf(const TStatementForm &form, TSqlDialect dialect)
{
    const auto step = SingleStepOf(form.With(PlaceName), dialect);
    if (!step)
        return std::nullopt;
    for (const QString &probe : {u"'a'"_s, u"7"_s, u"0.5"_s, u"-7"_s, u"null"_s}) {
        const auto literal = SingleStepOf(form.With([&](qsizetype) { return probe; }), dialect);
        QByteArray expected = step->Sql;
        for (qsizetype place = 0; place < form.PlaceCount(); ++place)
            expected.replace(PlaceName(place).toUtf8(), probe.toUtf8());
        if (!literal || literal->Kind != step->Kind || literal->Sql != expected)
            return std::nullopt;
    }
    return step;
}

} // namespace

TPreparedForm::TPreparedForm(TSqliteDatabase &database, TStatementForm form, const QByteArray &sql,
                             TStepKind kind)
    : Form(std::move(form)), Statement(database, sql, TStatementUse::Often)
{
    sqlite3_stmt *const handle = Statement.Handle();
    for (qsizetype place = 0; place < Form.PlaceCount(); ++place)
        FPlaces.push_back(sqlite3_bind_parameter_index(handle, PlaceName(place).toUtf8().constData()));
    FIsUsable = std::find(FPlaces.begin(), FPlaces.end(), 0) == FPlaces.end();
    for (int index = 1; index <= sqlite3_bind_parameter_count(handle); ++index) {
        if (std::find(FPlaces.begin(), FPlaces.end(), index) != FPlaces.end())
            continue;
        const char *const name = sqlite3_bind_parameter_name(handle, index);
        FIsUsable = FIsUsable && name;
        if (name)
            FOwnParameters.push_back({QString::fromUtf8(name + 1), index});
    }
    ChangesRows = kind == TStepKind::ChangesRows && sqlite3_stmt_readonly(handle) == 0;
}

void TPreparedForm::Bind(const std::vector<TLiteral> &literals, std::span<const TSqlParameter> parameters)
{
    for (size_t i = 0; i < literals.size(); ++i) {
        switch (literals[i].Kind) {
        case TLiteral::TKind::Null:
            Statement.BindNull(FPlaces[i]);
            break;
        case TLiteral::TKind::Whole:
            Statement.BindInt(FPlaces[i], literals[i].Whole);
            break;
        case TLiteral::TKind::Number:
            Statement.BindDouble(FPlaces[i], literals[i].Number);
            break;
        case TLiteral::TKind::Text:
            Statement.BindLastingText(FPlaces[i], literals[i].Text);
            break;
        }
    }
    for (const TOwnParameter &own : FOwnParameters)
        for (const TSqlParameter &parameter : parameters)
            if (parameter.Name.compare(own.Name, Qt::CaseInsensitive) == 0)
                Statement.Bind(own.Index, parameter.Value);
}

TReadyStatement TStatementCache::Find(const QString &statement, std::span<const TSqlParameter> parameters)
{
    if (statement.size() > MaxStatementSize)
        return {};
    const auto found = std::find_if(FForms.begin(), FForms.end(),
                                    [&](const auto &form) { return form->Form.Reads(statement, FReader); });
    if (found == FForms.end())
        return {};
    std::rotate(FForms.begin(), found, found + 1);
    TReadyStatement ready(FForms.front().get());
    ready->Bind(FReader.Literals(), parameters);
    return ready;
}

void TStatementCache::Learn(TSqliteDatabase &database, const QString &statement)
{
    // NOTE: the names of the places must be nowhere else in the statement.
    if (statement.size() > MaxStatementSize || statement.contains(PlacePrefix, Qt::CaseInsensitive))
        return;
    const auto form = TStatementForm::Of(statement, FDialect);
    if (!form)
        return;
    const size_t hash = form->Hash();
    TSeenForm &seen = FSeen[hash % FSeen.size()];
    if (seen.Hash != hash) {
        seen = {hash, TVerdict::SeenOnce};
        return;
    }
    const bool isKnown = std::any_of(FForms.begin(), FForms.end(),
                                     [&](const auto &known) { return known->Form.Hash() == hash; });
    if (isKnown || seen.Verdict == TVerdict::Refused)
        return;
    auto prepared = Prepare(database, *form);
    if (!prepared) {
        seen.Verdict = TVerdict::Refused;
        return;
    }
    if (FForms.size() == MaxFormCount)
        FForms.pop_back();
    FForms.insert(FForms.begin(), std::move(prepared));
}

std::unique_ptr<TPreparedForm> TStatementCache::Prepare(TSqliteDatabase &database,
                                                        const TStatementForm &form) const
{
    try {
        const auto step = ProvenStepOf(form, FDialect);
        if (!step)
            return nullptr;
        auto prepared = std::make_unique<TPreparedForm>(database, form, step->Sql, step->Kind);
        return prepared->IsUsable() ? std::move(prepared) : nullptr;
    } catch (const ESqlError &) {
        // The statement itself ran: it is the parameters that do not fit into it.
        return nullptr;
    }
}

void TStatementCache::Clear() { FForms.clear(); }

} // namespace Korvane
