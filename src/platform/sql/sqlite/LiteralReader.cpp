// SPDX-License-Identifier: MIT
#include "platform/sql/sqlite/LiteralReader.h"

#include <cfloat>

namespace Korvane {

namespace {

/// So many digits fit into 64 bits, whatever they are.
constexpr int MaxWholeDigits = 18;
constexpr int MaxDecimalDigits = 17;
/// UTF-8 takes at most so many bytes for a character of UTF-16.
constexpr size_t MaxBytesPerCharacter = 3;

constexpr long double PowersOfTen[] = {1e0L, 1e1L,  1e2L,  1e3L,  1e4L,  1e5L,  1e6L,  1e7L,  1e8L,
                                       1e9L, 1e10L, 1e11L, 1e12L, 1e13L, 1e14L, 1e15L, 1e16L, 1e17L};

bool IsDigit(char16_t c) { return c >= u'0' && c <= u'9'; }

bool IsLetter(char16_t c, char16_t letter) { return (c | 0x20) == letter; }

/// digits / 10^places, if that is so far from the middle between two floats that any way to
/// reckon it comes to the same one: the engine's way has changed between its releases.
bool TryQuotient(qint64 digits, int places, double &value)
{
    if constexpr (LDBL_MANT_DIG < 64)
        return false;
    const long double quotient = static_cast<long double>(digits) / PowersOfTen[places];
    const long double doubt = quotient * 0x1p-60L;
    value = double(quotient);
    return double(quotient - doubt) == value && double(quotient + doubt) == value;
}

} // namespace

void TLiteralReader::Start(qsizetype textSize)
{
    FLiterals.clear();
    if (FBytes.size() < size_t(textSize) * MaxBytesPerCharacter)
        FBytes.resize(size_t(textSize) * MaxBytesPerCharacter);
    FNextByte = FBytes.data();
}

const char16_t *TLiteralReader::Read(const char16_t *at, const char16_t *end)
{
    if (at == end)
        return nullptr;
    const char16_t c = *at;
    if (c == u'\'' || (c == u'"' && FIsAccess))
        return ReadText(at + 1, end, c);
    if (IsDigit(c))
        return ReadNumber(at, end, false);
    if (c == u'-')
        return ReadNumber(at + 1, end, true);
    if (!IsLetter(c, u'n'))
        return nullptr;
    if (!FIsAccess && end - at > 1 && at[1] == u'\'')
        return ReadText(at + 2, end, u'\'');
    return ReadNull(at, end);
}

const char16_t *TLiteralReader::ReadText(const char16_t *at, const char16_t *end, char16_t quote)
{
    char *const begin = FNextByte;
    char *out = begin;
    for (; at < end; ++at) {
        const char16_t c = *at;
        if (c < 0x80) {
            if (c == quote && (++at == end || *at != quote)) {
                FLiterals.push_back({TLiteral::TKind::Text, 0, 0, {begin, size_t(out - begin)}});
                FNextByte = out;
                return at;
            }
            if (c == 0)
                return nullptr;
            *out++ = char(c);
        } else if (c < 0x800) {
            *out++ = char(0xC0 | (c >> 6));
            *out++ = char(0x80 | (c & 0x3F));
        } else if (!QChar::isSurrogate(c)) {
            *out++ = char(0xE0 | (c >> 12));
            *out++ = char(0x80 | ((c >> 6) & 0x3F));
            *out++ = char(0x80 | (c & 0x3F));
        } else {
            if (!QChar::isHighSurrogate(c) || end - at < 2 || !QChar::isLowSurrogate(at[1]))
                return nullptr;
            const char32_t point = QChar::surrogateToUcs4(c, *++at);
            *out++ = char(0xF0 | (point >> 18));
            *out++ = char(0x80 | ((point >> 12) & 0x3F));
            *out++ = char(0x80 | ((point >> 6) & 0x3F));
            *out++ = char(0x80 | (point & 0x3F));
        }
    }
    return nullptr;
}

const char16_t *TLiteralReader::ReadNumber(const char16_t *at, const char16_t *end, bool isNegative)
{
    const char16_t *const begin = at;
    qint64 digits = 0;
    const auto takeDigits = [&](const char16_t *last) {
        for (; at < last && IsDigit(*at); ++at)
            digits = digits * 10 + (*at - u'0');
    };
    takeDigits(end - at > MaxWholeDigits ? at + MaxWholeDigits : end);
    const qsizetype wholeDigits = at - begin;
    if (wholeDigits == 0 || (at < end && IsDigit(*at)))
        return nullptr;
    if (at == end || *at != u'.') {
        FLiterals.push_back({TLiteral::TKind::Whole, isNegative ? -digits : digits, 0, {}});
        return at;
    }
    const char16_t *const point = at++;
    const qsizetype room = MaxDecimalDigits - wholeDigits;
    if (room <= 0)
        return nullptr;
    takeDigits(end - at > room ? at + room : end);
    const int places = int(at - point) - 1;
    double value = 0;
    if (places == 0 || (at < end && IsDigit(*at)) || !TryQuotient(digits, places, value))
        return nullptr;
    FLiterals.push_back({TLiteral::TKind::Number, 0, isNegative ? -value : value, {}});
    return at;
}

const char16_t *TLiteralReader::ReadNull(const char16_t *at, const char16_t *end)
{
    if (end - at < 4 || !IsLetter(at[1], u'u') || !IsLetter(at[2], u'l') || !IsLetter(at[3], u'l'))
        return nullptr;
    FLiterals.push_back({});
    return at + 4;
}

} // namespace Korvane
