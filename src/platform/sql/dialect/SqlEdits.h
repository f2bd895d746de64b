// SPDX-License-Identifier: MIT
#pragma once

#include "platform/sql/dialect/SqlTokenizer.h"

namespace Korvane {

/// The tokens of a statement and what is to become of them. Tokens without an edit come out as they
/// went in, with the blanks and comments before them. Every edit and the output take linear time.
class TSqlEdits
{
public:
    /// Raises ESqlError for brackets that do not match or nest deeper than 1000.
    TSqlEdits(QStringView text, TSqlDialect dialect);

    int Size() const { return int(FTokens.size()); } ///< End included
    const TSqlToken &operator[](int token) const { return FTokens[size_t(token)]; }
    /// The partner of "(" or ")"; -1 for any other token.
    int Match(int token) const { return FMatches[size_t(token)]; }

    /// Another text in place of the token's own; the blanks before it stay.
    void Replace(int token, const QString &text);
    /// The same, dropping the blanks before it.
    void ReplaceTight(int token, const QString &text);
    /// Drops the blanks before the token.
    void TightenBefore(int token) { Edit(token).IsTight = true; }
    /// Drops the tokens first to last with the blanks before them; a comment stays.
    void Remove(int first, int last);
    /// A text before the token, behind its blanks. Of several the last one comes first.
    void Before(int token, const QString &text);
    /// A text behind the token. Of several the last one comes last.
    void After(int token, const QString &text);

    /// The tokens first to last as edited, with the blanks before the first.
    QString Text(int first, int last) const;
    /// The same without the blanks before the first.
    QString Trimmed(int first, int last) const;
    /// The tokens first to last as they were written, without the blanks before the first.
    QString Written(int first, int last) const;

private:
    struct TEdit
    {
        QStringList Before;
        QString Text;
        QString After;
        bool IsReplaced = false;
        bool IsTight = false;
    };

    TEdit &Edit(int token);
    void MatchBrackets(QStringView text);
    void Append(QString &out, int token, bool withBlanks) const;

    std::vector<TSqlToken> FTokens;
    std::vector<int> FMatches;
    std::vector<int> FEditIndex; ///< -1: no edit
    std::vector<TEdit> FEdits;
};

} // namespace Korvane
