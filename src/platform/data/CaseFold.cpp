// SPDX-License-Identifier: MIT
#include "platform/data/CaseFold.h"

#include <QChar>

#include <cstring>

namespace Korvane {

namespace {

// Code points end at 0x10FFFF, so that this stands for no character.
constexpr char32_t BrokenByte = 0x110000;

bool IsContinuation(unsigned char byte) { return (byte & 0xC0) == 0x80; }

/// Length of the sequence that a lead byte opens; 0 if it opens none.
size_t SequenceLength(unsigned char lead)
{
    if (lead < 0x80)
        return 1;
    if (lead >= 0xC2 && lead <= 0xDF)
        return 2;
    if ((lead & 0xF0) == 0xE0)
        return 3;
    return lead >= 0xF0 && lead <= 0xF4 ? 4 : 0;
}

size_t Mix(size_t hash, size_t value) { return (hash ^ value) * 0x9E3779B97F4A7C15u; }

} // namespace

char32_t FoldCase(char32_t code)
{
    if (code < 0x80)
        return code >= 'A' && code <= 'Z' ? code + ('a' - 'A') : code;
    // Han and what stands round it has no case, and fills most texts here.
    if (code >= 0x2E80 && code < 0xA640)
        return code;
    return code < BrokenByte ? QChar::toCaseFolded(code) : code;
}

size_t PutUtf8(char32_t code, char *bytes)
{
    size_t count = 0;
    const auto put = [&](char32_t byte) { bytes[count++] = static_cast<char>(byte); };
    if (code < 0x80) {
        put(code);
    } else if (code < 0x800) {
        put(0xC0 | code >> 6);
        put(0x80 | (code & 0x3F));
    } else if (code < 0x10000) {
        put(0xE0 | code >> 12);
        put(0x80 | (code >> 6 & 0x3F));
        put(0x80 | (code & 0x3F));
    } else {
        put(0xF0 | (code >> 18 & 0xF));
        put(0x80 | (code >> 12 & 0x3F));
        put(0x80 | (code >> 6 & 0x3F));
        put(0x80 | (code & 0x3F));
    }
    return count;
}

char32_t NextCodePoint(std::string_view &utf8)
{
    const auto byte = [&utf8](size_t i) { return static_cast<unsigned char>(utf8[i]); };
    const size_t length = SequenceLength(byte(0));
    bool valid = length != 0 && length <= utf8.size();
    for (size_t i = 1; valid && i < length; ++i)
        valid = IsContinuation(byte(i));
    if (!valid) {
        const char32_t broken = BrokenByte + byte(0);
        utf8.remove_prefix(1);
        return broken;
    }
    char32_t code = length == 1 ? byte(0) : byte(0) & (0x7Fu >> length);
    for (size_t i = 1; i < length; ++i)
        code = code << 6 | (byte(i) & 0x3Fu);
    utf8.remove_prefix(length);
    return code;
}

char32_t NextFolded(std::string_view &utf8)
{
    const auto first = static_cast<unsigned char>(utf8[0]);
    if (first < 0x80) {
        utf8.remove_prefix(1);
        return FoldCase(first);
    }
    return FoldCase(NextCodePoint(utf8));
}

int CompareTexts(std::string_view left, std::string_view right, TCaseMode mode)
{
    // The byte order of UTF-8 is the order of its code points.
    if (mode == TCaseMode::Exact)
        return left.compare(right);
    while (!left.empty() && !right.empty()) {
        const char32_t a = NextFolded(left);
        const char32_t b = NextFolded(right);
        if (a != b)
            return a < b ? -1 : 1;
    }
    return int(right.empty()) - int(left.empty());
}

bool EqualTexts(std::string_view left, std::string_view right, TCaseMode mode)
{
    return mode == TCaseMode::Exact ? left == right : CompareTexts(left, right, mode) == 0;
}

bool StartsWith(std::string_view text, std::string_view start, TCaseMode mode)
{
    if (mode == TCaseMode::Exact)
        return text.starts_with(start);
    while (!start.empty()) {
        if (text.empty() || NextFolded(text) != NextFolded(start))
            return false;
    }
    return true;
}

size_t HashText(std::string_view text, TCaseMode mode)
{
    if (mode == TCaseMode::Exact)
        return std::hash<std::string_view>()(text);
    size_t hash = 0;
    while (!text.empty())
        hash = Mix(hash, NextFolded(text));
    return hash ^ hash >> 32;
}

} // namespace Korvane
