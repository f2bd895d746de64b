// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

#include <optional>
#include <string_view>

namespace Korvane {

/// The text of a number, written into a buffer of its own: an integer in decimal, a float by
/// the shortest digits that read back as the same number, with an exponent from 1e15 up and
/// below 1e-5. No locale.
class TNumberText
{
public:
    explicit TNumberText(qint64 value);
    explicit TNumberText(double value);
    TNumberText(const TNumberText &) = delete;
    TNumberText &operator=(const TNumberText &) = delete;

    std::string_view View() const { return {FBuffer, FLength}; }

private:
    char FBuffer[32];
    size_t FLength;
};

/// The number that a text consists of, blanks round it aside; nothing if it is no number or
/// out of range.
std::optional<qint64> ParseInt(std::string_view text);
std::optional<double> ParseDouble(std::string_view text);

/// The integer that a float stands for exactly; nothing for fractions, a negative zero, NaN
/// and what is out of range.
std::optional<qint64> ExactInt(double value);
/// Whether a float holds the integer without loss.
bool IsExactAsDouble(qint64 value);

/// The order of two numbers: below 0, 0, above 0. NaN equals itself and stands before all
/// others, so that this is a total order.
int CompareNumbers(double left, double right);
/// The order of an integer and a float with no rounding of the integer.
int CompareNumbers(qint64 left, double right);
inline int CompareNumbers(qint64 left, qint64 right) { return left < right ? -1 : left > right; }

} // namespace Korvane
