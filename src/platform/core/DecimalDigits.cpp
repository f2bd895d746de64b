// SPDX-License-Identifier: MIT
#include "platform/core/DecimalDigits.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace Korvane {

namespace {

/// A double holds any number of so many digits; what follows them is the noise of the binary form.
constexpr int TrustedDigits = 15;

} // namespace

TDecimalDigits::TDecimalDigits(double value, int precision, int decimals) : Negative(std::signbit(value))
{
    // NOTE: to_chars does not follow the C locale of the process, as printf would.
    char buffer[32];
    const char *end = std::to_chars(buffer, buffer + sizeof buffer, std::fabs(value),
                                    std::chars_format::scientific, precision > TrustedDigits ? 17 : 16)
                          .ptr;
    const char *mark = std::find<const char *>(buffer, end, 'e');
    Digits.assign(buffer, 1).append(static_cast<const char *>(buffer) + 2, mark);
    std::from_chars(mark + (mark[1] == '+' ? 2 : 1), end, Exponent);
    ++Exponent;
    // NOTE: 2.675 is stored as 2.67499999999999982. Rounded to the trusted digits first, its half
    // is a half again and goes up.
    if (std::min(precision, Exponent + decimals) <= TrustedDigits)
        RoundTo(TrustedDigits);
    RoundTo(std::min(precision, Exponent + decimals));
}

void TDecimalDigits::RoundTo(int count)
{
    const bool isUp = count >= 0 && count < int(Digits.size()) && Digits[size_t(count)] >= '5';
    Digits.resize(size_t(std::clamp(count, 0, int(Digits.size()))));
    if (isUp) {
        while (!Digits.empty() && Digits.back() == '9')
            Digits.pop_back();
        if (Digits.empty()) {
            Digits = "1";
            ++Exponent;
        } else {
            ++Digits.back();
        }
    }
    while (!Digits.empty() && Digits.back() == '0')
        Digits.pop_back();
    if (Digits.empty()) {
        Exponent = 0;
        Negative = false;
    }
}

} // namespace Korvane
