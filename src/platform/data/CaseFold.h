// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace Korvane {

/// Whether a comparison of texts minds the case of letters.
enum class TCaseMode : unsigned char { Exact, Blind };

/// Takes the next code point off a UTF-8 text, which must not be empty. A byte that is no
/// part of valid UTF-8 counts as a code point of its own, beyond all others.
char32_t NextCodePoint(std::string_view &utf8);
/// Writes a code point's bytes, one to four, and gives their number. What NextCodePoint gives for a
/// broken byte has none of its own and gets four that sort behind all others.
size_t PutUtf8(char32_t code, char *bytes);
/// A code point by Unicode's simple case folding.
char32_t FoldCase(char32_t code);
/// NextCodePoint, folded.
char32_t NextFolded(std::string_view &utf8);

/// The order of two texts by code points, exact or with both folded: below 0, 0, above 0.
int CompareTexts(std::string_view left, std::string_view right, TCaseMode mode);
bool EqualTexts(std::string_view left, std::string_view right, TCaseMode mode);
bool StartsWith(std::string_view text, std::string_view start, TCaseMode mode);

/// The bits of a hash that equal texts share.
size_t HashText(std::string_view text, TCaseMode mode);

} // namespace Korvane
