// SPDX-License-Identifier: MIT
#pragma once

#include "platform/sql/SqlDriver.h"

#include <QString>
#include <QStringView>

#include <vector>

namespace Korvane {

enum class TSqlTokenKind : quint8 {
    Word,        ///< a bare name or keyword
    BracketName, ///< [name]
    QuotedName,  ///< "name" in the MSSQL dialect, `name`
    Text,        ///< 'text', N'text', in the Access dialect also "text"
    Date,        ///< #1/31/2024# in the Access dialect
    Number,
    Parameter, ///< :name or ?
    Operator,  ///< one sign or two that belong together, brackets, comma, point, semicolon
    End
};

/// A piece of a statement. The views point into the tokenized text, which must outlive them.
struct TSqlToken
{
    TSqlTokenKind Kind = TSqlTokenKind::End;
    bool IsReserved = false; ///< a word that cannot be a bare name
    QStringView Blanks;      ///< blanks and comments before it
    QStringView Text;        ///< as written

    /// True for the bare word, whatever the case of its letters.
    bool Is(QLatin1StringView word) const
    {
        return Kind == TSqlTokenKind::Word && Text.size() == word.size() &&
               Text.compare(word, Qt::CaseInsensitive) == 0;
    }
    bool IsOperator(QLatin1StringView sign) const
    {
        return Kind == TSqlTokenKind::Operator && Text.size() == sign.size() && Text == sign;
    }
    bool IsQuotedName() const
    {
        return Kind == TSqlTokenKind::BracketName || Kind == TSqlTokenKind::QuotedName;
    }
    bool IsName() const { return (Kind == TSqlTokenKind::Word && !IsReserved) || IsQuotedName(); }
};

/// Cuts a text into tokens, the last of which is End and holds the blanks behind the others: the
/// blanks and texts of all tokens in order are the text again. Raises ESqlError for a literal, a
/// quoted name or a comment that does not end, and for a NUL character, naming the place.
std::vector<TSqlToken> TokenizeSql(QStringView text, TSqlDialect dialect);

/// The name that a token of a name stands for: without brackets or quotes.
QString SqlName(const TSqlToken &token);
/// The value of a token of kind Text.
QString SqlTextValue(const TSqlToken &token);

/// The name between double quotes, as SQLite reads it whatever its letters.
QString QuotedSqlName(const QString &name);

/// The place of a position in a text, for the user: "第 2 行第 5 列".
QString SqlPlace(QStringView text, qsizetype position);

} // namespace Korvane
