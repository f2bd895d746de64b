// SPDX-License-Identifier: MIT
#pragma once

#include "platform/sql/SqlDriver.h"
#include "platform/sql/sqlite/LiteralReader.h"

#include <QStringList>

#include <functional>
#include <optional>

namespace Korvane {

/// What statements have in common that differ in nothing but the literals in some places: the
/// texts before, between and behind these places. A place is where a whole value stands that a
/// bound parameter can stand for: a value of an insert, what a column is set to, what a column
/// is compared with in the condition of the statement.
class TStatementForm
{
public:
    /// The form of a single insert, update, delete or select; nothing for any other statement.
    static std::optional<TStatementForm> Of(const QString &statement, TSqlDialect dialect);

    qsizetype PlaceCount() const { return FPieces.size() - 1; }
    size_t Hash() const { return FHash; }
    /// A statement of this form, with the given texts at the places.
    QString With(const std::function<QString(qsizetype)> &textAt) const;
    /// Whether a statement is of this form and the reader can read its literals, which it then
    /// has done. The literals of a statement are exactly what the tokenizer takes for literals:
    /// all before one is the same as in the statement that the form was made of, and what stands
    /// behind a place ends a literal.
    bool Reads(QStringView statement, TLiteralReader &reader) const;

private:
    QStringList FPieces; // one more than there are places
    size_t FHash = 0;
};

} // namespace Korvane
