// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

#include <array>
#include <string_view>

namespace Korvane {

/// Turns many texts from UTF-8 into code page 936, each as Cp936::Encode does, by a table and with
/// no text in between.
class TCp936Encoder
{
public:
    TCp936Encoder();

    /// Puts the encoded text into a place for as many bytes as the text has; gives how many they are.
    size_t Encode(std::string_view utf8, char *place) const;

private:
    /// The bytes of a character: the first in the low 8 bits, the second, or 0, above; 0 for those
    /// that only steer how others are shown and have no bytes.
    using TTable = std::array<quint16, 0x10000>;
    static const TTable &Table();

    const TTable &FTable;
};

} // namespace Korvane
