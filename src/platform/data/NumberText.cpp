// SPDX-License-Identifier: MIT
#include "platform/data/NumberText.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>

namespace Korvane {

namespace {

constexpr double TwoTo63 = 9223372036854775808.0;

std::string_view Trimmed(std::string_view text)
{
    const size_t begin = text.find_first_not_of(' ');
    if (begin == std::string_view::npos)
        return {};
    return text.substr(begin, text.find_last_not_of(' ') - begin + 1);
}

template <class T> std::optional<T> Parse(std::string_view text)
{
    text = Trimmed(text);
    if (text.starts_with('+') && !text.starts_with("+-"))
        text.remove_prefix(1);
    T value{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size())
        return std::nullopt;
    return value;
}

/// Gives "1e+300" and "1.5e-07" the general form, "1E300" and "1.5E-7"; returns the new end.
char *ShortenExponent(char *begin, char *end)
{
    char *mark = std::find(begin, end, 'e');
    *mark = 'E';
    char *digits = mark + 2;
    char *first = std::find_if(digits, end - 1, [](char c) { return c != '0'; });
    return std::copy(first, end, mark[1] == '-' ? digits : digits - 1);
}

} // namespace

TNumberText::TNumberText(qint64 value)
    : FLength(size_t(std::to_chars(FBuffer, FBuffer + sizeof FBuffer, value).ptr - FBuffer))
{
}

TNumberText::TNumberText(double value)
{
    const double size = std::abs(value);
    const bool plain = value == 0 || (size >= 1e-5 && size < 1e15) || !std::isfinite(value);
    const auto format = plain ? std::chars_format::fixed : std::chars_format::scientific;
    char *end = std::to_chars(FBuffer, FBuffer + sizeof FBuffer, value, format).ptr;
    if (!plain)
        end = ShortenExponent(FBuffer, end);
    FLength = size_t(end - FBuffer);
}

std::optional<qint64> ParseInt(std::string_view text) { return Parse<qint64>(text); }

std::optional<double> ParseDouble(std::string_view text) { return Parse<double>(text); }

std::optional<qint64> ExactInt(double value)
{
    if (!(value >= -TwoTo63 && value < TwoTo63) || value != std::trunc(value))
        return std::nullopt;
    if (value == 0 && std::signbit(value))
        return std::nullopt;
    return qint64(value);
}

bool IsExactAsDouble(qint64 value)
{
    if (value == 0)
        return true;
    const quint64 size = value < 0 ? 0 - quint64(value) : quint64(value);
    return std::bit_width(size) - std::countr_zero(size) <= 53;
}

int CompareNumbers(double left, double right)
{
    if (left < right)
        return -1;
    if (left > right)
        return 1;
    if (left == right)
        return 0;
    return int(std::isnan(right)) - int(std::isnan(left));
}

int CompareNumbers(qint64 left, double right)
{
    if (std::isnan(right) || right < -TwoTo63)
        return 1;
    if (right >= TwoTo63)
        return -1;
    const double whole = std::floor(right);
    const qint64 integer = qint64(whole);
    if (left != integer)
        return left < integer ? -1 : 1;
    return right > whole ? -1 : 0;
}

} // namespace Korvane
