// SPDX-License-Identifier: MIT
#pragma once

#include "platform/data/CaseFold.h"

#include <string>
#include <string_view>
#include <vector>

namespace Korvane {

/// What the characters of a "like" pattern mean. "%" always stands for any characters, also
/// none, and "_" for one.
struct TLikeSyntax
{
    enum TFold { Exact, Blind, AsciiBlind };
    TFold Fold = Exact;    ///< whether the case of letters counts: all, none, all but a–z
    bool Shell = false;    ///< "*" is any characters, "?" one, "#" one digit
    char32_t Negation = 0; ///< behind "[" it turns a set round; 0 where there are no sets [a-z]
    char32_t Escape = 0;   ///< the character behind it stands for itself; 0 for none
};

/// A pattern of "like", read once. A "[" without "]" stands for itself. Matching takes no more
/// than the product of both lengths; an exact pattern of nothing but texts and "%" searches bytes.
class TLikePattern
{
public:
    /// The pattern in UTF-8.
    TLikePattern(std::string_view pattern, const TLikeSyntax &syntax);

    bool Matches(std::string_view text) const; ///< text in UTF-8

private:
    enum TKind : unsigned char { Literal, AnyText, AnyOne, Digit, Set, NotSet };
    struct TRange
    {
        char32_t First;
        char32_t Last;
    };
    struct TItem
    {
        TKind Kind;
        char32_t Character = 0;
        size_t FirstRange = 0;
        size_t EndRange = 0;
    };

    void FindPieces();
    bool MatchesPieces(std::string_view text) const;
    char32_t Folded(char32_t c) const;
    char32_t Next(std::string_view &text) const { return Folded(NextCodePoint(text)); }
    size_t ParseSet(std::u32string_view pattern, size_t at);
    bool MatchesOne(const TItem &item, char32_t c) const;

    TLikeSyntax FSyntax;
    std::vector<TItem> FItems;
    std::vector<TRange> FRanges;
    // The texts between the "%", the first at the beginning and the last at the end; only of a
    // pattern that has nothing else and minds the case.
    std::vector<std::string> FPieces;
};

} // namespace Korvane
