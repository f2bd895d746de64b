// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

#include <array>
#include <bit>
#include <cstring>

namespace Korvane {

/// The CRC-32 of ISO 3309 (polynomial 0xEDB88320, reflected), eight bytes at a step.
class TCrc32
{
public:
    void Add(const void *bytes, size_t count)
    {
        const auto *at = static_cast<const unsigned char *>(bytes);
        quint32 crc = FState;
        if constexpr (std::endian::native == std::endian::little) {
            for (; count >= 8; at += 8, count -= 8) {
                quint32 low, high;
                std::memcpy(&low, at, 4);
                std::memcpy(&high, at + 4, 4);
                low ^= crc;
                crc = Tables[7][low & 255] ^ Tables[6][low >> 8 & 255] ^ Tables[5][low >> 16 & 255] ^
                      Tables[4][low >> 24] ^ Tables[3][high & 255] ^ Tables[2][high >> 8 & 255] ^
                      Tables[1][high >> 16 & 255] ^ Tables[0][high >> 24];
            }
        }
        for (; count != 0; ++at, --count)
            crc = crc >> 8 ^ Tables[0][(crc ^ *at) & 255];
        FState = crc;
    }
    quint32 Value() const { return ~FState; }

private:
    static constexpr auto Tables = [] {
        std::array<std::array<quint32, 256>, 8> tables{};
        for (quint32 i = 0; i < 256; ++i) {
            quint32 crc = i;
            for (int bit = 0; bit < 8; ++bit)
                crc = crc >> 1 ^ (crc & 1 ? 0xEDB88320u : 0);
            tables[0][i] = crc;
        }
        for (size_t t = 1; t < 8; ++t)
            for (size_t i = 0; i < 256; ++i)
                tables[t][i] = tables[t - 1][i] >> 8 ^ tables[0][tables[t - 1][i] & 255];
        return tables;
    }();

    quint32 FState = 0xFFFFFFFF;
};

} // namespace Korvane
