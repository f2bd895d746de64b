// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace Korvane {

/// A finite number as decimal digits: 0.DIGITS times ten to the Exponent. There are no zeros at
/// the end; zero has no digits, no sign and the exponent 0.
struct TDecimalDigits
{
    std::string Digits;
    int Exponent = 0;
    bool Negative = false;

    /// At most so many significant digits (1 to 18) and decimals, halves rounded away from zero.
    TDecimalDigits(double value, int precision, int decimals);

    bool IsZero() const { return Digits.empty(); }
    /// The digit at a place, a zero behind the end.
    char At(int index) const { return index < int(Digits.size()) ? Digits[size_t(index)] : '0'; }

private:
    void RoundTo(int count);
};

} // namespace Korvane
