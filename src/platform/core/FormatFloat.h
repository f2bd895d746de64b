// SPDX-License-Identifier: MIT
#pragma once

#include "platform/core/FormatSettings.h"

namespace Korvane {

enum TFloatFormat {
    ffGeneral,  ///< fixed or scientific, whichever is shorter, without trailing zeros
    ffExponent, ///< 1.50E+007
    ffFixed,    ///< 1234.50
    ffNumber,   ///< 1,234.50
    ffCurrency  ///< ￥1,234.50
};

/// Writes a number by a picture: 0 is a digit or a zero, # a digit or nothing, "." the decimal
/// point, "," anywhere asks for thousands, E+ E- e+ e- with zeros for scientific notation, quoted
/// and other text stands for itself. Up to three sections, parted by ";", are for positive,
/// negative and zero numbers; a missing section is the first one. A number that rounds to zero
/// takes the section for zero. Rounds halves away from zero on the decimal digits, of which 15
/// count. An empty format or first section, and a number of more than 18 digits before the point,
/// is written as by FloatToStr.
QString FormatFloat(const QString &format, double value,
                    const TFormatSettings &settings = DefaultFormatSettings());

/// The general form in up to 15 significant digits: fixed from 0.00001 up to 15 digits before the
/// point, otherwise like 1E16 and 1.5E-7; NAN, INF and -INF.
QString FloatToStr(double value, const TFormatSettings &settings = DefaultFormatSettings());

/// precision is the number of significant digits (1 to 18). digits is the number of decimals (0 to
/// 18), for ffGeneral and ffExponent the least number of digits of the exponent (0 to 4). A number
/// with more digits before the point than the precision is written in the general form.
QString FloatToStrF(double value, TFloatFormat format, int precision, int digits,
                    const TFormatSettings &settings = DefaultFormatSettings());

/// An amount of money in the general form, with four decimals at most.
QString CurrToStr(double value, const TFormatSettings &settings = DefaultFormatSettings());

} // namespace Korvane
