// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace Korvane {

// Light protection for values that a form stores. It hides a text from a glance and is no security
// boundary. A text's bytes are those of code page 936.

/// The key of the forms without one.
inline constexpr quint8 XorKey[8] = {0x5C, 0xE1, 0x27, 0xB0, 0x3A, 0x96, 0xD4, 0x1F};

/// Two hexadecimal digits, in capitals, for each byte under XorKey.
QString EncryptString(const QString &text);
/// The reverse; an odd last digit is ignored. Raises EConvertError for what is not hexadecimal.
QString DecryptString(const QString &text);

/// The same under a key of one's own: each byte takes the exclusive or of all the key's bytes, so that
/// their order has no effect. An empty key gives an empty text.
QString EncryptString(const QString &text, const QString &key);
/// The reverse, of digits in capitals; others read as anything and raise nothing. An empty key gives
/// the bytes that the digits tell.
QString DecryptString(const QString &text, const QString &key);

} // namespace Korvane
