// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>

/// Text in code page 936, where a Chinese character takes two bytes. What the code page does not
/// hold counts as, and becomes, one "?". Safe from any thread.
namespace Korvane::Cp936 {

/// The number of bytes.
qsizetype Length(QStringView text);
/// The longest beginning of at most so many bytes; no character is cut in half.
QString Left(const QString &text, qsizetype bytes);
QByteArray Encode(QStringView text);
/// Bytes that mean nothing in the code page become U+FFFD.
QString Decode(QByteArrayView bytes);

} // namespace Korvane::Cp936
