// SPDX-License-Identifier: MIT
#pragma once

#include "platform/core/FormatSettings.h"

namespace Korvane {

/// Whole numbers: leading blanks, a sign, decimal digits, or hexadecimal ones behind "$", "x" or
/// "0x", which may also fill the sign bit ($FFFFFFFF is -1). Nothing may follow. Raise
/// EConvertError; the Try… forms give false and leave the value alone.
int StrToInt(const QString &text);
qint64 StrToInt64(const QString &text);
bool TryStrToInt(const QString &text, int &value);
bool TryStrToInt64(const QString &text, qint64 &value);
int StrToIntDef(const QString &text, int def);

/// Numbers with the settings' decimal point and an optional exponent, between blanks. A number too
/// large for double raises EConvertError.
double StrToFloat(const QString &text, const TFormatSettings &settings = DefaultFormatSettings());
bool TryStrToFloat(const QString &text, double &value,
                   const TFormatSettings &settings = DefaultFormatSettings());
double StrToFloatDef(const QString &text, double def,
                     const TFormatSettings &settings = DefaultFormatSettings());

QString IntToStr(qint64 value);
/// Hexadecimal in capitals, at least so many digits; a negative number shows all its bits.
QString IntToHex(int value, int digits);
QString IntToHex(qint64 value, int digits);

} // namespace Korvane
