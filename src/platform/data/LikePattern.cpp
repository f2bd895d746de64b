// SPDX-License-Identifier: MIT
#include "platform/data/LikePattern.h"

#include <cstring>

namespace Korvane {

namespace {

constexpr size_t None = size_t(-1);

/// Where the first occurrence of a piece ends, which must not be empty. Looks for its last byte: most
/// Han characters share their first one.
size_t FindBehind(std::string_view text, std::string_view piece)
{
    const size_t before = piece.size() - 1;
    for (size_t at = before; at < text.size(); ++at) {
        const void *last = std::memchr(text.data() + at, piece[before], text.size() - at);
        if (!last)
            return None;
        at = size_t(static_cast<const char *>(last) - text.data());
        if (std::memcmp(text.data() + at - before, piece.data(), before) == 0)
            return at + 1;
    }
    return None;
}

} // namespace

TLikePattern::TLikePattern(std::string_view text, const TLikeSyntax &syntax) : FSyntax(syntax)
{
    std::u32string pattern;
    pattern.reserve(text.size());
    while (!text.empty())
        pattern.push_back(NextCodePoint(text));
    for (size_t i = 0; i < pattern.size(); ++i) {
        const char32_t c = pattern[i];
        if (syntax.Escape != 0 && c == syntax.Escape && i + 1 < pattern.size()) {
            FItems.push_back({Literal, Folded(pattern[++i])});
        } else if (c == U'%' || (syntax.Shell && c == U'*')) {
            if (FItems.empty() || FItems.back().Kind != AnyText)
                FItems.push_back({AnyText});
        } else if (c == U'_' || (syntax.Shell && c == U'?')) {
            FItems.push_back({AnyOne});
        } else if (syntax.Shell && c == U'#') {
            FItems.push_back({Digit});
        } else if (const size_t end = c == U'[' && syntax.Negation != 0 ? ParseSet(pattern, i) : None;
                   end != None) {
            i = end;
        } else {
            FItems.push_back({Literal, Folded(c)});
        }
    }
    FindPieces();
}

/// NOTE: in UTF-8 no character's bytes stand inside another's, so that bytes can be compared.
void TLikePattern::FindPieces()
{
    if (FSyntax.Fold != TLikeSyntax::Exact)
        return;
    char bytes[4];
    std::vector<std::string> pieces(1);
    for (const TItem &item : FItems) {
        if (item.Kind == AnyText)
            pieces.emplace_back();
        else if (item.Kind == Literal && item.Character <= 0x10FFFF)
            pieces.back().append(bytes, PutUtf8(item.Character, bytes));
        else
            return;
    }
    FPieces = std::move(pieces);
}

bool TLikePattern::MatchesPieces(std::string_view text) const
{
    const std::string &first = FPieces.front();
    const std::string &last = FPieces.back();
    if (FPieces.size() == 1)
        return text == first;
    if (text.size() < first.size() + last.size() || !text.starts_with(first) || !text.ends_with(last))
        return false;
    text = text.substr(first.size(), text.size() - first.size() - last.size());
    for (size_t i = 1; i + 1 < FPieces.size(); ++i) {
        const std::string &piece = FPieces[i];
        const size_t behind = FindBehind(text, piece);
        if (behind == None)
            return false;
        text.remove_prefix(behind);
    }
    return true;
}

char32_t TLikePattern::Folded(char32_t c) const
{
    if (c >= U'A' && c <= U'Z')
        return FSyntax.Fold == TLikeSyntax::Exact ? c : c + (U'a' - U'A');
    return FSyntax.Fold == TLikeSyntax::Blind ? FoldCase(c) : c;
}

/// Adds the set that begins at "[" and gives the place of its "]"; None if it has none.
size_t TLikePattern::ParseSet(std::u32string_view pattern, size_t at)
{
    size_t i = at + 1;
    const bool isNegated = i < pattern.size() && pattern[i] == FSyntax.Negation;
    if (isNegated)
        ++i;
    // A bracket closes the set only behind its first character: "[]]" matches "]".
    const size_t close = pattern.find(U']', i + 1);
    if (close == std::u32string_view::npos)
        return None;
    TItem item{isNegated ? NotSet : Set, 0, FRanges.size(), 0};
    for (; i < close; ++i) {
        const bool isRange = i + 2 < close && pattern[i + 1] == U'-';
        FRanges.push_back({Folded(pattern[i]), Folded(pattern[isRange ? i + 2 : i])});
        if (isRange)
            i += 2;
    }
    item.EndRange = FRanges.size();
    FItems.push_back(item);
    return close;
}

bool TLikePattern::MatchesOne(const TItem &item, char32_t c) const
{
    switch (item.Kind) {
    case Literal:
        return item.Character == c;
    case AnyOne:
        return true;
    case Digit:
        return c >= U'0' && c <= U'9';
    case Set:
    case NotSet:
        for (size_t i = item.FirstRange; i < item.EndRange; ++i) {
            if (c >= FRanges[i].First && c <= FRanges[i].Last)
                return item.Kind == Set;
        }
        return item.Kind == NotSet;
    case AnyText:
        break;
    }
    return false;
}

bool TLikePattern::Matches(std::string_view text) const
{
    if (!FPieces.empty())
        return MatchesPieces(text);
    // Only the last "any text" is ever tried anew: an earlier one that could end later would leave
    // less to the items between the two.
    size_t item = 0, starItem = None;
    std::string_view starText;
    while (!text.empty()) {
        std::string_view rest = text;
        const char32_t c = Next(rest);
        if (item < FItems.size() && FItems[item].Kind == AnyText) {
            starItem = item++;
            starText = text;
        } else if (item < FItems.size() && MatchesOne(FItems[item], c)) {
            ++item;
            text = rest;
        } else if (starItem != None) {
            NextCodePoint(starText);
            text = starText;
            item = starItem + 1;
        } else {
            return false;
        }
    }
    while (item < FItems.size() && FItems[item].Kind == AnyText)
        ++item;
    return item == FItems.size();
}

} // namespace Korvane
