// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

#include <array>

namespace Korvane {

// The records of a worksheet file (BIFF: code, length of what follows, both 16 bits, little-endian)
// as the export begins each of them. A cell's record has its row at offset 4, its column at 6 and
// its format index at 8.

/// BOF of a worksheet.
inline constexpr std::array<quint8, 12> arXlsBegin = {0x09, 0x08, 0x08, 0x00, 0x00, 0x00,
                                                      0x10, 0x00, 0x00, 0x00, 0x00, 0x00};
/// EOF.
inline constexpr std::array<quint8, 4> arXlsEnd = {0x0A, 0x00, 0x00, 0x00};
/// LABEL: behind it the text in code page 936, its length in bytes at 10, and that plus 8 at 2.
inline constexpr std::array<quint8, 12> arXlsString = {0x04, 0x02, 0x00, 0x00, 0x00, 0x00,
                                                       0x00, 0x00, 0x00, 0x00, 0x00, 0x00};
/// NUMBER: behind it the IEEE 754 double.
inline constexpr std::array<quint8, 10> arXlsNumber = {0x03, 0x02, 0x0E, 0x00, 0x00,
                                                       0x00, 0x00, 0x00, 0x00, 0x00};
/// RK: behind it 32 bits, the integer shifted left by 2 with bit 1 set.
inline constexpr std::array<quint8, 10> arXlsInteger = {0x7E, 0x02, 0x0A, 0x00, 0x00,
                                                        0x00, 0x00, 0x00, 0x00, 0x00};
/// BLANK. The export leaves empty cells out in its place.
inline constexpr std::array<quint8, 10> arXlsBlank = {0x01, 0x02, 0x06, 0x00, 0x00,
                                                      0x00, 0x00, 0x00, 0x17, 0x00};

} // namespace Korvane
