// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <array>

namespace Korvane {

// The message digest MD5 of RFC 1321, in the structure of its reference code. It tells whether data are
// the same, and is no protection against who wants to deceive.

using MD5Digest = std::array<quint8, 16>;

struct MD5Context
{
    quint32 State[4];
    quint32 Count[2]; ///< bits so far, the low word first
    quint8 Buffer[64];
};

/// What is added behind a message: a bit, and zeros.
inline constexpr std::array<quint8, 64> PADDING = {0x80};

void MD5Init(MD5Context &context);
void MD5Update(MD5Context &context, const quint8 *input, unsigned length);
/// Also zeroes the context.
void MD5Final(MD5Context &context, MD5Digest &digest);

/// Of the text's bytes in code page 936.
MD5Digest MD5String(const QString &text);
/// Of a file's bytes. A file that cannot be opened or mapped counts as empty, which is not told.
MD5Digest MD5File(const QString &fileName);
/// 32 hexadecimal digits in small letters.
QString MD5Print(const MD5Digest &digest);
bool MD5Match(const MD5Digest &left, const MD5Digest &right);

QString RivestStr(const QString &text);      ///< MD5Print of MD5String
QString RivestFile(const QString &fileName); ///< MD5Print of MD5File

} // namespace Korvane
