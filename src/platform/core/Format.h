// SPDX-License-Identifier: MIT
#pragma once

#include "platform/core/FormatSettings.h"

#include <QVariant>

#include <initializer_list>

namespace Korvane {

/// Puts arguments into a format text. A place is %[index:][-][width][.precision]type, "%%" is a
/// percent sign. After an index the places that follow count on from it; "*" takes width or
/// precision from the arguments. "-" pads on the right instead of the left.
///
/// | type | argument | precision |
/// |---|---|---|
/// | d u | integer | least number of digits, filled with zeros |
/// | x | integer, hexadecimal in capitals | as for d |
/// | e | number, scientific | digits in all, otherwise 15 |
/// | f n | number, fixed, n with thousands | decimals, otherwise 2 |
/// | g | number, the shorter of fixed and scientific | digits in all, otherwise 15 |
/// | m | number, as an amount of money | decimals, otherwise the settings' |
/// | p | pointer, hexadecimal | none |
/// | s | text or character; null is empty | at most so many characters |
///
/// Raises EConvertError that names the format if it is malformed, or an argument is missing or
/// of another type.
///
///     Format("select max(%0:s) from %1:s where left(%0:s, %2:d)='%3:s'", {field, table, 4, prefix})
QString Format(const QString &format, const QVariantList &args,
               const TFormatSettings &settings = DefaultFormatSettings());
QString Format(const QString &format, std::initializer_list<QVariant> args,
               const TFormatSettings &settings = DefaultFormatSettings());

} // namespace Korvane
